// What an XML file of a table holds, to look at.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/result.h"

namespace hyetex {

/// A file may be larger than memory: its first rows are kept, and the first characters of a value.
inline constexpr std::size_t MostPreviewRows = 10'000, MostPreviewBytes = 64U << 20, MostPreviewText = 1000;

struct XmlPreview {
  std::vector<std::string> Titles;              ///< the names of the first row's fields
  std::vector<std::vector<std::string>> Cells;  ///< of the rows that are kept, by those names
  std::int64_t Rows = 0;                        ///< of the whole file
  std::int64_t OddRows = 0;                     ///< of them those with a field that has no title
  bool IsWhole = true;                          ///< false: the operator stopped it
};

/// Reads a file to its end. Fails like LoadDocument.
Result<XmlPreview> PreviewXml(const std::string& path, Progress& progress);
/// "12 rows", and what of them is not shown.
std::string CountText(const XmlPreview& preview);

}  // namespace hyetex
