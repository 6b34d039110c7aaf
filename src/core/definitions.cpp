#include "core/definitions.h"

#include <vector>

#include "core/files.h"
#include "core/program_files.h"
#include "core/text.h"

namespace hyetex {
namespace {

// Index of the last line that belongs to the key; the number of lines when none does.
std::size_t LineOf(const std::vector<std::string_view>& lines, std::string_view key) {
  for (std::size_t i = lines.size(); i-- > 0;)
    if (lines[i].find(key) != std::string_view::npos) return i;
  return lines.size();
}

}  // namespace

Result<std::string> ReadDefinition(const std::string& programFolder, std::string_view key) {
  const std::string path = JoinPath(programFolder, DefinitionsFileName);
  CreateIfMissing(path);
  const Result<std::string> text = ReadProgramFile(path);
  if (!text) return text;
  const std::vector<std::string_view> lines = EditedLines(*text);
  const std::size_t at = LineOf(lines, key);
  if (at == lines.size()) return std::string();
  const std::string_view line = lines[at];
  const std::size_t colon = line.find(':');
  const std::size_t start = colon == std::string_view::npos ? 1 : colon + 2;
  return start < line.size() ? std::string(line.substr(start)) : std::string();
}

std::string GetDefinition(const std::string& programFolder, std::string_view key) {
  return ReadDefinition(programFolder, key).value_or("");
}

Result<void> CheckSettings(const std::string& programFolder) {
  const auto text = ReadProgramFile(JoinPath(programFolder, DefinitionsFileName));
  return text || !FolderExists(programFolder) ? Result<void>{} : Failure(text.error());
}

Result<void> SetDefinition(const std::string& programFolder, std::string_view key, std::string_view value) {
  if (key.empty() || key.find(':') != std::string_view::npos)
    return Failure("A setting's name must not be empty or hold a colon: " + Quoted(key));
  for (const std::string_view text : {key, value})
    if (const auto why = CheckOneLine(text))
      return Failure("The setting " + Quoted(key) + " cannot be kept. " + *why);

  const std::string path = JoinPath(programFolder, DefinitionsFileName);
  const Result<std::string> old = ReadProgramFile(path);
  if (!old) return Failure(old.error());
  std::vector<std::string_view> lines = EditedLines(*old);
  const std::string entry = std::string(key).append(": ").append(value);
  const std::size_t at = LineOf(lines, key);
  if (at == lines.size()) lines.emplace_back();
  lines[at] = entry;
  return WriteLines(path, lines, OwnerOnly);
}

}  // namespace hyetex
