// Two desks at work for days, in minutes: each is the real program without a screen, its tablet on a
// pseudo-terminal at full speed, its operator taking tools at random; tablets are unplugged, programs killed,
// disks full; both desks load and convert into the same databases. Behind it each chart must be there, byte
// for byte as it was traced, and its rain in every database; and the program that nobody killed must hold no
// more than at first.
//
// usage: hyetex_soak [SESSIONS [SEED]]          PostgreSQL joins where HYETEX_POSTGRES names a cluster
// (scripts/postgres)
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "chartfiles/chart_reader.h"
#include "core/numbers.h"
#include "database/access/new_database.h"
#include "paths.h"
#include "platform/odbc/recordset.h"
#include "soak/desk_program.h"
#include "soak/soak_station.h"
#include "support.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool MemoryIsTold = false;  // the sanitizer keeps what was given back
#else
constexpr bool MemoryIsTold = true;
#endif
constexpr long FewSessions = 100;  // too few to tell from warming up
constexpr long MostKilobytesASession = 8;
constexpr double RoundedMm = 0.05;  // a chart's rows are rounded each

[[noreturn]] void Stop(const std::string& why) {
  std::fprintf(stderr, "hyetex_soak: %s\n", why.c_str());
  std::exit(2);
}

/// A database that ends with the soak.
struct SoakDatabase {
  std::string Name, Text, Server, Made;
};

