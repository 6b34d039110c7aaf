#include "staging/program_files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "core/files.h"
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
  // Opened to append, so that a file made by another program in between keeps its bytes.
  if (IsMissing(path)) std::ofstream(path, std::ios::binary | std::ios::app);
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

Result<void> WriteLines(const std::string& path, const std::vector<std::string_view>& lines) {
  std::string text;
  for (const std::string_view line : lines) text.append(line).append("\r\n");
  if (text.size() > MaxProgramFileBytes)
    return Failure("Cannot write " + path + ": it would be longer than " +
                   std::to_string(MaxProgramFileBytes) + " bytes");
  return WriteWholeFile(path, text);
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
