// Reads the XML of a table as it comes in: a root element, in it an element for each row, in that an element
// for each field, in that its text. Nothing is kept but the row at hand, so a file may be larger than memory.
//
// Strict about what it takes, since a file comes from anywhere: no document type, so no entities of its own
// and nothing fetched; no elements within fields, no text outside of them; names, attributes and the text of
// a row are bounded. UTF-8, ASCII, UTF-16, ISO-8859-1 and Windows-1252 are read, all as UTF-8; other
// encodings are refused.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/result.h"

namespace hyetex {

inline constexpr std::size_t MostXmlFields = 101;           ///< of a row; those behind them are left out
inline constexpr std::size_t MostXmlRowBytes = 256U << 20;  ///< of the text of a row
inline constexpr std::size_t MostXmlNameBytes = 128;        ///< of an element or attribute
inline constexpr std::size_t MostXmlAttributes = 16;        ///< of an element
inline constexpr std::size_t MostXmlTokenBytes = 1U << 20;  ///< of a tag or a comment

struct XmlField {
  std::string Name;  ///< without a prefix
  std::string Text;
  std::string Encoding;  ///< of the text, as its attribute has it; empty for none
};

struct XmlRow {
  std::span<const XmlField> Fields;  ///< at most MostXmlFields
  std::size_t FieldCount = 0;        ///< with those that were left out
  std::uint64_t Line = 0;            ///< where it begins
  bool IsTooLong = false;            ///< its text was not kept
};

struct XmlTaker {
  /// The name of the root element, without a prefix.
  std::function<Result<void>(std::string_view name)> Root;
  /// A whole row; a failure ends the reading with these words.
  std::function<Result<void>(const XmlRow& row)> Row;
};

class XmlRows {
 public:
  /// `taker` must outlive it.
  explicit XmlRows(const XmlTaker& taker);
  XmlRows(const XmlRows&) = delete;
  XmlRows& operator=(const XmlRows&) = delete;
  ~XmlRows();

  /// The next bytes of the file, of any number. Fails where it is no such XML, with a line that names line
  /// and column, or with the taker's words; then nothing more can be taken.
  Result<void> Take(std::string_view bytes);
  /// To be called at the file's end.
  Result<void> End();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace hyetex
