#include "faults/scenarios.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "chartfiles/chart_text.h"
#include "core/definitions.h"
#include "core/files.h"
#include "core/program_files.h"
#include "core/temporary_file.h"
#include "database/access/new_database.h"
#include "database/store/loading.h"
#include "database/store/stored_text.h"
#include "database/stored_charts.h"
#include "digitizing/resume.h"
#include "editor/database_charts.h"
#include "editor/folder_charts.h"
#include "paths.h"
#include "staging/lists/lists.h"
#include "staging/tasks/tasks.h"
#include "support.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

constexpr const char* Hill = "NM-Hill Farm-01";
constexpr int Charts = 5;

[[noreturn]] void Stop(const std::string& why) {
  std::fprintf(stderr, "cannot prepare: %s\n", why.c_str());
  std::exit(2);
}
template <typename T>
void Need(const T& result) {
  if (!result) {
    if constexpr (requires { result.error().Description; })
      Stop(result.error().Description);
    else
      Stop(result.error());
  }
}

std::string Db(const std::string& folder) { return "Driver=SQLite3;Database=" + folder + "/rain.sqlite"; }

StoredChart ChartOfDay(int day, const std::string& version) {
  return {.Instrument = Hill,
          .Start = MakeDate(1998, 3, 5 + day, 10),
          .End = MakeDate(1998, 3, 5 + day, 12),
          .Comment = version};
}
std::string ChartPath(const std::string& folder, int day) {
  return folder + "/charts/" + ChartFileName(Hill, ChartOfDay(day, "").Start);
}
void WriteCharts(const std::string& folder, const std::string& version) {
  fs::create_directories(folder + "/charts");
  for (int day = 0; day < Charts; ++day) {
    const std::string text = ChartOfDay(day, version).Text();
    WriteFile(ChartPath(folder, day), std::string(SplitStoredText(text).Bytes));
  }
}

void Program(const std::string& folder) {
  fs::copy(Demo("program"), folder + "/program");
  fs::create_directory(folder + "/out");
  Need(SetDefinition(folder + "/program", "TargetFolder", folder + "/out"));
}
void Database(const std::string& folder) {
  Program(folder);
  Need(CreateDatabaseFile(folder + "/rain.sqlite"));
  auto connection = Connection::Open(Db(folder));
  Need(connection);
  const DbValue values[] = {std::string(Hill), "Hill Farm"};
  Need(connection->Execute("INSERT INTO INSTRUMENT (instrument_code_id, station) VALUES (?, ?)", values));
  WriteCharts(folder, "old");
}
void Loaded(const std::string& folder) {
  Database(folder);
  const std::string command = CommandLineProgram() + " load --db '" + Db(folder) + "' --folder '" + folder +
                              "/program' '" + folder + "/charts/'*.dat >/dev/null";
  if (std::system(command.c_str()) != 0) Stop(command);
}
void Converted(const std::string& folder) {
  Loaded(folder);
  const std::string command = CommandLineProgram() + " populate --log --instrument '" + std::string(Hill) +
                              "' --db '" + Db(folder) + "' --folder '" + folder + "/program' >/dev/null";
  if (std::system(command.c_str()) != 0) Stop(command);
}

// Files of the exchange, of a whole database with charts.
void Exported(const std::string& folder) {
  Converted(folder);
  const std::string command =
      CommandLineProgram() + " export --db '" + Db(folder) + "' --to '" + folder + "/xml' >/dev/null";
  if (std::system(command.c_str()) != 0) Stop(command);
}

