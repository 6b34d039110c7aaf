// The editor's charts, from a folder and from the database of each engine: one suite over all of them.
#include <gmock/gmock.h>

#include <functional>

#include "core/files.h"
#include "core/numbers.h"
#include "database/access/create_tables.h"
#include "database/engines.h"
#include "database/stored_charts.h"
#include "editor/database_charts.h"
#include "editor/folder_charts.h"
#include "scripted_dialogs.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Charts in one of the places, by the names of their files.
class Charts {
 public:
  virtual ~Charts() = default;
  virtual ChartSource& Source() = 0;
  virtual void Put(const StoredChart& chart, const std::string& bytes) = 0;
  virtual void Remove(const StoredChart& chart) = 0;
  virtual std::map<std::string, std::string> All() = 0;  ///< their bytes
};

class ChartsInFolder : public Charts {
 public:
  ChartsInFolder(std::string folder, const std::vector<StationRecord>& stations)
      : source_(std::move(folder), stations) {}
  ChartSource& Source() override { return source_; }
  void Put(const StoredChart& chart, const std::string& bytes) override {
    WriteFile(source_.Folder() + "/" + ChartFileName(chart.Instrument, chart.Start), bytes);
  }
  void Remove(const StoredChart& chart) override {
    std::filesystem::remove(source_.Folder() + "/" + ChartFileName(chart.Instrument, chart.Start));
  }
  std::map<std::string, std::string> All() override {
    std::map<std::string, std::string> all;
    for (const auto& entry : std::filesystem::directory_iterator(source_.Folder()))
      all[entry.path().filename()] = ReadFile(entry.path());
    return all;
  }

 private:
  FolderCharts source_;
};

class ChartsInDatabase : public Charts {
 public:
  ChartsInDatabase(const std::string& text, HyetexPlotDB& database,
                   const std::vector<StationRecord>& stations)
      : source_(database, stations) {
    database.ConnectionText = text;
    db_ = Must(Connection::Open(text));
    EXPECT_TRUE(CreateTables(db_));
    EXPECT_THAT(Make(db_, *MissingCompletion(db_)).Failed, IsEmpty());
  }
  ChartSource& Source() override { return source_; }
  // With all that loading and converting leave beside it.
  void Put(const StoredChart& chart, const std::string& bytes) override {
    Remove(chart);
    const std::string name = ChartFileName(chart.Instrument, chart.Start);
    const DbValue record[] = {chart.Instrument, DbDate{chart.Start}, DbBinary{MakeStoredText(name, bytes)}};
    Must(
        db_.Execute("INSERT INTO CHART_ASCII (instrument_code_id, chart_date, ascii_file, loaded, comments) "
                    "VALUES (?, ?, ?, 1, 'old')",
                    record));
    const DbValue conversion[] = {Padded(chart), DbDate{chart.Start}};
    Must(db_.Execute("INSERT INTO CHART_CONVERSION (instrument_code_id, chart_date) VALUES (?, ?)",
                     conversion));
  }
  void Remove(const StoredChart& chart) override {
    for (const auto& [table, code] :
         {std::pair("CHART_ASCII", chart.Instrument), std::pair("CHART_CONVERSION", Padded(chart))}) {
      const DbValue key[] = {code, DbDate{chart.Start}};
      Must(db_.Execute(
          "DELETE FROM " + std::string(table) + " WHERE instrument_code_id = ? AND chart_date = ?", key));
    }
  }
  std::map<std::string, std::string> All() override {
    std::map<std::string, std::string> all;
    for (auto table = Must(Recordset::Open(db_, "chart_ascii")); !table.Eof(); Must(table.MoveNext())) {
      const std::string text = TextOf(Must(table.Value("ascii_file")));
      const std::string name = ChartFileName(TextOf(Must(table.Value("instrument_code_id"))),
                                             DateOf(Must(table.Value("chart_date"))));
      EXPECT_EQ(SplitStoredText(text).FileName, name);
      all[name] = SplitStoredText(text).Bytes;
    }
    return all;
  }
  /// Reliability, comment and mark of the records, and when the chart was that is written down as converted.
  std::vector<std::string> Columns() {
    std::vector<std::string> lines;
    for (auto table = Must(Recordset::Open(db_, "chart_ascii")); !table.Eof(); Must(table.MoveNext()))
      lines.push_back(TextOf(Must(table.Value("chart_reliability_code"))) + " " +
                      TextOf(Must(table.Value("comments"))) + " " +
                      ShortText(NumberOf(Must(table.Value("loaded")))));
    for (auto table = Must(Recordset::Open(db_, "chart_conversion")); !table.Eof(); Must(table.MoveNext()))
      lines.push_back(IsoText(DateOf(Must(table.Value("chart_date")))));
    return lines;
  }

