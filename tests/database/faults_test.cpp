// Servers that stop and programs that are killed in the middle of their work: every chart is then as it was
// before, or wholly done, and the next run does the rest.
#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <map>

#include "cli/run.h"
#include "database/conversion/population_fixture.h"
#include "database/store/loading.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class Strike : public Progress {
 public:
  explicit Strike(std::function<void(std::int64_t)> at) : at_(std::move(at)) {}
  bool Step(std::int64_t done, std::int64_t, std::string_view) override { return at_(done), true; }

 private:
  std::function<void(std::int64_t)> at_;
};

class FaultsTest : public PopulationFixture {
 protected:
  int Charts = 12;

  void SetUp() override {
    PopulationFixture::SetUp();
    Run("INSERT INTO instrument (instrument_code_id) VALUES ('RG12')");
    ASSERT_TRUE(SaveLists(Folder.Path(), Lists));
  }

  /// One chart a day; `version` tells what was stored before from what comes anew.
  StoredChart Chart(int day, int version) const {
    return {.Start = MakeDate(1998, 3, 5, 10) + day,
            .End = MakeDate(1998, 3, 5, 12) + day,
            .Comment = "version " + std::to_string(version)};
  }
  std::string Path(int day) const { return Folder / ChartFileName("RG12", Chart(day, 0).Start); }
  std::vector<std::string> WriteFiles(int version) {
    std::vector<std::string> paths;
    for (int day = 0; day < Charts; ++day) {
      const std::string text = Chart(day, version).Text();
      WriteFile(Path(day), text.substr(text.find('\n') + 1));
      paths.push_back(Path(day));
    }
    return paths;
  }
  LoadResult Load(const std::vector<std::string>& paths, Progress& progress) {
    return LoadFiles(Database, Lists, paths, progress);
  }
  LoadResult Load(const std::vector<std::string>& paths) {
    UnwatchedProgress progress;
    return Load(paths, progress);
  }
  /// Each chart stands there once and whole, in the new version or an older one. The number of new ones.
  int ExpectWholeRecords(int version) {
    const auto records = Read("chart_ascii", {"chart_date", "ascii_file"});
    EXPECT_THAT(records, SizeIs(Charts));
    int news = 0, day = 0;
    for (const std::string& record : records) {
      int of = version;
      while (of >= 0 && record != IsoText(Chart(day, of).Start) + " | " + Chart(day, of).Text()) --of;
      EXPECT_GE(of, 0) << record;
      news += of == version ? 1 : 0;
      ++day;
    }
    return news;
  }

  /// The rows of each day, which are a chart's.
  std::map<std::string, std::vector<std::string>> RowsOfDays() {
    std::map<std::string, std::vector<std::string>> days;
    for (const std::string& row : Rows()) days[row.substr(0, 10)].push_back(row);
    return days;
  }
  /// A chart has all of its rows and its mark, or neither. The number of those that have.
  std::size_t ExpectWholeCharts(const std::map<std::string, std::vector<std::string>>& all) {
    auto days = RowsOfDays();
    for (const auto& [day, rows] : days) EXPECT_EQ(rows, all.at(day));
    for (const std::string& mark : Loaded())
      EXPECT_EQ(mark.ends_with(" | 1"), days.contains(mark.substr(0, 10))) << mark;
    return days.size();
  }

  /// How long the command takes, in microseconds.
  static useconds_t LifeOf(const std::vector<std::string>& words) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunCli(words).Status, 0);
    return static_cast<useconds_t>((std::chrono::steady_clock::now() - start) / std::chrono::microseconds(1));
  }
  /// A killed program's server process ends some time later, and may end its last statement.
  void WaitUntilAlone() {
    if (GetParam() == Engine::SQLite) return;
    Run("CREATE OR REPLACE VIEW others AS SELECT pid FROM pg_stat_activity "
        "WHERE datname = current_database() AND pid <> pg_backend_pid()");
    for (int i = 0; i < 500 && !Read("others", {"pid"}).empty(); ++i) ::usleep(10'000);
  }
};
HYETEX_ON_ALL_ENGINES(FaultsTest);