std::vector<SoakDatabase> MakeDatabases(const std::string& folder,
                                        const std::vector<StationOrder>& stations) {
  std::vector<SoakDatabase> databases;
  const std::string file = folder + "/rain.sqlite";
  if (!CreateDatabaseFile(file)) Stop("no database file can be made");
  databases.push_back({"SQLite", "Driver=SQLite3;Database=" + file, "", ""});
  if (const char* cluster = std::getenv("HYETEX_POSTGRES")) {
    std::string server = ReadFile(std::string(cluster) + "/connection");
    if (server.empty()) Stop("there is no cluster in HYETEX_POSTGRES");
    server.pop_back();
    const std::string name = "soak_" + std::to_string(::getpid());
    auto connection = Connection::Open(server);
    if (!connection || !connection->Execute("CREATE DATABASE " + name)) Stop("the server makes no database");
    databases.push_back({"PostgreSQL", server.substr(0, server.rfind('=') + 1) + name, server, name});
    const Ended made =
        RunCommand({CommandLineProgram(), "create-tables", "--complete", "--db", databases.back().Text});
    if (made.Status != 0) Stop(made.Told);
  }
  for (const SoakDatabase& database : databases) {
    auto connection = Connection::Open(database.Text);
    if (!connection) Stop(connection.error().Description);
    for (const StationOrder& station : stations) {
      const DbValue code[] = {station.Instrument};
      if (!connection->Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (?)", code))
        Stop("no instrument");
    }
  }
  return databases;
}

/// Whether all of a station's charts are in the database as they are in its folder, and their rain.
long CountLost(const SoakDatabase& database, const StationOrder& station) {
  long lost = 0;
  const std::string to = station.Folder + "/" + database.Name;
  fs::create_directory(to);
  (void)RunCommand({CommandLineProgram(), "extract", "--db", database.Text, "--folder",
                    station.Folder + "/program", "--to", to, "--instrument", station.Instrument});
  double rain = 0;
  long charts = 0;
  for (const auto& entry : fs::directory_iterator(station.Folder + "/program/out")) {
    const std::string name = entry.path().filename();
    const std::string bytes = ReadFile(entry.path());
    ++charts;
    if (ReadFile(to + "/" + name) != bytes)
      ++lost, std::printf("%s has not the bytes of %s\n", database.Name.c_str(), name.c_str());
    ChartReading reading;
    ReadChartText(bytes, name, {}, reading);
    rain += reading.SeriesPoints[static_cast<std::size_t>(reading.Chart.SeriesCount)].Depth;
  }
  auto connection = Connection::Open(database.Text);
  double rows = 0;
  auto chart = Recordset::Open(
      *connection, "CHART",
      {.Columns = {"depth"}, .Where = {{"instrument_code_id", Compare::Equal, station.Instrument}}});
  for (; chart && !chart->Eof(); (void)chart->MoveNext()) rows += NumberOf(*chart->Value("depth"));
  if (std::abs(rows - rain) > RoundedMm * static_cast<double>(charts)) {
    ++lost;
    std::printf("%s has %.2f mm of %s, its charts %.2f mm\n", database.Name.c_str(), rows,
                station.Instrument.c_str(), rain);
  }
  return lost;
}

void Row(const char* what, long count) { std::printf("%-44s %9ld\n", what, count); }

int Run(int sessions, unsigned seed) {
  const TempFolder folder;
  std::vector<StationOrder> stations{
      {folder / "killed", "NM-Hill Farm-01", 0, 1, sessions / 2, seed, false, {}},
      {folder / "steady", "NM-Mill Pond-01", 1, 4, sessions - sessions / 2, seed + 1, true, {}},
  };
  const auto databases = MakeDatabases(folder.Path(), stations);
  auto* counts = static_cast<SoakCounts*>(::mmap(nullptr, sizeof(SoakCounts) * stations.size(),
                                                 PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  const auto start = std::chrono::steady_clock::now();
  std::vector<pid_t> workers;
  for (std::size_t i = 0; i < stations.size(); ++i) {
    for (const SoakDatabase& database : databases) stations[i].Databases.push_back(database.Text);
    fs::create_directory(stations[i].Folder);
    const pid_t worker = ::fork();
    if (worker == 0) {
      SoakStation(stations[i], counts[i]).RunAll();
      std::fflush(stdout);
      ::_exit(0);
    }
    workers.push_back(worker);
  }
  bool ended = true;
  for (const pid_t worker : workers) {
    int status = 0;
    ended = ::waitpid(worker, &status, 0) == worker && status == 0 && ended;
  }
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

  SoakCounts all;
  for (std::size_t i = 0; i < stations.size(); ++i) {
    const SoakCounts& one = counts[i];
    for (long SoakCounts::*count :
         {&SoakCounts::Sessions, &SoakCounts::Steps, &SoakCounts::Unplugged, &SoakCounts::Killed,
          &SoakCounts::GoneOn, &SoakCounts::FullDisks, &SoakCounts::Loads, &SoakCounts::LoadsKilled,
          &SoakCounts::LoadsFull, &SoakCounts::Lost, &SoakCounts::Crashed})
      all.*count += one.*count;
    for (const SoakDatabase& database : databases) all.Lost += CountLost(database, stations[i]);
  }
  for (const SoakDatabase& database : databases)
    if (!database.Made.empty())
      if (auto server = Connection::Open(database.Server))
        (void)server->Execute("DROP DATABASE " + database.Made + " WITH (FORCE)");

  const SoakCounts& steady = counts[1];
  const long grown = steady.KilobytesNow - steady.KilobytesThen;
  const long watched = std::max(1L, steady.SteadySessions * 3 / 4);
  const bool flat = steady.HandlesNow <= steady.HandlesThen &&
                    (!MemoryIsTold || sessions < FewSessions || grown <= MostKilobytesASession * watched);
  std::printf("seed %u, %.0f s, databases:", seed, seconds);
  for (const SoakDatabase& database : databases) std::printf(" %s", database.Name.c_str());
  std::printf("\n");
  Row("sessions", all.Sessions);
  Row("  steps in them", all.Steps);
  Row("tablets unplugged", all.Unplugged);
  Row("programs killed", all.Killed);
  Row("  sessions gone on with from the journal", all.GoneOn);
  Row("disks full", all.FullDisks);
  Row("runs into a database", all.Loads);
  Row("  killed", all.LoadsKilled);
  Row("  on a full disk", all.LoadsFull);
  Row("steady program: memory at a quarter, KB", steady.KilobytesThen);
  Row("                memory at the end, KB", steady.KilobytesNow);
  Row("                handles at a quarter", steady.HandlesThen);
  Row("                handles at the end", steady.HandlesNow);
  Row("programs that ended by themselves", all.Crashed);
  Row("charts lost or changed", all.Lost);
  const bool good = ended && flat && all.Lost == 0 && all.Crashed == 0 && all.Sessions == sessions;
  std::printf("%s\n", good ? "nothing lost" : flat ? "FAILED" : "FAILED: memory or handles grow");
  return good ? 0 : 1;
}

}  // namespace
}  // namespace hyetex::test

int main(int argc, char** argv) {
  using namespace hyetex::test;
  if (argc == 5 && std::strcmp(argv[1], "--desk") == 0)
    return RunDeskProgram(argv[2], std::atoi(argv[3]), argv[4]);
  const int sessions = argc > 1 ? std::atoi(argv[1]) : 500;
  if (sessions < 2 || sessions > hyetex::MaxTask) {
    std::fprintf(stderr, "usage: hyetex_soak [SESSIONS [SEED]]   (2 to %d sessions)\n", hyetex::MaxTask);
    return 2;
  }
  return Run(sessions, argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1);
}
