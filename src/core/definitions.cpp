#include "core/definitions.h"

#include <map>
#include <set>
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

Result<std::string> ReadDefinitions(const std::string& programFolder) {
  return ReadProgramFile(JoinPath(programFolder, DefinitionsFileName));
}

std::string ShownDefinitions(std::string_view text) {
  std::string shown;
  for (const std::string_view line : EditedLines(text)) shown.append(ShownText(line)).append("\n");
  return shown;
}

Result<void> SaveEditedDefinitions(const std::string& programFolder, std::string_view read,
                                   std::string_view edited) {
  const Result<std::string> present = ReadDefinitions(programFolder);
  if (!present) return Failure(present.error());
  const auto keyOf = [](std::string_view line) { return line.substr(0, line.find(':')); };
  std::map<std::string_view, std::string_view> now;  // by its key, the last line
  std::set<std::string_view> lineNow, known;
  for (const std::string_view line : EditedLines(*present)) {
    now[keyOf(line)] = line;
    lineNow.insert(line);
  }
  std::map<std::string, std::string_view> before;  // by what was shown
  for (const std::string_view line : EditedLines(read)) {
    before.emplace(ShownText(line), line);
    known.insert(keyOf(line));
  }

  std::vector<std::string_view> lines;
  for (const std::string_view typed : EditedLines(edited)) {
    if (const auto why = CheckOneLine(typed))
      return Failure("The line " + Quoted(typed) + " cannot be kept. " + *why);
    known.insert(keyOf(typed));
    const auto untouched = before.find(std::string(typed));
    if (untouched == before.end()) {
      lines.push_back(typed);
      continue;
    }
    const auto set = now.find(keyOf(untouched->second));
    const bool isOld = set != now.end() && !lineNow.contains(untouched->second);
    lines.push_back(isOld ? set->second : untouched->second);
  }
  for (const std::string_view line : EditedLines(*present))
    if (!known.contains(keyOf(line))) lines.push_back(line);
  return WriteLines(JoinPath(programFolder, DefinitionsFileName), lines, OwnerOnly);
}

}  // namespace hyetex
