#include "faults/folder_state.h"

#include <filesystem>
#include <regex>

#include "core/dates.h"
#include "core/temporary_file.h"
#include "core/text.h"
#include "database/access/names.h"
#include "platform/odbc/recordset.h"
#include "support.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;

// One text that tells all of a value; nothing that two contents share.
std::string ValueText(const DbValue& value) {
  const auto* date = std::get_if<DbDate>(&value);
  return date != nullptr ? IsoText(date->Value) : TextOf(value);
}

// A chart's rows all tell its day, and no two of these charts have one in common.
std::string PartOf(const std::string& table, const std::string& row) {
  static const std::regex day("[0-9]{4}-[0-9]{2}-[0-9]{2}");
  std::smatch found;
  if (UpperAscii(table).starts_with("CHART") && std::regex_search(row, found, day))
    return "chart of " + found[0].str();
  return table + ": " + row;
}

using Parts = std::map<std::string, std::string>;

Parts ReadDatabase(const std::string& path, const std::string& name) {
  Parts parts;
  const auto fail = [&](const DbError& error) { return Parts{{name + " unreadable", error.Description}}; };
  auto connection = Connection::Open("Driver=SQLite3;Database=" + path);
  if (!connection) return fail(connection.error());
  const auto tables = connection->Tables();
  if (!tables) return fail(tables.error());
  for (const CatalogTable& table : *tables) {
    if (table.Type != "TABLE") continue;
    const auto fields = connection->Columns(table.Name);
    if (!fields) return fail(fields.error());
    for (const CatalogColumn& column : *fields)
      parts[name + " column " + table.Name + "." + column.Name] = column.TypeName;
    auto rows = Recordset::Open(*connection, table.Name);
    if (!rows) return fail(rows.error());
    for (; !rows->Eof(); (void)rows->MoveNext()) {
      std::string row;
      for (int i = 0; i < rows->FieldCount(); ++i) {
        if (const std::string& field = rows->FieldName(i);
            field == column::ConversionTime || field == column::ConversionNumber)
          continue;  // others at each run
        const auto value = rows->Value(i);
        if (!value) return fail(value.error());
        row += ValueText(*value) + "|";
      }
      parts[name + " " + PartOf(table.Name, row)] += table.Name + ": " + row + "\n";
    }
  }
  return parts;
}

// Most faults leave the same few contents, and those of a database take a while to read.
const Parts& PartsOfDatabase(const fs::path& path, const std::string& name, const std::string& scratch) {
  static std::map<std::string, Parts> known;
  const std::string file = path.filename().string();
  std::string bytes = name;
  fs::remove_all(scratch);
  fs::create_directory(scratch);
  for (const char* ending : {"", "-journal"}) {
    const std::string beside = path.string() + ending;
    if (!fs::exists(beside)) continue;
    fs::copy(beside, scratch);
    bytes += ending + ReadFile(beside);
  }
  auto found = known.find(bytes);
  if (found == known.end()) {
    if (known.size() > 200) known.clear();
    found = known.emplace(std::move(bytes), ReadDatabase(scratch + "/" + file, name)).first;
  }
  return found->second;
}

// A log grows line by line and tells the time: its head is what has to be there. A kill within a write may
// cut its last line.
std::string LogShape(const std::string& text) {
  static const std::regex head("Output log for conversion performed [0-9/]{10} [0-9:]{8}\r\n");
  return std::regex_search(text, head, std::regex_constants::match_continuous) ? "a log" : "no log: " + text;
}

std::string WithoutTimes(const std::string& name) {
  static const std::regex stamp("\\.bak-[0-9]{8}-[0-9]{6}(-[0-9]+)?");
  return std::regex_replace(name, stamp, ".bak");
}

}  // namespace

FolderState ReadFolder(const std::string& folder, const std::string& scratch) {
  FolderState state;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const std::string path = entry.path().string(), name = fs::relative(path, folder).string(),
                      last = entry.path().filename().string();
    if (IsTemporary(last)) {
      state.Temporaries.push_back(name);
    } else if (last.ends_with(".sqlite")) {
      state.Parts.merge(Parts(PartsOfDatabase(entry.path(), name, scratch)));
    } else if (last == "datalog.txt") {
      state.Parts[name] = LogShape(ReadFile(path));
    } else if (last != "hyetex.lock" && last != "errors.tXt" && !last.ends_with(".sqlite-journal")) {
      state.Parts[WithoutTimes(name)] = ReadFile(path);
    }
  }
  return state;
}

std::vector<std::string> Differences(const FolderState& one, const FolderState& other) {
  std::vector<std::string> names;
  const auto look = [&](const FolderState& from, const FolderState& to, bool missingOnly) {
    for (const auto& [name, content] : from.Parts) {
      const auto found = to.Parts.find(name);
      if (found == to.Parts.end() || (!missingOnly && found->second != content)) names.push_back(name);
    }
  };
  look(one, other, false);
  look(other, one, true);
  return names;
}

}  // namespace hyetex::test
