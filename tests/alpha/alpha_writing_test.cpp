// The list of an instrument's charts and the writing into their texts, on each engine.
#include "alpha/alpha_writing.h"

#include <gmock/gmock.h>

#include "core/numbers.h"
#include "database/access/create_tables.h"
#include "database/engines.h"
#include "database/stored_charts.h"
#include "scripted_dialogs.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AlphaCharts : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    db_ = Must(Connection::Open(Text()));
    ASSERT_TRUE(CreateTables(db_));
    ASSERT_THAT(Make(db_, *MissingCompletion(db_)).Failed, IsEmpty());
    Database.ConnectionText = Text();
  }
  void Run(const std::string& sql, std::vector<DbValue> values = {}) { Must(db_.Execute(sql, values)); }
  void Put(const std::string& code, Date date, const std::string& text, int loaded = 0) {
    Run("INSERT INTO CHART_ASCII (instrument_code_id, chart_date, ascii_file, loaded, comments) "
        "VALUES (?, ?, ?, ?, 'kept')",
        {code, DbDate{date}, DbBinary{text}, std::int64_t{loaded}});
  }
  /// The chart of a day of March 1998, with these alphas.
  static std::string Chart(int day, const std::string& selected,
                           const std::vector<std::string>& alphas = {}) {
    std::string text = StoredChart{.Start = MakeDate(1998, 3, day, 10), .Alpha = selected}.Text();
    std::string lines;
    for (std::size_t i = 0; i < alphas.size(); ++i)
      lines += "Alpha " + std::to_string(i + 1) + " : " + alphas[i] + "\r\n";
    return text.insert(text.rfind("Alpha Value"), lines);
  }
  void PutDays(int days, int loaded = 0) {
    for (int day = 1; day <= days; ++day)
      Put("RG12", MakeDate(1998, 3, day, 10), Chart(day, "None", {"0.5"}), loaded);
  }
  AlphaList List(const std::string& code = "RG12") {
    auto list = ReadAlphaList(Database, code, Unwatched);
    EXPECT_TRUE(list) << list.error().Description;
    return list ? *list : AlphaList{};
  }
  AlphaWriting Write(const AlphaList& list, const SelectedAlpha& alpha) {
    return WriteSelectedAlpha(Database, list.InstrumentCode, list.Charts, alpha, Unwatched);
  }
  /// Of all records by their dates: the selected alpha's line, the mark and the comment.
  std::vector<std::string> Records() {
    std::map<Date, std::string> records;
    for (auto table = Must(Recordset::Open(db_, "chart_ascii")); !table.Eof(); Must(table.MoveNext())) {
      const std::string text = TextOf(Must(table.Value("ascii_file")));
      const std::size_t at = std::min(text.find("Alpha Value Selected: "), text.size());
      records[DateOf(Must(table.Value("chart_date")))] =
          text.substr(at, text.find_first_of("\r\n", at) - at) + " " +
          ShortText(NumberOf(Must(table.Value("loaded")))) + " " + TextOf(Must(table.Value("comments")));
    }
    std::vector<std::string> lines;
    for (auto& [date, line] : records) lines.push_back(line);
    return lines;
  }

  Settings settings_{Folder.Path()};
  ScriptedDialogs dialogs_;
  HyetexPlotDB Database{settings_, dialogs_};
  UnwatchedProgress Unwatched;
  Connection db_;
};
HYETEX_ON_ALL_ENGINES(AlphaCharts);