 private:
  /// As a column of fixed width has it.
  static std::string Padded(const StoredChart& chart) { return chart.Instrument + "  "; }

  Connection db_;
  DatabaseCharts source_;
};

class ChartSources : public EngineTest {
 protected:
  /// Runs on the database, and on a folder.
  void OnAll(const std::function<void(Charts& charts)>& test) {
    {
      SCOPED_TRACE("folder");
      std::filesystem::create_directory(Folder / "charts");
      ChartsInFolder charts(Folder / "charts", Stations);
      test(charts);
    }
    ResetAsked();
    SCOPED_TRACE("database");
    ChartsInDatabase charts(Text(), database_, Stations);
    test(charts);
    database_.Close();
  }
  static std::string Bytes(const StoredChart& chart) {
    const std::string text = chart.Text();
    return std::string(SplitStoredText(text).Bytes);
  }
  OpenedChart OpenFirst(Charts& charts) {
    const auto list = charts.Source().List({}, unwatched_);
    EXPECT_TRUE(list && !list->Files.empty());
    auto opened = charts.Source().Open(list->Files.at(0), {});
    EXPECT_TRUE(opened) << opened.error();
    return *std::move(opened);
  }
  Result<std::optional<SavedChart>> Save(Charts& charts, const OpenedChart& chart,
                                         const ChartRecord& edited) {
    const auto asks = [this](const std::string& question) {
      Asked.push_back(question);
      return Agrees;
    };
    return charts.Source().Save(chart, edited, {asks, asks, asks}, unwatched_);
  }
  void ResetAsked() { Asked.clear(), Agrees = true; }

  const std::vector<StationRecord> Stations{{"Hill", "RG12", 0, 0}, {"Mill", "RG7", 0, 0}};
  std::vector<std::string> Asked;
  bool Agrees = true;
  UnwatchedProgress unwatched_;
  ScriptedDialogs dialogs_;
  Settings settings_{Folder.Path()};
  HyetexPlotDB database_{settings_, dialogs_};
  const StoredChart chart_{.Comment = "CODE205::the manual END of the START, selected depth: 9"};
};
HYETEX_ON_ALL_ENGINES(ChartSources);

TEST_P(ChartSources, AreListedByStationAndYear) {
  OnAll([&](Charts& charts) {
    for (const auto& [code, start] : {std::pair("RG7", MakeDate(1998, 3, 5, 10)),
                                      {"RG12", MakeDate(1999, 12, 31, 7)},
                                      {"rg12", MakeDate(1925, 1, 2, 7)},
                                      {"RG12", MakeDate(1998, 3, 5, 10)}}) {
      const StoredChart chart{.Instrument = code, .Start = start, .End = start + 1};
      charts.Put(chart, Bytes(chart));
    }
    const auto entries = [&](const ChartFilter& filter) {
      const auto list = charts.Source().List(filter, unwatched_);
      std::vector<std::string> texts;
      for (const ChartFileInfo& file : list.value().Files) texts.push_back(EntryText(file));
      return std::pair(texts, list->Years);
    };
    const auto [all, years] = entries({});
    EXPECT_THAT(all, ElementsAre("RG12-19980305-1000.dat (5.3.98)", "RG12-19991231-0700.dat (31.12.99)",
                                 "RG7-19980305-1000.dat (5.3.98)", "rg12-19250102-0700.dat (2.1.25)"));
    EXPECT_THAT(years, ElementsAre(1925, 1998, 1999));
    EXPECT_THAT(entries({.InstrumentCode = "Rg12"}).second, ElementsAre(1925, 1998, 1999));
    EXPECT_THAT(entries({.InstrumentCode = "Rg12", .Year = 1925}).first,
                ElementsAre("rg12-19250102-0700.dat (2.1.25)"));
    const auto list = charts.Source().List({.Year = 1999}, unwatched_);
    EXPECT_EQ(list->Files.at(0).InstrumentIndex, 0);
    EXPECT_EQ(list->Years.size(), 3U) << "all of them can be chosen still";
  });
}

