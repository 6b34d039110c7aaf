// The form in which a database keeps a chart file, and what the file may be called there.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/records.h"

namespace hyetex {

/// The text of a chart's record: the file's name on a line of its own, then the file's bytes as they are. The
/// name's line ends as the file's lines do, so that the readers, who go by the first pair of carriage return
/// and line feed, split the text as they split the file; and what stands behind the name is the file to its
/// last byte, whatever its lines end in.
std::string MakeStoredText(std::string_view fileName, std::string_view bytes);

struct StoredText {
  std::string_view FileName;  ///< the first line, without its end
  std::string_view Bytes;     ///< of the file
};
StoredText SplitStoredText(std::string_view text);

/// Why a file of this name is neither stored nor written: it leads to another folder or drive, holds control
/// characters, or is not "CODE-YYYYMMDD-HHMM.dat", so that no other file of an operator is ever taken for a
/// chart or replaced by one. Nothing if it is a chart file's.
std::optional<std::string> CheckStoredName(std::string_view name);

/// Whether the text is a chart file's: its first line holds "HYETEX88", in any case.
bool BeginsAsChart(std::string_view bytes);
/// Enough of a file for that; other files may have any length.
inline constexpr std::size_t BytesThatTellAChart = 512;

/// An instrument code as codes are compared: as the letters that its bytes show, without regard to case or to
/// blanks behind it, which a column of fixed width adds.
std::string ComparedCode(std::string_view code);

/// What makes two records the same chart: the instrument code, and the start to the second.
struct ChartKey {
  ChartKey() = default;
  ChartKey(std::string_view code, Date start);

  std::string Code;
  std::int64_t Second = 0;
  auto operator<=>(const ChartKey&) const = default;  // NOLINT(modernize-use-nullptr)
};

}  // namespace hyetex