TEST_P(FaultsTest, KilledLoadLeavesWholeRecords) {
  Charts = 150;
  ASSERT_THAT(Load(WriteFiles(0)).Loaded, SizeIs(Charts));
  std::vector<std::string> words = WriteFiles(1);
  words.insert(words.begin(), {"load", "--db", Text(), "--folder", Folder.Path()});
  const useconds_t life = LifeOf(words);
  int version = 1;
  for (const useconds_t tenths : {4, 6, 7, 8, 9}) {
    WriteFiles(++version);
    RunCli(words, {.KillAfter = life * tenths / 10});
    WaitUntilAlone();
    ExpectWholeRecords(version);
  }
  EXPECT_EQ(RunCli(words).Status, 0);
  EXPECT_EQ(ExpectWholeRecords(version), Charts);
}

TEST_P(FaultsTest, KilledPopulateLeavesWholeCharts) {
  Charts = 40;
  for (int day = 0; day < Charts; ++day) Store(Chart(day, 0));
  const std::vector<std::string> words{"populate",    "--db",         Text(), "--folder",
                                       Folder.Path(), "--instrument", "RG12"};
  const useconds_t life = LifeOf(words);
  const auto all = RowsOfDays();
  for (const useconds_t tenths : {3, 5, 6, 7, 8}) {
    Run("DELETE FROM chart");
    Run("UPDATE chart_ascii SET loaded = NULL");
    RunCli(words, {.KillAfter = life * tenths / 10});
    WaitUntilAlone();
    ExpectWholeCharts(all);
  }
  EXPECT_EQ(RunCli(words).Status, 0);
  EXPECT_EQ(ExpectWholeCharts(all), static_cast<std::size_t>(Charts));
}

class ServerTest : public FaultsTest {
 protected:
  /// Ends all connections to the database but this test's own.
  void EndConnections() {
    Run("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = '" + DatabaseName() +
        "' AND pid <> pg_backend_pid()");
  }
  struct Moment {
    std::string Event, Table;
    std::string When = "true";      ///< the row that brings the end
    std::string Timing = {};        ///< "DEFERRABLE INITIALLY DEFERRED" is at the end of the transaction
    std::string Refused = "false";  ///< the row that is only refused
  };
  /// The server ends the connection that does this.
  void EndConnectionAt(const Moment& moment) {
    Run("CREATE OR REPLACE FUNCTION strike() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN IF " +
        moment.Refused + " THEN RAISE EXCEPTION 'refused'; END IF; IF " + moment.When +
        " THEN PERFORM pg_terminate_backend(pg_backend_pid()); END IF; RETURN NULL; END $$");
    Run("CREATE CONSTRAINT TRIGGER strike AFTER " + moment.Event + " ON " + moment.Table + " " +
        moment.Timing + " FOR EACH ROW EXECUTE FUNCTION strike()");
  }
};
INSTANTIATE_TEST_SUITE_P(Engines, ServerTest, ::testing::Values(Engine::PostgreSQL), EngineName);

