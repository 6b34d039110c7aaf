// structure and create-tables: the tables of a database.
#include <filesystem>

#include "cli/database.h"
#include "core/files.h"
#include "core/temporary_file.h"
#include "database/access/create_tables.h"
#include "database/access/new_database.h"
#include "database/access/structure.h"

namespace hyetex::cli {
namespace {

// Makes what is missing and prints its names, or prints the statements that would make it.
Exit MakeMissing(Connection& connection, const DbResult<std::vector<SchemaChange>>& missing, bool print) {
  if (!missing) return Fail(missing.error().Description);
  if (print) {
    for (const SchemaChange& change : *missing) Print(change.Statement + ";\n");
    return Done;
  }
  const SchemaOutcome outcome = Make(connection, *missing);
  for (const std::string& made : outcome.Made) Print(made + "\n");
  for (const auto& [what, why] : outcome.Failed) Say(what + ": " + why.Description);
  return outcome.Failed.empty() ? Done : Failed;
}

Exit NewFile(const std::string& path) {
  const auto text = FileConnectionText(path);
  if (!text) return Fail(text.error());
  if (const auto made = CreateDatabaseFile(path); !made) return Fail(made.error());
  Print(*text + "\n");
  return Done;
}

}  // namespace

Exit RunStructure(const StructureWords& words) {
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  SaidWaits progress;
  if (words.Keys) {
    const auto keys = ShowKeys(opened.Database.DatabaseConnection, progress);
    if (!keys) return Fail(keys.error().Description);
    Print("Table Name\tKey Name\tKey Type\tKey Column\tReference\n");
    for (const CatalogKey& key : *keys)
      Print(key.Table + "\t" + key.Name + "\t" + std::to_string(static_cast<int>(key.Type)) + "\t" +
            key.Column + "\t" + key.Reference + "\n");
    return Done;
  }
  const auto tables = ShowStructure(opened.Database.DatabaseConnection, progress);
  if (!tables) return Fail(tables.error().Description);
  Print("Table Name\tField Name\tColumn Type\tColumn Size\n");
  for (const TableStructure& table : *tables)
    for (const CatalogColumn& column : table.Columns)
      Print(table.Name + "\t" + column.Name + "\t" + std::to_string(static_cast<int>(column.Type)) + "\t" +
            std::to_string(column.Size) + "\n");
  if (!words.Script.empty()) {
    ClearTemporaries(std::filesystem::absolute(words.Script).parent_path().string());
    if (const auto written = WriteWholeFile(words.Script, StructureScript(*tables)); !written)
      return Fail(written.error());
  }
  return Done;
}

Exit RunCreateTables(const CreateTablesWords& words) {
  if (!words.NewFile.empty()) return NewFile(words.NewFile);
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  Connection& connection = opened.Database.DatabaseConnection;
  const Exit made = MakeMissing(connection, MissingTables(connection), words.Print);
  if (made != Done || !words.Complete) return made;
  return MakeMissing(connection, MissingCompletion(connection), words.Print);
}

}  // namespace hyetex::cli
