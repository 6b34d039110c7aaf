#include "core/program_files.h"

#include <fcntl.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/dates.h"
#include "core/descriptor.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

// Not so when it merely cannot be looked at: a file that is there but closed to us must not pass for an empty
// one.
bool IsMissing(const std::string& path) {
  std::error_code error;
  if (std::filesystem::status(path, error).type() != std::filesystem::file_type::not_found) return false;
  const std::string folder = path.substr(0, path.size() - BaseName(path).size());
  return FolderExists(folder.empty() ? "." : folder);
}

}  // namespace

Result<std::string> ReadProgramFile(const std::string& path) {
  if (IsMissing(path)) return std::string();
  return ReadWholeFile(path, MaxProgramFileBytes);
}

void CreateIfMissing(const std::string& path) {
  if (IsMissing(path)) Descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, OwnerOnly));
}

std::vector<std::string_view> EditedLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = text.find_first_of("\r\n");
    lines.push_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
  }
  return lines;
}

Result<void> WriteLines(const std::string& path, const std::vector<std::string_view>& lines,
                        std::optional<unsigned> mode) {
  std::string text;
  for (const std::string_view line : lines) text.append(line).append("\r\n");
  if (text.size() > MaxProgramFileBytes)
    return Failure("Cannot write " + path + ": it would be longer than " +
                   std::to_string(MaxProgramFileBytes) + " bytes");
  return WriteWholeFile(path, text, mode);
}

Result<std::string> KeepCopy(const std::string& path) {
  const Result<std::string> bytes = ReadWholeFile(path, MaxProgramFileBytes);
  if (!bytes) return Failure(bytes.error());
  // A damaged file may be met many times before it is mended.
  const std::string stem = std::string(BaseName(path)) + ".bak-";
  std::error_code error;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::absolute(path, error).parent_path(), error)) {
    const std::string other = entry.path().string();
    if (BaseName(other).starts_with(stem) && ReadWholeFile(other, MaxProgramFileBytes) == bytes) return other;
  }
  std::string copy = BackupName(path);
  if (const auto written = WriteWholeFile(copy, *bytes, ModeOf(path).value_or(OwnerOnly)); !written)
    return Failure(written.error());
  return copy;
}

std::string BackupName(const std::string& path) {
  const Date now = Now();
  const std::string base = path + ".bak-" + DateCode(now) + PadNumber(ToCalendar(now).Second, 2);
  // Behind all of this second, also where earlier ones have been let go since: the names tell their order.
  int last = 0;
  std::error_code error;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::absolute(path, error).parent_path(), error)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(BaseName(base))) continue;
    const std::string_view number = std::string_view(name).substr(BaseName(base).size());
    last = std::max<int>(last, number.empty() ? 1 : LeadingInt16(number.substr(1)));
  }
  return last == 0 ? base : base + "-" + PadNumber(last + 1, 2);
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t mostBytes = 60;
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  std::size_t end = std::min(text.size(), mostBytes);
  while (end > 0 && end < text.size() && continues(text[end])) --end;  // no half of a UTF-8 character
  std::string shown = ShownText(text.substr(0, end));
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return c >= 0 && c < ' '; }, '?');
  return '"' + shown + (end < text.size() ? "...\"" : "\"");
}

}  // namespace hyetex