TEST_P(AlphaCharts, AreListedByCodeInAnyCaseAndPaddingAndByTheirStarts) {
  Put("rg12  ", MakeDate(1998, 3, 9, 10), Chart(9, "0.25", {"0.1", "0.2"}), 1);
  Put("RG12", MakeDate(1998, 3, 5, 10), Chart(5, "None"));
  Put("RG1", MakeDate(1998, 3, 6, 10), Chart(6, "None", {"9"}));
  Put("RG12", MakeDate(1998, 3, 7, 10), "");
  for (const char* code : {"RG12", "rg12", "RG12   "}) {
    const AlphaList list = List(code);
    ASSERT_THAT(list.Charts, SizeIs(3)) << code;
    EXPECT_EQ(IsoText(list.Charts[0].Start()), "1998-03-05T10:00:00");
    EXPECT_EQ(list.Charts[0].Chart.SelectedAlpha, NoAlpha);
    EXPECT_EQ(IsoText(list.Charts[1].Start()), "1998-03-07T10:00:00") << "an empty text keeps its place";
    EXPECT_EQ(list.Charts[1].Chart.AlphaCount, 0);
    EXPECT_EQ(list.Charts[2].Chart.AlphaCount, 2);
    EXPECT_EQ(list.Charts[2].Chart.SelectedAlpha, 0.25F);
    EXPECT_TRUE(list.Charts[2].IsConverted);
    EXPECT_FALSE(list.Charts[0].IsConverted);
  }
  EXPECT_THAT(List("RG99").Charts, IsEmpty());
  Run("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('RG12  ')");
  Run("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('rg12')");
  Run("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (NULL)");
  Run("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('RG1')");
  EXPECT_THAT(AlphaInstruments(Database).value(), ElementsAre("RG12", "RG1"));
}

TEST_P(AlphaCharts, GetTheValueAndAreMarkedForConvertingAgainAndKeepAllElse) {
  PutDays(3, 1);
  std::string feeds = Chart(4, "None", {"0.5"});
  std::erase(feeds, '\r');
  Put("rg12 ", MakeDate(1998, 3, 4, 10), feeds);
  Put("RG12", MakeDate(1998, 3, 5, 10), Chart(5, "0.004"), 1);
  Put("RG1", MakeDate(1998, 3, 6, 10), Chart(6, "None"), 1);
  const AlphaWriting result = Write(List(), {0.004});
  EXPECT_EQ(
      AlphaMessage(result, {0.004}),
      "\"Alpha Value Selected: 0.004\" was written into 4 charts. 1 chart had it before.\n\nPlease note:\n"
      "3 charts were converted to time-depth data before, and need converting again: listed as not "
      "converted.");
  EXPECT_TRUE(result.Report.IsClean());
  const std::string written = "Alpha Value Selected: 0.004 0 kept";
  EXPECT_THAT(Records(), ElementsAre(written, written, written, written, "Alpha Value Selected: 0.004 1 kept",
                                     "Alpha Value Selected: None 1 kept"));
  std::string wanted = Chart(4, "0.004", {"0.5"});
  std::erase(wanted, '\r');
  auto table = Must(Recordset::Open(
      db_, "chart_ascii", {.Where = {{"chart_date", Compare::Equal, DbDate{MakeDate(1998, 3, 4, 10)}}}}));
  EXPECT_EQ(TextOf(Must(table.Value("ascii_file"))), wanted);
}

TEST_P(AlphaCharts, OfAListLongerThanAFewAreWrittenAllTheSame) {
  for (int day = 0; day < 70; ++day) {
    const Date start = MakeDate(1998, 1, 1, 10) + day;
    Put("RG12", start, StoredChart{.Start = start}.Text());
  }
  AlphaList list = List();
  list.Charts.resize(65);
  EXPECT_EQ(Write(list, {0.0}).Written, 65U);
  EXPECT_EQ(std::ranges::count(Records(), "Alpha Value Selected: 0 0 kept"), 65);
  EXPECT_EQ(Write(List(), {}).Written, 65U);
}

TEST_P(AlphaCharts, ChangedOrRemovedMeanwhileAreLeftOutAndNamed) {
  PutDays(5);
  const AlphaList list = List();
  Run("UPDATE CHART_ASCII SET ascii_file = ? WHERE chart_date = ?",
      {DbBinary{Chart(2, "None", {"0.6"})}, DbDate{MakeDate(1998, 3, 2, 10)}});
  Run("DELETE FROM CHART_ASCII WHERE chart_date = ?", {DbDate{MakeDate(1998, 3, 3, 10)}});
  Put("RG12", MakeDate(1998, 3, 9, 10), Chart(9, "None"));
  const AlphaWriting result = Write(list, {0.7});
  EXPECT_EQ(result.Written, 3U);
  EXPECT_THAT(
      result.Report.Refused,
      ElementsAre("RG12 02/03/1998 10:00:00: it has been changed by another program since it was listed",
                  "RG12 03/03/1998 10:00:00: it is no longer in the database"));
  const std::string written = "Alpha Value Selected: 0.7 0 kept", old = "Alpha Value Selected: None 0 kept";
  EXPECT_THAT(Records(), ElementsAre(written, old, written, written, old)) << "nobody has looked at the last";
}

