// Two programs at once on one database leave what one after the other would have left.
//
// HYETEX_ROUNDS is the number of rounds for each pair of commands; 1 without it.
#include <algorithm>
#include <map>
#include <set>
#include <thread>

#include "cli/run.h"
#include "core/dates.h"
#include "database/engines.h"
#include "database/store/stored_text.h"
#include "database/stored_charts.h"
#include "platform/odbc/recordset.h"

namespace hyetex::test {
namespace {

const std::string Code = "NM-Hill Farm-01";

class TwoPrograms : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    for (const char* desk : {"0", "1"}) std::filesystem::copy(Demo("program"), Folder / desk);
    ASSERT_EQ(RunCli({"create-tables", "--complete", "--db", Text()}).Status, 0);
    Connection_ = Must(Connection::Open(Text()));
    for (int day = 1; day <= 3; ++day) {
      StoredChart chart{
          .Instrument = Code, .Start = MakeDate(1998, 3, day, 10), .End = MakeDate(1998, 3, day, 12)};
      WriteChart("old", chart);
      chart.Points = {"20,5,", "40,15,", "70,20,", "120,40,"};
      WriteChart("new", chart);
    }
  }

  void WriteChart(const std::string& folder, const StoredChart& chart) {
    std::filesystem::create_directories(Folder / folder);
    const std::string text = chart.Text();
    const StoredText stored = SplitStoredText(text);
    WriteFile(Folder / (folder + "/" + std::string(stored.FileName)), std::string(stored.Bytes));
  }

  std::vector<std::string> Words(const std::string& command, const std::string& desk,
                                 const std::string& charts) {
    std::vector<std::string> words{command, "--db", Text()};
    const auto add = [&](std::vector<std::string> more) {
      words.insert(words.end(), more.begin(), more.end());
    };
    if (command != "extract") add({"--folder", Folder / desk});
    if (command == "load")
      for (const auto& entry : std::filesystem::directory_iterator(Folder / charts)) add({entry.path()});
    if (command == "extract") add({"--to", Folder / ("out" + desk)});
    if (command == "populate") add({"--instrument", Code, "--all", "--overwrite"});
    if (command == "synchronise") add({"--start", "01/01/1990"});
    return words;
  }

