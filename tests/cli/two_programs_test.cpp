// Two programs at once on one database leave what one after the other would have left.
//
// HYETEX_ROUNDS is the number of rounds for each pair of commands; 1 without it.
#include <set>
#include <thread>

#include "cli/run.h"
#include "database/engines.h"
#include "database/store/stored_text.h"
#include "database/stored_charts.h"
#include "platform/odbc/recordset.h"

namespace hyetex::test {
namespace {

using ::testing::Contains;

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

  // All rows and extracted files, in an order that does not tell who came first.
  std::string State(const Ran& a, const Ran& b) {
    std::multiset<std::string> lines;
    for (const char* name : {"CHART", "CHART_ASCII", "INSTRUMENT", "STATION"}) {
      auto table = Must(Recordset::Open(Connection_, name));
      for (; !table.Eof(); Must(table.MoveNext())) {
        std::string line = name;
        for (int i = 0; i < table.FieldCount(); ++i) line += "|" + TextOf(Must(table.Value(i)));
        lines.insert(line);
      }
    }
    for (const char* desk : {"out0", "out1"})
      if (std::filesystem::exists(Folder / desk))
        for (const auto& entry : std::filesystem::directory_iterator(Folder / desk))
          lines.insert(desk + ReadFile(entry.path()));
    std::string text = std::to_string(a.Status) + std::to_string(b.Status) + "\n";
    for (const std::string& line : lines) text += line + "\n";
    return text;
  }

  Connection Connection_;
};
HYETEX_ON_ALL_ENGINES(TwoPrograms);

TEST_P(TwoPrograms, LeaveWhatOneAfterTheOtherLeaves) {
  const char* chosen = std::getenv("HYETEX_ROUNDS");
  const int rounds = chosen == nullptr ? 1 : std::atoi(chosen);
  const std::vector<std::string> commands = {"load", "populate", "synchronise"};
  for (std::size_t i = 0; i < commands.size(); ++i)
    for (std::size_t j = i; j < commands.size(); ++j) {
      SCOPED_TRACE(commands[i] + " and " + commands[j]);
      const auto a = Words(commands[i], "0", "new"), b = Words(commands[j], "1", "new");
      std::vector<std::string> serial;
      for (const bool swapped : {false, true}) {
        ASSERT_NO_FATAL_FAILURE(Prepare());
        Ran first = RunCli(swapped ? b : a), second = RunCli(swapped ? a : b);
        if (swapped) std::swap(first, second);
        serial.push_back(State(first, second));
      }
      int off = 0;
      for (int round = 0; round < rounds; ++round) {
        ASSERT_NO_FATAL_FAILURE(Prepare());
        Ran ranA, ranB;
        std::thread other([&] { ranB = RunCli(b); });
        ranA = RunCli(a);
        other.join();
        const std::string state = State(ranA, ranB);
        if (state == serial[0] || state == serial[1]) continue;
        if (off++ > 0) continue;
        EXPECT_THAT(serial, Contains(state)) << ranA.Out << ranA.Error << ranB.Out << ranB.Error;
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
  const auto again = Must(Transaction::BeginWriting(Connection_, "CHART", progress));
  auto second = Must(Connection::Open(Text()));
  const auto begun = Transaction::BeginWriting(second, "CHART", impatient);
  ASSERT_FALSE(begun);
  EXPECT_EQ(begun.error().Number, db_error::Cancelled) << begun.error().Description;
  EXPECT_EQ(impatient.Told, "waiting for another program");
}

}  // namespace
}  // namespace hyetex::test
