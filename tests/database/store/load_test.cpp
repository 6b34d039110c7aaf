// Chart files on their way into a database and out of it, on all engines.
#include "database/store/loading.h"

#include <gmock/gmock.h>

#include <functional>

#include "chartfiles/chart_reader.h"
#include "core/dates.h"
#include "core/files.h"
#include "database/access/create_tables.h"
#include "database/engines.h"
#include "database/store/extracting.h"
#include "database/store/stored_text.h"
#include "database/stored_charts.h"
#include "scripted_dialogs.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

// Does something before a file.
class Meanwhile : public Progress {
 public:
  Meanwhile(std::int64_t before, std::function<bool()> happens)
      : before_(before), happens_(std::move(happens)) {}
  bool Step(std::int64_t done, std::int64_t, std::string_view) override {
    return done != before_ || happens_();
  }

 private:
  std::int64_t before_;
  std::function<bool()> happens_;
};

class LoadTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    if (HasFatalFailure()) return;
    database_.ConnectionText = Text();
    lists_.Stations = {{"Hill", "RG12", 0, 0}, {"Mill", "RG7", 0, 0}};
    // No comment may say "refused"; all else is as everywhere.
    const bool sqlite = GetParam() == Engine::SQLite;
    Run(std::string("CREATE TABLE CHART_ASCII (station varchar(25), instrument_code_id varchar(40), "
                    "chart_date timestamp, ascii_file ") +
        (sqlite ? "longvarbinary" : "bytea") +
        ", chart_Reliability_code varchar(20), comments varchar(200) CHECK (comments <> 'refused'), "
        "autokey integer, loaded integer)");
    ASSERT_TRUE(database_.OpenDatabase());
    ASSERT_TRUE(CreateTables(database_.DatabaseConnection));
    database_.Close();
    for (const char* code : {"RG12", "rg7"})
      Run("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('" + std::string(code) + "')");
    std::filesystem::create_directories(Folder / "in");
  }

  void Run(const std::string& sql, std::vector<DbValue> values = {}) {
    auto connection = Connection::Open(Text());
    ASSERT_TRUE(connection) << connection.error().Description;
    const auto done = connection->Execute(sql, values);
    ASSERT_TRUE(done) << done.error().Description;
  }
  void PutRecord(const std::string& code, Date date, const std::string& text) {
    Run("INSERT INTO CHART_ASCII (instrument_code_id, chart_date, ascii_file) VALUES (?, ?, ?)",
        {code, DbDate{date}, DbBinary{text}});
  }
  std::string Put(const std::string& name, const std::string& bytes) {
    WriteFile(Folder / ("in/" + name), bytes);
    return Folder / ("in/" + name);
  }
  /// A chart file under its own name.
  std::string Put(const StoredChart& chart) {
    const std::string text = chart.Text();
    const StoredText stored = SplitStoredText(text);
    return Put(std::string(stored.FileName), std::string(stored.Bytes));
  }
  LoadResult Load(const std::vector<std::string>& paths) {
    return LoadFiles(database_, lists_, paths, unwatched_);
  }
  std::vector<FileSummary> List() {
    const auto list = ReadDatabaseList(database_, lists_.Stations, unwatched_);
    EXPECT_TRUE(list) << (list ? "" : list.error().Description);
    return list ? list->Files : std::vector<FileSummary>();
  }
  ExtractResult Extract() { return ExtractFiles(database_, List(), Folder / "out", unwatched_); }
  /// One value of all records, as text.
  std::vector<std::string> Values(const char* column) {
    std::vector<std::string> values;
    EXPECT_TRUE(database_.OpenChartAscii());
    for (Recordset& table = database_.ChartAsciiTable; !table.Eof(); (void)table.MoveNext())
      values.push_back(TextOf(*table.Value(column)));
    database_.Close();
    return values;
  }
  std::vector<std::string> GeneralComments() {
    std::vector<std::string> comments;
    for (const FileSummary& file : List()) comments.push_back(file.Chart.GeneralComment);
    return comments;
  }

  ScriptedDialogs dialogs_;
  Settings settings_{Folder.Path()};
  HyetexPlotDB database_{settings_, dialogs_};
  ReferenceLists lists_;
  UnwatchedProgress unwatched_;
};
HYETEX_ON_ALL_ENGINES(LoadTest);

