// Small tables of numbers as text: a heading line, then one row a line, fields parted by commas.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"

namespace hyetex {

/// The whole of `text` as a finite number; nothing if anything else stands in it.
std::optional<double> WholeNumber(std::string_view text);

struct TableRow {
  int Line = 0;  ///< in the text, from 1
  std::vector<double> Numbers;
  std::vector<std::string> Words;
};

/// Rows of `numbers` numbers followed by `words` words, below exactly this heading. Blank lines and lines
/// that start with "#" are passed over; anything else is an error that names its line.
Result<std::vector<TableRow>> ReadTable(std::string_view text, std::string_view heading, std::size_t numbers,
                                        std::size_t words = 0);

}  // namespace hyetex