TEST_P(ChartSources, KeepEveryByteButTheValuesThatAreSaved) {
  std::string foreign = Bytes(chart_);
  foreign.insert(foreign.find("Digitation Points"),
                 "Note on the pen: Manual Depth was END\r\nCaf\xE9: \xB0\r\n");
  OnAll([&](Charts& charts) {
    charts.Put(chart_, foreign);
    OpenedChart opened = OpenFirst(charts);
    ChartRecord edited = opened.Reading->Chart;
    edited.EndTime += 1.0 / 24;
    edited.ManualDepth = 13.5F;
    edited.SelectedDepth = 11;
    edited.Reliability = 3;
    edited.GeneralComment += "::late";
    const auto saved = Save(charts, opened, edited);
    ASSERT_TRUE(saved && *saved) << (saved ? "" : saved.error());
    EXPECT_THAT(Asked, IsEmpty());

    std::string expected = foreign;
    for (const auto& [old, now] : {std::pair("Start: 05/03/1998 10:00:00", "Start: 05/03/1998 10:00:00"),
                                   {"End: 05/03/1998 12:00:00", "End: 05/03/1998 13:00:00"},
                                   {"\r\nManual Depth: 12\r\n", "\r\nManual Depth: 13.5\r\n"},
                                   {"\r\nSelected Depth: 10\r\n", "\r\nSelected Depth: 11\r\n"},
                                   {"1-Acceptable", "3-Unreliable"},
                                   {"selected depth: 9\r\n", "selected depth: 9::late\r\n"}})
      expected.replace(expected.find(old), std::string(old).size(), now);
    EXPECT_THAT(charts.All(), ElementsAre(std::pair("RG12-19980305-1000.dat", expected)));
    opened = OpenFirst(charts);
    EXPECT_EQ(opened.Reading->Chart.GeneralComment, edited.GeneralComment);
    if (auto* database = dynamic_cast<ChartsInDatabase*>(&charts)) {
      EXPECT_THAT((*saved)->Notes, ElementsAre(HasSubstr("needs converting again")));
      EXPECT_THAT(database->Columns(),
                  ElementsAre("Unreliable " + edited.GeneralComment + " 0", "1998-03-05T10:00:00"));
      EXPECT_THAT((*Save(charts, opened, edited))->Notes, IsEmpty()) << "it is told once";
    }
  });
}

TEST_P(ChartSources, SaveUnderTheNameOfAnotherStartOnlyWhenToldTo) {
  OnAll([&](Charts& charts) {
    charts.Put(chart_, Bytes(chart_));
    OpenedChart opened = OpenFirst(charts);
    ChartRecord edited = opened.Reading->Chart;
    edited.StartTime = MakeDate(1998, 3, 5, 10, 30);
    const auto before = charts.All();
    Agrees = false;
    EXPECT_EQ(*Save(charts, opened, edited), std::nullopt);
    EXPECT_EQ(charts.All(), before);
    Agrees = true;
    const auto saved = Save(charts, opened, edited);
    ASSERT_TRUE(saved && *saved) << (saved ? "" : saved.error());
    EXPECT_EQ(Asked.at(1),
              "Due to changes made to the file details it will be saved in a different name: "
              "RG12-19980305-1030.dat");
    EXPECT_EQ((*saved)->File.FileName, "RG12-19980305-1030.dat");
    opened = OpenFirst(charts);
    EXPECT_EQ(charts.All().size(), 1U);
    EXPECT_EQ(IsoText(opened.Reading->Chart.StartTime), "1998-03-05T10:30:00");
    if (auto* database = dynamic_cast<ChartsInDatabase*>(&charts)) {
      EXPECT_EQ(database->Columns().back(), "1998-03-05T10:30:00") << "else its old rows would stay";
    }

    // Back to the old name, which another chart has taken meanwhile.
    charts.Put(chart_, Bytes(chart_));
    const auto both = charts.All();
    edited.StartTime = chart_.Start;
    const auto list = charts.Source().List({}, unwatched_);
    opened = *charts.Source().Open(list->Files.at(1), {});
    ResetAsked();
    if (dynamic_cast<ChartsInDatabase*>(&charts) != nullptr) {
      EXPECT_THAT(Save(charts, opened, edited).error(),
                  HasSubstr("has another chart by the name of RG12-19980305-1000.dat"));
      EXPECT_EQ(charts.All(), both);
      return;
    }
    const auto asks = [&](const std::string& question) {
      Asked.push_back(question);
      return Asked.size() != 2;
    };
    EXPECT_EQ(*charts.Source().Save(opened, edited, {asks, asks, asks}, unwatched_), std::nullopt);
    EXPECT_EQ(charts.All(), both);
    EXPECT_EQ(
        Asked.at(1),
        "There is an existing file by the name of RG12-19980305-1000.dat. The programme will overwrite it.");
    ASSERT_TRUE(*Save(charts, opened, edited));
    EXPECT_EQ(charts.All().size(), 1U);
  });
}