TEST_P(AlphaCharts, WhoseTextDoesNotTakeTheValueAreLeftOutAndNamed) {
  PutDays(1);
  Put("RG12", MakeDate(1998, 3, 2, 10), "");
  Put("RG12", MakeDate(1998, 3, 3, 10), Chart(3, "None") + "Selected alpha: 8\r\n");
  const AlphaWriting result = Write(List(), {0.7});
  EXPECT_EQ(result.Written, 1U);
  EXPECT_FALSE(result.Report.IsClean());
  EXPECT_THAT(result.Report.Refused, ElementsAre("RG12 02/03/1998 10:00:00: its text is no chart",
                                                 HasSubstr("another selected alpha")));
}

TEST_P(AlphaCharts, AreAsBeforeWhenOneOfThemFails) {
  PutDays(40, 1);
  if (GetParam() == Engine::SQLite) {
    Run("CREATE TRIGGER refuse BEFORE UPDATE ON CHART_ASCII WHEN OLD.chart_date >= '1998-03-30' "
        "BEGIN SELECT RAISE(ABORT, 'no more'); END");
  } else {
    Run("CREATE FUNCTION refuse() RETURNS trigger AS $$ BEGIN RAISE EXCEPTION 'no more'; END $$ "
        "LANGUAGE plpgsql");
    Run("CREATE TRIGGER refuse BEFORE UPDATE ON CHART_ASCII FOR EACH ROW WHEN (OLD.chart_date >= "
        "'1998-03-30') "
        "EXECUTE FUNCTION refuse()");
  }
  const auto before = Records();
  const AlphaWriting result = Write(List(), {0.7});
  EXPECT_FALSE(result.IsDone());
  EXPECT_EQ(result.Written, 0U);
  EXPECT_THAT(AlphaMessage(result, {0.7}),
              ::testing::AllOf(HasSubstr("Nothing was written.\n\nThe database ended the work"),
                               HasSubstr("no more")));
  EXPECT_EQ(Records(), before);
}

class StopsAt : public Progress {
 public:
  explicit StopsAt(int step) : left_(step) {}
  bool Step(std::int64_t, std::int64_t, std::string_view) override { return --left_ >= 0; }

 private:
  int left_;
};

TEST_P(AlphaCharts, AreAsBeforeWhenTheOperatorStopsTheWork) {
  PutDays(6);
  StopsAt fourth(3);
  const AlphaList list = List();
  const auto before = Records();
  const AlphaWriting result = WriteSelectedAlpha(Database, "RG12", list.Charts, {0.7}, fourth);
  EXPECT_EQ(AlphaMessage(result, {0.7}), "Nothing was written.\n\nThe work was stopped before its end.");
  EXPECT_EQ(Records(), before);
  StopsAt second(1);
  const auto some = ReadAlphaList(Database, "RG12", second);
  EXPECT_THAT(some->Charts, SizeIs(1));
  EXPECT_THAT(some->Notes, ElementsAre("The list was stopped before its end."));
}

TEST_P(AlphaCharts, WithoutTheMarkOrWithATextColumnTakeTheValueToo) {
  Run("DROP TABLE CHART_ASCII");
  Run("CREATE TABLE CHART_ASCII (instrument_code_id CHAR(20), chart_date VARCHAR(30), ascii_file TEXT)");
  const std::string text = Chart(5, "None");
  Run("INSERT INTO CHART_ASCII VALUES ('RG12                ', '1998-03-05T10:00', ?)", {text});
  const AlphaList list = List();
  ASSERT_THAT(list.Charts, SizeIs(1));
  EXPECT_EQ(Write(list, {0.125}).Written, 1U);
  auto table = Must(Recordset::Open(db_, "chart_ascii"));
  EXPECT_EQ(TextOf(Must(table.Value("ascii_file"))), Chart(5, "0.125"));
}

}  // namespace
}  // namespace hyetex
