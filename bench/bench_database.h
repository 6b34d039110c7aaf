// A database for benchmarks: a file of its own, or the PostgreSQL cluster of the folder that HYETEX_POSTGRES
// names (scripts/postgres start FOLDER), with all tables, the column `loaded` and the indexes.
#pragma once

#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "core/files.h"
#include "core/numbers.h"
#include "database/access/create_tables.h"
#include "database/access/new_database.h"
#include "database/access/plot_db.h"

namespace hyetex::bench {

class SilentBoxes : public Dialogs {
 public:
  BoxAnswer MessageBox(const std::string&, const std::string&, BoxButtons, BoxIcon) override {
    return BoxAnswer::Cancel;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> ChooseFolder(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> ChooseFileToSave(const std::string&, const std::string&) override {
    return std::nullopt;
  }
};

class BenchDatabase {
 public:
  explicit BenchDatabase(bool postgres)
      : Folder((std::filesystem::temp_directory_path() / "hyetex-bench-XXXXXX").string()),
        postgres_(postgres) {
    Folder = ::mkdtemp(Folder.data());
    if (postgres) {
      const char* cluster = std::getenv("HYETEX_POSTGRES");
      std::ifstream text(JoinPath(cluster == nullptr ? "" : cluster, "connection"));
      std::getline(text, Database.ConnectionText);
    } else {
      (void)CreateDatabaseFile(JoinPath(Folder, "rain.sqlite"));
      Database.ConnectionText = FileConnectionText(JoinPath(Folder, "rain.sqlite")).value_or("");
    }
    if (!IsThere() || !Database.OpenDatabase()) return;
    (void)CreateTables(Database.DatabaseConnection);
    if (const auto rest = MissingCompletion(Database.DatabaseConnection); rest)
      (void)Make(Database.DatabaseConnection, *rest);
    EmptyAll();
  }
  BenchDatabase(const BenchDatabase&) = delete;
  BenchDatabase& operator=(const BenchDatabase&) = delete;
  ~BenchDatabase() {
    EmptyAll();
    Database.Close();
    std::filesystem::remove_all(Folder);
  }

  bool IsThere() const { return !Database.ConnectionText.empty(); }
  /// Leaves nothing behind that would slow the next run down.
  void Empty(const std::string& table) { Run((postgres_ ? "TRUNCATE " : "DELETE FROM ") + table); }
  /// Its connection, opened where it is closed.
  Connection& Open() {
    if (!Database.DatabaseConnection.IsOpen()) (void)Database.OpenDatabase();
    return Database.DatabaseConnection;
  }
  void Run(const std::string& sql) { (void)Open().Execute(sql); }

  std::string Folder;
  SilentBoxes Boxes;
  hyetex::Settings Settings{""};
  HyetexPlotDB Database{Settings, Boxes};

 private:
  void EmptyAll() {
    for (const char* table : {"INSTRUMENT", "CHART_ASCII", "CHART"}) Empty(table);
  }

  bool postgres_;
};

/// The most memory that the process has held since the last call, in megabytes.
inline double MostMegabytes() {
  double most = 0;
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmHWM:")) most = LeadingNumber(line.substr(6)) / 1024;
  std::ofstream("/proc/self/clear_refs") << "5";
  return most;
}

}  // namespace hyetex::bench
