// structure and create-tables: the tables of a database.
#include "cli/database.h"
#include "core/files.h"
#include "database/access/create_tables.h"
#include "database/access/new_database.h"
#include "database/access/structure.h"

namespace hyetex::cli {
namespace {

Exit Structure(const Words& words) {
  if (!words.Rest().empty()) return Off("no further words are wanted");
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  UnwatchedProgress progress;
  if (words.Has("--keys")) {
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
  if (const auto script = words.Value("--script"))
    if (const auto written = WriteWholeFile(*script, StructureScript(*tables)); !written)
      return Fail(written.error());
  return Done;
}

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

Exit MakeTables(const Words& words) {
  if (!words.Rest().empty()) return Off("no further words are wanted");
  if (const auto file = words.Value("--new"))
    return words.Has(DbOption.Name) ? Off("--new names the database; --db is not wanted") : NewFile(*file);
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  Connection& connection = opened.Database.DatabaseConnection;
  const bool print = words.Has("--print");
  const Exit made = MakeMissing(connection, MissingTables(connection), print);
  if (made != Done || !words.Has("--complete")) return made;
  return MakeMissing(connection, MissingCompletion(connection), print);
}

constexpr Option StructureOptions[] = {
    DbOption,
    FolderOption,
    {"--keys", "", "print the keys instead: type 1 is a primary key, 2 a foreign one"},
    {"--script", "FILE", "write the script for a database administrator too"},
};
constexpr Option CreateOptions[] = {
    DbOption,
    FolderOption,
    {"--complete", "", "add the column loaded of CHART_ASCII and the indexes too"},
    {"--print", "", "print the statements for the database's administrator, and make nothing"},
    {"--new", "FILE", "make a complete SQLite database in a new file, and print what connects to it"},
};

}  // namespace

constinit const Command StructureCommand{
    "structure", "", "Prints the tables and columns of a database, with the columns' type numbers and sizes.",
    StructureOptions, Structure};

constinit const Command CreateTablesCommand{
    "create-tables", "",
    "Makes the tables that a database lacks, and prints their names.\n"
    "What is there stays as it is. With --new the database itself is made; a file that is there is refused.",
    CreateOptions, MakeTables};

}  // namespace hyetex::cli