TEST_P(ServerTest, EndsTheConnectionInTheMiddleOfALoad) {
  ASSERT_THAT(Load(WriteFiles(0)).Loaded, SizeIs(Charts));
  const std::string deferred = "DEFERRABLE INITIALLY DEFERRED", table = "chart_ascii";
  const std::string third = "NEW.chart_date::date = '1998-03-07'",
                    ninth = "NEW.chart_date::date = '1998-03-13'";
  const std::pair<Moment, int> moments[] = {
      {{"", table}, 0},  // between two files
      {{"DELETE", table}, 0},
      {{"INSERT", table}, 0},
      {{"INSERT", table, "true", deferred}, 0},
      {{.Event = "INSERT", .Table = table, .When = ninth, .Refused = third}, 7},  // by then chart by chart
  };
  int version = 0;
  for (const auto& [moment, loaded] : moments) {
    SCOPED_TRACE(moment.Event + moment.Timing + moment.Refused);
    const auto paths = WriteFiles(++version);
    if (!moment.Event.empty()) EndConnectionAt(moment);
    Strike strike([&, between = moment.Event.empty()](std::int64_t done) {
      if (between && done == 4) EndConnections();
    });
    const LoadResult result = Load(paths, strike);
    EXPECT_EQ(ExpectWholeRecords(version), loaded);
    EXPECT_THAT(result.Loaded, SizeIs(loaded));
    ASSERT_TRUE(result.Report.Stopped);
    EXPECT_THAT(result.Report.Stopped->Description, AllOf(Not(IsEmpty()), Not(HasSubstr("\n"))));
    if (!moment.Event.empty()) Run("DROP TRIGGER strike ON chart_ascii");
    EXPECT_THAT(Load(paths).Loaded, SizeIs(Charts));
    EXPECT_EQ(ExpectWholeRecords(version), Charts);
  }
}

TEST_P(ServerTest, EndsTheConnectionInTheMiddleOfAConversion) {
  std::vector<Date> dates;
  for (int day = 0; day < 6; ++day) {
    Store(Chart(day, 0));
    dates.push_back(Chart(day, 0).Start);
  }
  Options.Overwrite = true;
  const auto converted = [&](bool manual, Progress& progress) {
    Manual = manual;
    Run("UPDATE chart_ascii SET loaded = NULL");
    const ConversionResult result = Convert(dates, progress);
    return std::pair(RowsOfDays(), result);
  };
  UnwatchedProgress unwatched;
  const auto after = converted(true, unwatched).first, before = converted(false, unwatched).first;
  ASSERT_NE(after, before);

  const std::string day = "::date = '1998-03-08'";
  const Moment moments[] = {
      {"INSERT", "chart", "NEW.end_time" + day},
      {"DELETE", "chart", "OLD.end_time" + day},
      {"UPDATE", "chart_ascii", "NEW.loaded = 1 AND NEW.chart_date" + day},
      {"UPDATE", "chart_ascii", "NEW.loaded = 1 AND NEW.chart_date" + day, "DEFERRABLE INITIALLY DEFERRED"},
      {"", ""},  // at the third group, and lets nobody in again
  };
  for (const Moment& moment : moments) {
    SCOPED_TRACE(moment.Event + moment.Timing);
    const bool gone = moment.Event.empty();
    if (!gone) EndConnectionAt(moment);
    Strike strike([&](std::int64_t done) {
      if (!gone || done != 3) return;
      OnServer("ALTER DATABASE " + DatabaseName() + " WITH ALLOW_CONNECTIONS false");
      EndConnections();
    });
    Boxes.Boxes.clear();
    const auto [rows, result] = converted(true, strike);
    EXPECT_EQ(result.ChartsConverted, gone ? 3 : 5);
    EXPECT_EQ(result.ChartsFailed, gone ? 3 : 1);
    ASSERT_THAT(Boxes.Boxes, SizeIs(1));
    EXPECT_THAT(Boxes.Boxes[0].Text, Not(HasSubstr("\n")));
    for (const std::string& mark : Loaded()) {
      const std::string of = mark.substr(0, 10);
      EXPECT_EQ(rows.at(of), (mark.ends_with(" | 1") ? after : before).at(of)) << mark;
    }
    if (gone) OnServer("ALTER DATABASE " + DatabaseName() + " WITH ALLOW_CONNECTIONS true");
    if (!gone) Run("DROP TRIGGER strike ON " + moment.Table);
    EXPECT_EQ(converted(false, unwatched).first, before);
  }
}

}  // namespace
}  // namespace hyetex
