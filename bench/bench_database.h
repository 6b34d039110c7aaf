// A database for benchmarks: a file of its own, or the PostgreSQL cluster of the folder that HYETEX_POSTGRES
// names (scripts/postgres start FOLDER), with all tables, the column `loaded` and the indexes.
#pragma once

#include <stdlib.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/files.h"
#include "core/numbers.h"
#include "database/access/create_tables.h"
#include "database/access/new_database.h"
#include "database/access/plot_db.h"
#include "platform/dialogs.h"

namespace hyetex::bench {

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
  /// How long the work takes on a table without rows. What it takes to make room for it does not count.
  template <typename Work>
  double SecondsOnEmpty(const std::string& table, Work&& work) {
    using Clock = std::chrono::steady_clock;
    Empty(table);
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
  }
  /// Its connection, opened where it is closed.
  Connection& Open() {
    if (!Database.DatabaseConnection.IsOpen()) (void)Database.OpenDatabase();
    return Database.DatabaseConnection;
  }
  void Run(const std::string& sql) { (void)Open().Execute(sql); }

  std::string Folder;
  UnattendedDialogs Boxes;
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