Lines With(Lines words, const Lines& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

/// A command of the command line, on the program folder.
auto Cli(Lines words, Lines more = {}) {
  return [=](const std::string& folder) {
    Lines all = With({CommandLineProgram(), words[0], "--folder", folder + "/program"},
                     Lines(words.begin() + 1, words.end()));
    for (const std::string& word : more) all.push_back(folder + "/" + word);
    return all;
  };
}
/// The same, on the database too.
auto OnDatabase(Lines words) {
  return [=](const std::string& folder) { return With(Cli(words)(folder), {"--db", Db(folder)}); };
}
auto Loading() {
  return [](const std::string& folder) {
    Lines words = OnDatabase({"load"})(folder);
    for (int day = 0; day < Charts; ++day) words.push_back(ChartPath(folder, day));
    return words;
  };
}
auto Task(const std::string& name) {
  return [=](const std::string& folder) {
    return Lines{fs::read_symlink("/proc/self/exe").string(), "--task", name, folder};
  };
}

void ToImport(const std::string& folder) {
  Exported(folder);
  auto connection = Connection::Open(Db(folder));
  Need(connection);
  for (const char* sql :
       {"DELETE FROM CHART", "CREATE UNIQUE INDEX one_row ON CHART (instrument_code_id, start_time)"})
    Need(connection->Execute(sql));
}

void WithOldChart(const std::string& folder) {
  Program(folder);
  WriteFile(folder + "/out/NM-Hill Farm-01-19980305-0700.dat", "HYETEX88 ASCII FILE\r\nold\r\n");
}
void WithNewStations(const std::string& folder) {
  Database(folder);
  auto connection = Connection::Open(Db(folder));
  Need(connection);
  const DbValue code[] = {std::string("NM-New Farm-07")};
  Need(connection->Execute("INSERT INTO INSTRUMENT (instrument_code_id, station) VALUES (?, 'New Farm')",
                           code));
}
void WithDamagedLists(const std::string& folder) {
  Program(folder);
  const std::string path = folder + "/program/lists.dat";
  std::string bytes = ReadFile(path);
  bytes.resize(bytes.size() / 2);
  WriteFile(path, bytes + "xx");
}

// The editor's way to change the first chart: its depth, and its start for another name.
int SaveFirstChart(ChartSource& source, bool renames) {
  const auto fail = [](const std::string& why) { return std::fprintf(stderr, "%s\n", why.c_str()), 1; };
  UnwatchedProgress progress;
  const auto list = source.List({}, progress);
  if (!list) return fail(list.error());
  ChartRecord edited;
  edited.StartTime = ChartOfDay(0, "").Start;
  edited.EndTime = ChartOfDay(0, "").End;
  edited.SelectedDepth = 7;
  if (renames) edited.StartTime += 0.5 / 24;
  const std::string old = ChartFileName(Hill, ChartOfDay(0, "").Start);
  const auto file = std::ranges::find(list->Files, old, &ChartFileInfo::FileName);
  if (file == list->Files.end() && !list->Notes.empty()) return fail(list->Notes.front());
  if (file == list->Files.end()) return renames ? 0 : fail(old + " is gone");
  const auto opened = source.Open(*file, {});
  if (!opened) return fail(opened.error());
  edited.InstrumentCode = Hill;
  const Confirm yes = [](const std::string&) { return true; };
  const auto saved = source.Save(*opened, edited, {yes, yes, yes}, progress);
  if (!saved) return fail(saved.error());
  // What became of the chart's conversion is no failure; a file that stays is.
  for (const std::string& note : (*saved)->Notes)
    if (note.find("cannot be removed") != std::string::npos) return fail(note);
  return 0;
}

}  // namespace

std::vector<Scenario> AllScenarios() {
  const auto journal = Demo("journals/siphon-1.txt");
  const Lines populate{"populate", "--instrument", Hill};
  return {
      {"setting", Program, Cli({"setting", "set", "frmTasks-Row", "3"})},
      {"setting, first", [](const std::string& folder) { fs::create_directory(folder + "/program"); },
       Cli({"setting", "set", "DataBaseName", "DSN=rain;PWD=secret"})},
      {"digitize", Program, Cli({"digitize", "--task", "0", journal}), true},
      {"digitize again", WithOldChart, Cli({"digitize", "--overwrite", "--task", "0", journal})},
      {"digitize an empty form", Program, Cli({"digitize", "--task", "3"}), true},
      {"trace",
       [](const std::string& folder) {
         Program(folder);
         fs::copy(Demo("streams/siphon-1.bin"), folder + "/stream");
       },
       [](const std::string& folder) {
         return Lines{CommandLineProgram(),   "trace",           "--tablet", "1", "--journal",
                      folder + "/traced.txt", folder + "/stream"};
       },
       true, "traced.txt"},
      {"new database", Program,
       [](const std::string& folder) {
         return Lines{CommandLineProgram(), "create-tables", "--new", folder + "/rain.sqlite"};
       },
       true},
      {"tables",
       [](const std::string& folder) {
         Program(folder);
         WriteFile(folder + "/rain.sqlite", "");
       },
       OnDatabase({"create-tables", "--complete"})},
      {"structure", Database,
       [](const std::string& folder) {
         return With(OnDatabase({"structure"})(folder), {"--script", folder + "/script.txt"});
       }},
      {"load", Database, Loading()},
      {"load again",
       [](const std::string& folder) {
         Loaded(folder);
         WriteCharts(folder, "new");
       },
       Loading()},
      {"extract", Loaded,
       [](const std::string& folder) {
         return With(OnDatabase({"extract"})(folder), {"--to", folder + "/new"});
       }},
      {"extract again",
       [](const std::string& folder) {
         Loaded(folder);
         WriteCharts(folder, "changed at hand");
       },
       [](const std::string& folder) {
         return With(OnDatabase({"extract"})(folder), {"--to", folder + "/charts"});
       }},
      {"populate", Loaded, OnDatabase(With(populate, {"--log"}))},
      {"populate again", Converted,
       OnDatabase(With(populate, {"--log", "--all", "--overwrite", "--lapse", "45"}))},
      {"alpha", Converted, OnDatabase({"alpha", "--instrument", Hill, "--write", "0.0043"})},
      {"export", Converted,
       [](const std::string& folder) {
         return With(OnDatabase({"export"})(folder), {"--to", folder + "/xml"});
       }},
      {"export again",
       [](const std::string& folder) {
         Exported(folder);
         WriteFile(folder + "/xml/chart.xml", "<charts>\n</charts>\n");
       },
       [](const std::string& folder) {
         return With(OnDatabase({"export"})(folder), {"--to", folder + "/xml", "chart", "chart_ascii"});
       }},
      {"rain", Converted,
       [](const std::string& folder) {
         return With(OnDatabase({"rain", "--instrument", Hill, "--fill", "--overwrite"})(folder),
                     {"--sef", folder + "/sef", "--png", folder + "/rain.png"});
       }},
      // With a unique key a second run refuses what is there.
      {"import", ToImport,
       [](const std::string& folder) {
         return With(OnDatabase({"import"})(folder), {folder + "/xml/chart.xml"});
       },
       true},
      {"synchronise", WithNewStations, OnDatabase({"synchronise", "--start", "01/02/1990"})},
      {"tasks", Program, Task("tasks")},
      {"lists", Program, Task("lists")},
      {"damaged lists", WithDamagedLists, Task("damaged lists")},
      {"journal", Program, Task("journal"), false, "program/Journal.txt"},
      {"move", Database, Task("move"), true},
      {"save in the editor", Database, Task("save")},
      {"save under another name", Database, Task("rename")},
      {"save in the database", Converted, Task("save stored")},
      {"rename in the database", Converted, Task("rename stored")},
      {"data source",
       [](const std::string& folder) {
         Need(CreateDatabaseFile(folder + "/rain.sqlite"));
         WriteFile(folder + "/odbc.ini", "[other]\nDriver=SQLite3\nDatabase=/other.sqlite\n");
       },
       Task("data source")},
  };
}

