// export and import: tables as XML files.
#include <algorithm>
#include <filesystem>

#include "cli/database.h"
#include "core/text.h"
#include "exchange/export_table.h"
#include "exchange/import_xml.h"
#include "exchange/table_list.h"

namespace hyetex::cli {
namespace {

std::string Records(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " record" : " records");
}

// Each table once, whatever the case of its letters.
DbResult<std::vector<std::string>> WantedTables(const ExportWords& words, Connection& connection) {
  if (words.Tables.empty()) return TablesThere(connection);
  std::vector<std::string> tables;
  for (const std::string& table : words.Tables)
    if (std::ranges::none_of(tables, [&](const std::string& each) { return EqualIgnoringCase(each, table); }))
      tables.push_back(table);
  return tables;
}

}  // namespace

Exit RunExport(const ExportWords& words) {
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  const auto tables = WantedTables(words, opened.Database.DatabaseConnection);
  if (!tables) return Fail(tables.error().Description);
  if (tables->empty()) return Fail("The database has none of our tables");
  SaidWaits progress;
  const Markup markup = words.Unchanged ? Markup::Unchanged : Markup::Escaped;
  const auto choose = [&](const std::vector<const ExportedTable*>& marked) {
    if (words.Unchanged)
      for (const ExportedTable* table : marked)
        for (const std::string& note : NotesOf(*table, markup)) Say(table->Table + ": " + note);
    return std::optional(markup);
  };
  const ExportResult result = ExportTables(opened.Database, *tables, words.To, choose, progress);
  for (const ExportedTable& table : result.Tables) {
    Print(table.Table + ": " + Records(table.Rows) + " to " + table.Path + "\n");
    // What was told before the files took their places is not told twice.
    if (!words.Unchanged || table.Marked.Count == 0)
      for (const std::string& note : NotesOf(table, markup)) Say(table.Table + ": " + note);
  }
  for (const ExportResult::Failure& failure : result.Failed)
    Say(failure.Table + ": " + failure.Error.Description);
  return result.Failed.empty() && !result.Cancelled ? Done : Failed;
}

Exit RunImport(const ImportWords& words) {
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  bool clean = true;
  for (const std::string& file : words.Files) {
    SaidWaits progress;
    const ImportResult result =
        ImportFile(opened.Database, std::filesystem::current_path().string(), file, progress);
    clean = clean && result.IsClean();
    if (!result.Failed.empty()) {
      Say(result.Failed + (result.Failed.ends_with('.') ? "" : ".") + " Nothing of " + file + " was added");
      continue;
    }
    Print(file + ": " + Records(result.Added) + " into " + result.Table + "\n");
    if (const std::string rest = RefusedText(result); !rest.empty()) Say(file + ": " + rest);
  }
  return clean ? Done : Failed;
}

}  // namespace hyetex::cli