TEST_P(LoadTest, GivesEveryFileBackByteForByteAndReadsItAlike) {
  const std::string head = "HYETEX88 ASCII FILE\r\nInstrument Code: RG12\r\nStart: ";
  std::vector<std::string> texts{
      head + "05/03/98\r\nDigitation Points:\r\n0,0,\r\n1.5,2,CODE202\r\nGeneral Comment: dry\r\n",
      head + "06/03/98 07:15\r\nEnd: 07/03/98",  // the last line has no end
      "hyetex88\nInstrument Code: RG12\nStart: 07/03/98\nGeneral Comment: line feeds\n",
      head +
          "08/03/98\r\nGeneral Comment: a bare\nManual Depth: 3\r\n\r\n1,2,\n3,4,\r\nSelected Depth: 4.5\r\n",
      head + "09/03/98\r\nGeneral Comment: it's \"so\" \\ 50% ; -- \xC3\xA9\xE2\x82\xAC\r\n",
      head + "10/03/98\r\nGeneral Comment: caf\xE9 \x93quoted\x94\r\n",
      head + "11/03/98\r\n" + std::string("Chart Method: 2\0\x01\xFF\r\n", 20) + "\n\n\r",
      head + "12/03/1887 23:59\r\nChart Reliability: 3-Unreliable\r\nAlpha 1 : 0.5\r\n" +
          "Alpha Value Selected: 0.25\r\n",
      head + "13/03/98\r\n" + std::string(300'000, ' ') + "\r\nEyed Depth: 3\r\n"};
  std::vector<std::string> paths;
  for (std::size_t i = 0; i < texts.size(); ++i)
    paths.push_back(Put("chart " + std::to_string(i) + "-19980305-0000.dat", texts[i]));
  const LoadResult loaded = Load(paths);
  EXPECT_EQ(LoadMessage(loaded), "9 files transferred from file to Database chart_ascii table");
  EXPECT_THAT(Values("comments"),
              UnorderedElementsAre("dry", "", "line feeds", "a bare\nManual Depth: 3",
                                   "it's \"so\" \\ 50% ; -- \xC3\xA9\xE2\x82\xAC",
                                   "caf\xC3\xA9 \xE2\x80\x9Cquoted\xE2\x80\x9D", "", "", ""));
  EXPECT_EQ(ExtractMessage(Extract(), "F"), "9 Files extracted to F");

  const std::vector<FileSummary> listed = List();
  ASSERT_EQ(listed.size(), texts.size());
  for (const FileSummary& file : listed) {
    EXPECT_EQ(ReadFile(Folder / ("out/" + file.Name)), ReadFile(Folder / ("in/" + file.Name))) << file.Name;
    ChartReading full;
    ASSERT_TRUE(ReadChartFile(Folder / ("in/" + file.Name), "", {.Stations = lists_.Stations}, full));
    ChartRecord &a = full.Chart, b = file.Chart;
    EXPECT_EQ(
        std::tie(a.InstrumentCode, a.InstrumentIndex, a.StartTime, a.EndTime, a.GeneralComment, a.ChartMethod,
                 a.AlphaCount, a.SelectedAlpha, a.Reliability, a.EyedDepth, a.ManualDepth, a.SelectedDepth),
        std::tie(b.InstrumentCode, b.InstrumentIndex, b.StartTime, b.EndTime, b.GeneralComment, b.ChartMethod,
                 b.AlphaCount, b.SelectedAlpha, b.Reliability, b.EyedDepth, b.ManualDepth, b.SelectedDepth))
        << file.Name;
    EXPECT_EQ(file.Stored, ChartKey("RG12", a.StartTime)) << file.Name;
  }
}

TEST_P(LoadTest, LeavesOneRecordOfAChartThatCountsAsNotConverted) {
  StoredChart chart{.Comment = "old"};
  const std::string path = Put(chart);
  const std::string other = Put(StoredChart{.Instrument = "RG7"});
  ASSERT_EQ(Load({path, other}).Loaded.size(), 2U);
  Run("UPDATE CHART_ASCII SET loaded = 1, instrument_code_id = 'rg12' WHERE instrument_code_id = 'RG12'");
  chart.Comment = "new";
  Put(chart);
  chart.Comment = "newest";
  const std::string copy = Put("copy-19980305-1000.dat", std::string(SplitStoredText(chart.Text()).Bytes));
  const LoadResult loaded = Load({path, copy});
  EXPECT_EQ(loaded.Loaded.size(), 2U);
  EXPECT_THAT(loaded.Report.Notes,
              ElementsAre(HasSubstr("copy-19980305-1000.dat holds the same chart as RG12-")));
  EXPECT_THAT(GeneralComments(), UnorderedElementsAre("", "newest"));
  for (const FileSummary& file : List()) EXPECT_EQ(file.Loaded, 0);
}

TEST_P(LoadTest, LeavesOneRecordOfAChartThatComesTwiceInARun) {
  StoredChart chart{.Comment = "first"};
  const std::string path = Put(chart);
  chart.Comment = "second";
  const std::string copy = Put("copy-19980305-1000.dat", std::string(SplitStoredText(chart.Text()).Bytes));
  const std::string other = Put(StoredChart{.Instrument = "RG7"});
  EXPECT_EQ(Load({path, other, copy, path, copy}).Loaded.size(), 5U);
  EXPECT_THAT(GeneralComments(), UnorderedElementsAre("", "second"));
}

TEST_P(LoadTest, LoadsTheGoodFilesAndNamesTheOthers) {
  StoredChart good;
  const std::string text(SplitStoredText(good.Text()).Bytes);
  lists_.Stations.push_back({"Elsewhere", "RG99", 0, 0});
  const std::string stamp = "-19980305-0000.dat",
                    form = ": the name is not of a chart file's form, CODE-YYYY";
  const std::vector<std::string> paths{
      Put("none" + stamp, "Hyetex\r\nHYETEX88\r\n"),
      Put("long" + stamp, text + std::string(MostChartBytes, ' ')),
      Put("unlisted" + stamp, "HYETEX88\r\nInstrument Code: RG13\r\nStart: 05/03/98\r\n"),
      Put("unknown" + stamp, "HYETEX88\r\nInstrument Code: RG99\r\nStart: 05/03/98\r\n"),
      Put("undated" + stamp, "HYETEX88\r\nInstrument Code: RG12\r\n"),
      Put("two\nlines" + stamp, text),
      Folder / ("in/gone" + stamp),
      Put("lists.dat", text),
      Put("RG12" + stamp + ".bak", text),
      Put(" " + stamp, text),
      Put(good)};
  const LoadResult loaded = Load(paths);
  EXPECT_THAT(loaded.Loaded, ElementsAre(paths.back()));
  EXPECT_THAT(loaded.Report.Refused,
              ElementsAre("none" + stamp + ": it is no chart file", HasSubstr("longer than 4194304 bytes"),
                          HasSubstr("RG13 is not in the list"), HasSubstr("RG99 is not in the database"),
                          HasSubstr("no start date"), HasSubstr("control characters"), HasSubstr("gone-"),
                          HasSubstr("lists.dat" + form), HasSubstr(stamp + ".bak" + form), HasSubstr(form)));
  EXPECT_THAT(LoadMessage(loaded),
              AllOf(HasSubstr("1 files transferred from file to Database chart_ascii table\n\nLeft out:\n"),
                    HasSubstr("\nundated" + stamp + ": it has no start date")));
}

TEST_P(LoadTest, CutsTextsToTheirColumnsOnWholeCharacters) {
  lists_.Stations[0].Name = std::string(24, 'n') + "\xC3\xA9\xC3\xA9";
  std::string comment;
  for (int i = 0; i < 201; ++i) comment += "\xC3\xA9";
  const StoredChart chart{.Comment = comment};
  const LoadResult loaded = Load({Put(chart)});
  ASSERT_EQ(loaded.Loaded.size(), 1U);
  const std::string name(SplitStoredText(chart.Text()).FileName);
  EXPECT_THAT(loaded.Report.Notes, ElementsAre(name + ": the station was cut to 25 characters.",
                                               name + ": the general comment was cut to 200 characters."));
  EXPECT_THAT(Values("station"), ElementsAre(std::string(24, 'n') + "\xC3\xA9"));
  EXPECT_THAT(Values("comments"), ElementsAre(comment.substr(0, 400)));
  EXPECT_THAT(GeneralComments(), ElementsAre(comment));
}

TEST_P(LoadTest, KeepsTheOldRecordOfAChartThatTheDatabaseRefuses) {
  std::vector<StoredChart> charts(4);
  for (std::size_t i = 0; i < charts.size(); ++i) charts[i].Start += static_cast<double>(i);
  std::vector<std::string> paths;
  for (StoredChart& chart : charts) paths.push_back(Put(chart));
  ASSERT_EQ(Load(paths).Loaded.size(), 4U);
  for (std::size_t i = 0; i < charts.size(); ++i) {
    charts[i].Comment = i == 2 ? "refused" : "new";
    Put(charts[i]);
  }
  const LoadResult loaded = Load(paths);
  EXPECT_EQ(loaded.Loaded.size(), 3U);
  EXPECT_FALSE(loaded.Report.Stopped);
  EXPECT_THAT(loaded.Report.Refused,
              ElementsAre(HasSubstr(BaseName(paths[2]).data() +
                                    (": " + std::to_string(db_error::ConstraintViolation)))));
  EXPECT_THAT(GeneralComments(), UnorderedElementsAre("new", "new", "", "new"));
}

TEST_P(LoadTest, TellsWhatIsDoneWhenTheDatabaseOrTheOperatorEndsIt) {
  std::vector<std::string> paths;
  for (int i = 0; i < 5; ++i) paths.push_back(Put(StoredChart{.Start = MakeDate(1998, 3, 1) + i}));
  Meanwhile stop(3, [] { return false; });
  LoadResult loaded = LoadFiles(database_, lists_, paths, stop);
  EXPECT_EQ(loaded.Loaded, std::vector(paths.begin(), paths.begin() + 3));
  EXPECT_THAT(LoadMessage(loaded), HasSubstr("stopped before its end.\nFiles not reached: 2."));

  Meanwhile breaks(2, [&] {
    if (GetParam() == Engine::SQLite)
      Run("DROP TABLE CHART_ASCII");
    else
      OnServer("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = '" + DatabaseName() +
               "'");
    return true;
  });
  for (const std::string& path : paths) WriteFile(path, ReadFile(path) + "Eyed Depth: 9\r\n");
  loaded = LoadFiles(database_, lists_, paths, breaks);
  EXPECT_THAT(loaded.Loaded, IsEmpty());
  ASSERT_TRUE(loaded.Report.Stopped);
  EXPECT_THAT(LoadMessage(loaded),
              HasSubstr("\n\nThe database ended the work: " + NumberAndDescription(*loaded.Report.Stopped)));
  EXPECT_EQ(loaded.Report.Refused.size() + loaded.Report.NotReached, paths.size());
  if (GetParam() == Engine::SQLite) return;
  const auto left = List();
  EXPECT_EQ(left.size(), 3U);
  for (const FileSummary& file : left) EXPECT_EQ(file.Chart.EyedDepth, 0) << file.Name;
}

TEST_P(LoadTest, NeverWritesOutsideTheFolder) {
  const std::string text = "\r\nHYETEX88\r\nInstrument Code: RG12\r\n";
  const Date start = MakeDate(1998, 3, 5);
  const std::string stamp = "-19980305-1000.dat";
  const std::vector<std::string> names{"../../x" + stamp,
                                       "C:\\x" + stamp,
                                       "/tmp/x" + stamp,
                                       "",
                                       ".",
                                       "..",
                                       "C:x" + stamp,
                                       "x\x07" + stamp,
                                       std::string("x\0y", 3) + stamp,
                                       "lists.dat",
                                       ".bashrc",
                                       "link" + stamp,
                                       "good one" + stamp};
  for (std::size_t i = 0; i < names.size(); ++i)
    PutRecord("RG12", start + static_cast<double>(i), names[i] + text);
  Run("INSERT INTO CHART_ASCII (station) VALUES ('nothing else')");
  PutRecord("RG12", start + 50, "feeds" + stamp + "\nHYETEX88\nInstrument Code: RG12\n");
  WriteFile(Folder / "outside.dat", "mine");
  const std::string out = Folder / "out/";
  std::filesystem::create_directories(out);
  std::filesystem::create_symlink(Folder / "outside.dat", out + "link" + stamp);
  WriteFile(out + "good one" + stamp, "HYETEX88 older");
  WriteFile(out + "lists.dat", "HYETEX88 all lists");
  WriteFile(out + "notes" + stamp, "no chart at all");
  PutRecord("RG12", start + 51, "notes" + stamp + text);

  const ExtractResult extracted = Extract();
  EXPECT_EQ(extracted.Extracted, 2);
  EXPECT_EQ(ReadFile(out + "lists.dat"), "HYETEX88 all lists");
  EXPECT_EQ(ReadFile(out + "notes" + stamp), "no chart at all");
  EXPECT_THAT(extracted.Report.Refused,
              AllOf(SizeIs(names.size() + 1),
                    Contains("notes" + stamp + ": what stands there under its name is no chart file")))
      << ExtractMessage(extracted, "");
  EXPECT_EQ(ReadFile(Folder / "outside.dat"), "mine");
  EXPECT_EQ(ReadFile(out + "good one" + stamp), text.substr(2));
  EXPECT_EQ(ReadFile(out + "feeds" + stamp), "HYETEX88\nInstrument Code: RG12\n");
  std::vector<std::string> there;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(out))
    there.push_back(entry.path().filename());
  EXPECT_THAT(there, UnorderedElementsAre("link" + stamp, "good one" + stamp, "feeds" + stamp,
                                          "notes" + stamp, "lists.dat"));
}

TEST_P(LoadTest, ExtractsTheChosenRecordsAlone) {
  std::vector<std::string> paths;
  for (const char* code : {"RG12", "RG7"})
    for (int i = 0; i < 2; ++i)
      paths.push_back(Put(StoredChart{.Instrument = code, .Start = MakeDate(1998, 3, 1) + i}));
  ASSERT_EQ(Load(paths).Loaded.size(), 4U);
  std::vector<FileSummary> rows = List();
  rows.erase(rows.begin() + 1, rows.begin() + 3);
  Run("DELETE FROM CHART_ASCII WHERE instrument_code_id = 'RG7' AND chart_date > '1998-03-01 12:00:00'");
  const ExtractResult extracted = ExtractFiles(database_, rows, Folder / "out", unwatched_);
  EXPECT_EQ(extracted.Extracted, 1);
  EXPECT_THAT(extracted.Report.Refused, ElementsAre(HasSubstr("no longer in the database")));
  EXPECT_TRUE(FileExists(Folder / ("out/" + std::string(BaseName(paths[0])))));

  EXPECT_EQ(ExtractInstrument(database_, "rg7", Folder / "one", unwatched_).Extracted, 1);
  EXPECT_EQ(ExtractInstrument(database_, "", Folder / "all", unwatched_).Extracted, 3);
}

}  // namespace
}  // namespace hyetex