  // The old charts, loaded and converted.
  void Prepare() {
    for (const char* table : {"CHART", "CHART_ASCII", "INSTRUMENT", "STATION"})
      Must(Connection_.Execute(std::string("DELETE FROM ") + table));
    const DbValue code[] = {Code};
    Must(Connection_.Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (?)", code));
    for (const char* command : {"load", "populate"}) {
      const Ran ran = RunCli(Words(command, "0", "old"));
      ASSERT_EQ(ran.Status, 0) << ran.Out << ran.Error;
    }
    for (const char* desk : {"0", "1"}) {
      std::filesystem::remove_all(Folder / (std::string("out") + desk));
      std::filesystem::copy(Demo("program"), Folder / desk,
                            std::filesystem::copy_options::overwrite_existing);
    }
  }

  // What there is of each day, and so of each chart: rows and extracted files, in an order that does not tell
  // who came first. Each chart is a transaction of its own: the other program may come between two of them.
  using State = std::map<std::string, std::multiset<std::string>>;
  State StateAfter(const Ran& a, const Ran& b) {
    State state{{"status", {"a" + std::to_string(a.Status), "b" + std::to_string(b.Status)}}};
    for (const char* name : {"CHART", "CHART_ASCII", "INSTRUMENT", "STATION"}) {
      auto table = Must(Recordset::Open(Connection_, name));
      for (; !table.Eof(); Must(table.MoveNext())) {
        std::string line = name, day;
        for (int i = 0; i < table.FieldCount(); ++i) {
          const DbValue value = Must(table.Value(i));
          line += "|" + TextOf(value);
          if (std::holds_alternative<DbDate>(value) && day.empty())
            day = DateCode(DateOf(value)).substr(0, 8);
        }
        state[day].insert(line);
      }
    }
    for (const char* desk : {"0", "1"})
      if (const auto out = Folder / (std::string("out") + desk); std::filesystem::exists(out))
        for (const auto& entry : std::filesystem::directory_iterator(out)) {
          const std::string name = entry.path().filename();
          state[name.substr(Code.size() + 1, 8)].insert(desk + ReadFile(entry.path()));
        }
    return state;
  }

  // Each chart as after one of two runs one after the other.
  static bool IsLike(const State& state, const State (&serial)[2]) {
    return std::ranges::all_of(state,
                               [&](const auto& day) {
                                 return std::ranges::any_of(serial, [&](const State& one) {
                                   const auto found = one.find(day.first);
                                   return found != one.end() && found->second == day.second;
                                 });
                               }) &&
           state.size() == serial[0].size();
  }

  Connection Connection_;
};
HYETEX_ON_ALL_ENGINES(TwoPrograms);

TEST_P(TwoPrograms, LeaveWhatOneAfterTheOtherLeaves) {
  const char* chosen = std::getenv("HYETEX_ROUNDS");
  const int rounds = chosen == nullptr ? 1 : std::atoi(chosen);
  const std::vector<std::string> commands = {"load", "extract", "populate", "synchronise"};
  for (std::size_t i = 0; i < commands.size(); ++i)
    for (std::size_t j = i; j < commands.size(); ++j) {
      SCOPED_TRACE(commands[i] + " and " + commands[j]);
      const auto a = Words(commands[i], "0", "new"), b = Words(commands[j], "1", "new");
      State serial[2];
      for (const bool swapped : {false, true}) {
        ASSERT_NO_FATAL_FAILURE(Prepare());
        Ran first = RunCli(swapped ? b : a), second = RunCli(swapped ? a : b);
        if (swapped) std::swap(first, second);
        serial[swapped] = StateAfter(first, second);
      }
      int off = 0;
      for (int round = 0; round < rounds; ++round) {
        ASSERT_NO_FATAL_FAILURE(Prepare());
        Ran ranA, ranB;
        std::thread other([&] { ranB = RunCli(b); });
        ranA = RunCli(a);
        other.join();
        if (IsLike(StateAfter(ranA, ranB), serial) || off++ > 0) continue;
        ADD_FAILURE() << ::testing::PrintToString(StateAfter(ranA, ranB)) << "\nneither "
                      << ::testing::PrintToString(serial[0]) << "\nnor "
                      << ::testing::PrintToString(serial[1]) << ranA.Out << ranA.Error << ranB.Out
                      << ranB.Error;
      }
      EXPECT_EQ(off, 0) << "of " << rounds << " rounds";
    }
}

TEST_P(TwoPrograms, WaitForALockAndNeverTakeItForAMissingTable) {
  ASSERT_NO_FATAL_FAILURE(Prepare());
  UnwatchedProgress progress;
  auto held = Must(Transaction::BeginWriting(Connection_, "CHART", progress));
  Ran ran;
  std::thread other([&] { ran = RunCli(Words("load", "1", "new")); });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  Must(held.Commit());
  other.join();
  EXPECT_EQ(ran.Status, 0) << ran.Out << ran.Error;

  struct Impatient : Progress {
    bool Step(std::int64_t, std::int64_t, std::string_view what) override {
      Told = what;
      return false;
    }
    std::string Told;
  } impatient;
  auto second = Must(Connection::Open(Text()));
  {
    const auto again = Must(Transaction::BeginWriting(Connection_, "CHART", progress));
    const auto begun = Transaction::BeginWriting(second, "CHART", impatient);
    ASSERT_FALSE(begun);
    EXPECT_EQ(begun.error().Number, db_error::Cancelled) << begun.error().Description;
    EXPECT_EQ(std::exchange(impatient.Told, {}), Transaction::Waiting);
  }
  // Who reads SQLite's file keeps a transaction from its end.
  auto reading = Must(Transaction::Begin(Connection_));
  Must(Connection_.Execute("SELECT * FROM CHART"));
  auto writing = Must(Transaction::BeginWriting(second, "CHART", impatient));
  ASSERT_EQ(Must(second.Execute("DELETE FROM CHART")), 12);
  const auto committed = writing.Commit();
  const bool waits = GetParam() == Engine::SQLite;
  EXPECT_EQ(impatient.Told, waits ? Transaction::Waiting : "");
  ASSERT_EQ(committed.has_value(), !waits);
  if (!waits) return;
  EXPECT_EQ(committed.error().Number, db_error::Cancelled);
  Must(reading.Commit());
  EXPECT_EQ(Must(second.Execute("DELETE FROM CHART")), 12);
}

}  // namespace
}  // namespace hyetex::test