int DoTask(const std::string& name, const std::string& folder) {
  const std::string program = folder + "/program";
  ClearTemporaries(program);
  ClearTemporaries(folder);
  const auto tell = [](const auto& result) {
    if (!result) std::fprintf(stderr, "%s\n", result.error().c_str());
    return result ? 0 : 1;
  };
  if (name == "data source") {
    ::setenv("ODBCINI", (folder + "/odbc.ini").c_str(), 1);
    return tell(RegisterDatabaseFile(folder + "/rain.sqlite"));
  }
  if (name == "save" || name == "rename" || name.ends_with(" stored")) {
    ClearTemporaries(folder + "/charts");
    const std::vector<StationRecord> stations;
    UnattendedDialogs dialogs;
    const Settings settings(program);
    HyetexPlotDB database(settings, dialogs);
    database.ConnectionText = Db(folder);
    FolderCharts files(folder + "/charts", stations);
    DatabaseCharts stored(database, stations);
    return SaveFirstChart(name.ends_with("stored") ? static_cast<ChartSource&>(stored) : files,
                          name.starts_with("rename"));
  }
  if (name == "move") {
    std::vector<std::string> paths;
    for (int day = 0; day < Charts; ++day)
      if (FileExists(ChartPath(folder, day))) paths.push_back(ChartPath(folder, day));
    UnwatchedProgress progress;
    return tell(MoveFilesAfterLoading(paths, folder + "/moved", progress));
  }
  if (name == "journal") {
    SessionJournal journal;
    journal.Start(program, 1, {});
    for (int i = 0; i < 4; ++i) journal.Record({.What = JournalEvent::Kind::Press, .X = 100.0 + i, .Y = 7});
    if (journal.Trouble()) std::fprintf(stderr, "%s\n", journal.Trouble()->c_str());
    return journal.Trouble() ? 1 : 0;
  }
  if (name == "damaged lists") return tell(KeepCopy(program + "/" + std::string(ListsFileName)));
  auto lists = ReadLists(program);
  if (!lists) return tell(lists);
  if (name == "lists") {
    lists->Stations.push_back({"New", "NM-New-09", 0, 0});
    if (lists->Stations.size() > 4) lists->Stations.resize(4);
    return tell(SaveLists(program, *lists));
  }
  auto tasks = LoadTasks(program, lists->Stations);
  if (!tasks) return tell(tasks);
  for (ChartRecord& task : tasks->Tasks) task.EyedDepth = 7;
  return tell(SaveTasks(program, tasks->Tasks));
}

}  // namespace hyetex::test
