#include "database/conversion/populate_grid.h"

#include "database/conversion/population_fixture.h"
#include "database/store/instruments.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PopulateGrid : public PopulationFixture {
 protected:
  std::vector<PopulateRow> Load(const std::string& instrument, bool showAll = false, bool manual = false) {
    UnwatchedProgress progress;
    auto rows = LoadGrid(Database, instrument, showAll, {.DefaultDepthManual = manual}, Lists, progress);
    EXPECT_TRUE(rows) << rows.error().Description;
    return rows.value_or(std::vector<PopulateRow>());
  }
  static std::vector<std::string> Marked(const std::vector<PopulateRow>& rows) {
    std::vector<std::string> marked;
    for (const PopulateRow& row : rows) marked.push_back(row.Cells[0] + (row.Overlaps ? " !" : ""));
    return marked;
  }
};
HYETEX_ON_ALL_ENGINES(PopulateGrid);

TEST_P(PopulateGrid, TellsEachChart) {
  Store({.Digitized = "9.25", .Selected = "0", .Manual = "12.35", .Alpha = "0.1234567"});
  Store(
      {.Start = MakeDate(1998, 3, 6), .End = MakeDate(1998, 3, 7), .Selected = "8.46", .Comment = "CODE213"});
  Store({.Instrument = "RG7", .Start = MakeDate(1998, 3, 7)});
  StoreText("RG7", MakeDate(1998, 3, 8), StoredChart{}.Text());
  const auto rows = Load("rg12");
  ASSERT_THAT(rows, SizeIs(3)) << "by the record's code, not the text's";
  EXPECT_THAT(rows[0].Cells, ElementsAre("05/03/98 10:00", "05/03/98 12:00", "9.2", "12.4", "0.12346",
                                         "Acceptable", "Digitized"));
  EXPECT_THAT(rows[1].Cells,
              ElementsAre("06/03/98", "07/03/98", "8.5", "12", "None", "Acceptable", "Manual *"));
  EXPECT_EQ(Load("RG12", false, true)[0].Cells[6], "Manual");
  EXPECT_THAT(Load("RG99"), IsEmpty());
  EXPECT_THAT(Load(""), IsEmpty());
}

TEST_P(PopulateGrid, ShowsConvertedChartsOnDemand) {
  Store({});
  Store({.Start = MakeDate(1998, 3, 6), .End = MakeDate(1998, 3, 7)});
  Convert({MakeDate(1998, 3, 6)});
  EXPECT_THAT(Marked(Load("RG12")), ElementsAre("05/03/98 10:00"));
  EXPECT_THAT(Load("RG12", true), SizeIs(2));
  Run("UPDATE chart_ascii SET loaded = 0");
  EXPECT_THAT(Load("RG12"), SizeIs(2));
  Run("UPDATE chart_ascii SET loaded = 1");
  EXPECT_THAT(Load("RG12"), IsEmpty());
  Run("ALTER TABLE chart_ascii DROP COLUMN loaded");
  EXPECT_THAT(Load("RG12"), SizeIs(2));
}

TEST_P(PopulateGrid, TellsHowChartsWereConverted) {
  Store({.Alpha = "0.0043"});
  Store({.Start = MakeDate(1998, 3, 6), .End = MakeDate(1998, 3, 7)});
  Options.User = "Nadia";
  Options.Overwrite = true;
  Options.Variables = {.UseAlpha = true, .MinimalLapse = 5, .GmtShift = -3.5F / 24};
  Convert({MakeDate(1998, 3, 5, 10)});
  Options.User.clear();
  Convert({MakeDate(1998, 3, 5, 10)});  // the later one counts
  const auto told = [this](int row) {
    std::vector<std::string> cells;
    const auto rows = Load("RG12", true);
    for (int column = PopulateColumns; column < PopulateColumns + BookColumns; ++column)
      cells.push_back(CellText(rows.at(static_cast<std::size_t>(row)), column));
    return cells;
  };
  EXPECT_THAT(told(0), ElementsAre(::testing::HasSubstr("/20"), "", "-3.5",
                                   "Digitized 10 mm, alpha 0.0043, lapse 5 min, 4 rows"));
  EXPECT_THAT(told(1), ElementsAre("", "", "", ""));
  Run("DROP TABLE chart_conversion");
  EXPECT_THAT(told(0), ElementsAre("", "", "", ""));
}

// As text, 31/12/98 stands behind 01/01/99.
TEST_P(PopulateGrid, SortsByDateAndMarksOverlapInTableOrder) {
  const Date newYear = MakeDate(1999, 1, 1, 9);
  Store({.Start = newYear, .End = newYear + 0.25});
  Store({.Start = newYear + 0.125, .End = newYear + 1});
  Store({.Start = newYear - 1, .End = newYear});
  Store({.Start = newYear - 0.5, .End = newYear + 0.01});
  Store({.Start = newYear + 0.01, .End = newYear + 2});
  StoreText("RG12", newYear + 7, "rubbish");
  EXPECT_THAT(Marked(Load("RG12")), ElementsAre("31/12/98 09:00", "31/12/98 21:00", "01/01/99 09:00",
                                                "01/01/99 09:14", "01/01/99 12:00 !", "08/01/99 09:00"));
}

TEST_P(PopulateGrid, GivesTheStoredTextAsItIs) {
  const std::string text = StoredChart{}.Text() + "caf\xE9\n\x01";
  StoreText("RG12", MakeDate(1998, 3, 5, 10), text);
  const auto path = WriteStoredText(Database, "rg12", MakeDate(1998, 3, 5, 10), Folder.Path());
  ASSERT_TRUE(path) << path.error();
  EXPECT_EQ(*path, Folder / "temp_rfs.txt");
  EXPECT_EQ(ReadFile(*path), text);
  EXPECT_FALSE(WriteStoredText(Database, "rg12", MakeDate(1998, 3, 6), Folder.Path()));
  EXPECT_FALSE(WriteStoredText(Database, "rg12", MakeDate(1998, 3, 5, 10), Folder / "none"));
}

TEST_P(PopulateGrid, OffersAllInstruments) {
  Run("INSERT INTO instrument (instrument_code_id) VALUES ('RG7'), ('rg12'), ('RG7')");
  EXPECT_THAT(ListInstruments(Database).value(), ElementsAre("RG7", "rg12", "RG7"));
  Run("DROP TABLE instrument");
  EXPECT_FALSE(ListInstruments(Database));
  EXPECT_FALSE(Database.DatabaseConnection.IsOpen());
}

TEST_P(PopulateGrid, TogglesTheDepthThatCounts) {
  Store({.Comment = "CODE213"});
  PopulateRow row = Load("RG12").at(0);
  EXPECT_EQ(row.Cells[6], "Manual *");
  for (const bool manual : {true, false, true}) {
    EXPECT_EQ(row.Manual, manual);
    ToggleSelectedDepth(row);
    EXPECT_EQ(row.Cells[6], manual ? "Digitized" : "Manual");
  }
}

}  // namespace
}  // namespace hyetex::test