TEST_P(ChartSources, AskBeforeAChartIsOverwrittenThatSomebodyElseHasChanged) {
  OnAll([&](Charts& charts) {
    charts.Put(chart_, Bytes(chart_));
    const OpenedChart opened = OpenFirst(charts);
    ChartRecord edited = opened.Reading->Chart;
    edited.ManualDepth = 1;
    StoredChart newer = chart_;
    newer.Comment = "newer";
    charts.Put(newer, Bytes(newer));
    Agrees = false;
    EXPECT_EQ(*Save(charts, opened, edited), std::nullopt);
    EXPECT_EQ(charts.All().begin()->second, Bytes(newer));
    EXPECT_THAT(Asked, ElementsAre(HasSubstr("has been changed by another program")));
    Agrees = true;
    ASSERT_TRUE(*Save(charts, opened, edited));
    EXPECT_THAT(charts.All().begin()->second, HasSubstr("the manual END"));

    charts.Remove(chart_);
    EXPECT_THAT(charts.Source().Open(opened.File, {}).error(), HasSubstr("RG12-19980305-1000.dat"));
    Agrees = false;
    const auto saved = Save(charts, opened, edited);
    EXPECT_TRUE(!saved || !*saved) << "nobody wants it back";
    EXPECT_THAT(charts.All(), IsEmpty());
  });
}

TEST_P(ChartSources, DeleteWhatIsNamedAndNothingElse) {
  OnAll([&](Charts& charts) {
    for (int day = 0; day < 3; ++day) {
      const StoredChart chart{.Start = chart_.Start + day, .End = chart_.End + day};
      charts.Put(chart, Bytes(chart));
    }
    auto list = charts.Source().List({}, unwatched_)->Files;
    list.erase(list.begin() + 1);
    list.push_back({"RG99-19980305-1000.dat", -1, "RG99", chart_.Start});
    const DeletedCharts deleted = charts.Source().Delete(list, unwatched_);
    EXPECT_EQ(deleted.Deleted, 2);
    EXPECT_THAT(deleted.Refused, ElementsAre(HasSubstr("RG99-19980305-1000.dat")));
    EXPECT_EQ(charts.All().size(), 1U);
    EXPECT_TRUE(charts.All().contains("RG12-19980306-1000.dat"));
  });
}

// What stands beside charts in a folder.
TEST(FolderCharts, PassesOverWhatIsNoChartAndSaysWhatItLeavesOut) {
  const TempFolder folder;
  const std::vector<StationRecord> stations;
  FolderCharts charts(folder.Path(), stations);
  const std::string chart = "hyetex88 ascii file\nStart: 05/03/98\n";
  for (const char* name : {"RG12-19980305-1000.DAT", "RG12-1998.dat", "RG12-19981305-1000.dat", "RG12.dat"})
    WriteFile(folder / name, chart);
  WriteFile(folder / "RG12-19980306-1000.dat", "another file\nHYETEX88\n");
  WriteFile(folder / "RG12-19980307-1000.dat", "");
  std::filesystem::create_directory(folder / "RG12-19980308-1000.dat");
  UnwatchedProgress unwatched;
  auto list = charts.List({}, unwatched);
  ASSERT_EQ(list->Files.size(), 1U);
  EXPECT_EQ(list->Files[0].FileName, "RG12-19980305-1000.DAT");
  EXPECT_FALSE(charts.Holds({"RG12-19980306-1000.dat", -1, "RG12", 1})) << "its deletion would take no chart";
  const std::string outside = "../" + std::string(BaseName(folder.Path())) + "/RG12-19980305-1000.DAT";
  EXPECT_FALSE(charts.Holds({outside, -1, "RG12", 1}));

  std::vector<ChartFileInfo> many(MostChartsListed + 1, list->Files[0]);
  const ChartListing cut = MakeListing(many, {}, "folder");
  EXPECT_EQ(cut.Files.size(), MostChartsListed);
  EXPECT_THAT(cut.Notes, ElementsAre(HasSubstr("There are 10002 charts in the folder")));
  class Stopped : public Progress {
    bool Step(std::int64_t, std::int64_t, std::string_view) override { return false; }
  } stopped;
  EXPECT_THAT(charts.List({}, stopped)->Notes, ElementsAre(ListWasStopped));
  charts.SetFolder(folder / "gone");
  EXPECT_THAT(charts.List({}, unwatched).error(), HasSubstr("gone"));
}

}  // namespace
}  // namespace hyetex
