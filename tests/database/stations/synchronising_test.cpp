#include "database/stations/synchronising.h"

#include <gmock/gmock.h>

#include "core/dates.h"
#include "database/conversion/population_fixture.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(StartDate, TakesItsFixedPlacesAndDaysOfTheCalendarOnly) {
  EXPECT_EQ(ConvertStartDate("29/02/1988"), MakeDate(1988, 2, 29));
  EXPECT_EQ(ConvertStartDate(" 01/12/1925\n"), MakeDate(1925, 12, 1));
  for (const char* none :
       {"", "29/02/1987", "31/04/1990", "00/01/1990", "01/13/1990", "01/00/1990", "1/1/1990", "01/01/90",
        "01-01-1990", "01/01/1990 08:00", "01/01/0050", "+1/01/1990", "today"})
    EXPECT_EQ(ConvertStartDate(none), std::nullopt) << none;
}

const std::string Adding = "Adding Missing Instruments and Stations to the Database";
const ShownBox NoLoaded = Warning(
    "Checking database integrity",
    "The 'loaded' field is missing in CHART_ASCII, as a result the programme cannot keep track on files "
    "already populated.");
const ShownBox FillIn = Warning(Adding,
                                "Important ! Please go to your database as soon as possible and fill in all "
                                "of the other required fields of "
                                "information for these stations and instruments. See your database "
                                "administrator if you have any questions.");

ShownBox WereRead(const std::string& text) { return {"Reading Instruments from the Database", text}; }
ShownBox Added(const std::string& text) { return {Adding, text, BoxButtons::Ok, BoxIcon::Information}; }

struct Case {
  const char* Name;
  std::string Instruments = {}, Stations = {};  ///< of the database before: codes, and keys
  std::string Listed = {};                      ///< codes, all behind a "|" each
  std::deque<std::optional<std::string>> Typed = {};
  std::vector<ShownBox> Boxes = {};
  std::string ListedAfter = {};  ///< none: as before
  std::vector<std::string> New = {};
};

const std::string LongKey = "NM-" + std::string(32, 'x') + "-1";

const std::vector<Case> Cases{
    {.Name = "nothing to do, whatever the case of letters",
     .Instruments = "|NM-Hill-1-A|RG7|",
     .Listed = "|nm-hill-1-a|None||XX-Hill-1-A"},
    {.Name = "to the list, but those of no agency and those that cannot name files",
     .Instruments = "|NM-Hill-1-A|nm-hill-1-a|RG7|NW-Dam-2-A|NX-Dam-2-A|NM-Hi,ll-1-B",
     .Listed = "|None",
     .Boxes = {WereRead("2 Instruments were read from the database to the list in Hyetex"),
               Warning("Reading Instruments from the Database",
                       "These instruments of the database were not read to the list:\nNM-Hi,ll-1-B: An "
                       "instrument code must not hold a comma.")},
     .ListedAfter = "|None|NM-Hill-1-A|NW-Dam-2-A"},
    {.Name = "to the database: two instruments of one station, one of an old station, one without a date",
     .Stations = "|nw-dam-2",
     .Listed = "|NM-Hill-1-A|NM-Hill-1-B|NW-Dam-2-A|NW-Mill-3-A|NW-Mill-3-A",
     .Typed = {"31/02/1987", "1/2/1987", "01/02/1987", " 02/02/1887", "29/02/1988", ""},
     .Boxes = {Added(
                   "The following stations have been added to the database: Hill.\nThe following instrumnets "
                   "have been added to the database: NM-Hill-1-A, NM-Hill-1-B, NW-Dam-2-A."),
               FillIn},
     .New = {"NM-Hill-1 | Hill | 1", "NM-Hill-1-A | NM-Hill-1 | Recorder | Hill | 1987-02-01T00:00:00",
             "NM-Hill-1-B | NM-Hill-1 | Recorder | Hill | 1887-02-02T00:00:00",
             "NW-Dam-2-A | NW-Dam-2 | Recorder | Dam | 1988-02-29T00:00:00"}},
    {.Name = "both ways",
     .Instruments = "|NM-Hill-1-A",
     .Stations = "|NM-Hill-1",
     .Listed = "|NM-Hill-1-B",
     .Typed = {"01/02/1925"},
     .Boxes = {WereRead("One Instrument was read from the database to the list in Hyetex"),
               Added("The following instrumnets have been added to the database: NM-Hill-1-B."), FillIn},
     .ListedAfter = "|NM-Hill-1-B|NM-Hill-1-A",
     .New = {"NM-Hill-1-B | NM-Hill-1 | Recorder | Hill | 1925-02-01T00:00:00"}},
    {.Name = "codes that would be another's when cut, and texts that are cut",
     .Listed = "|NM-Hill|" + LongKey + "-A|NM-D\xE4m-" + "0123456789-A|NW-Mill-",
     .Typed = {"01/02/1925", std::nullopt},
     .Boxes = {Added(
                   "The following stations have been added to the database: Däm.\nThe following instrumnets "
                   "have been added to the database: NM-Däm-0123456789-A."),
               FillIn,
               Warning(Adding,
                       "These instruments were not added to the database:\nNM-Hill: The code does not "
                       "tell its station; it would need three parts joined by \"-\".\n" +
                           LongKey + "-A: The code is longer than the database can hold."),
               Warning(Adding,
                       "These texts were longer than the database can hold, and were cut:\n"
                       "NM-Däm-0123456789-A: station_code is now \"012345678\".")},
     .New = {"NM-Däm-0123456789 | Däm | 012345678",
             "NM-Däm-0123456789-A | NM-Däm-0123456789 | Recorder | Däm | 1925-02-01T00:00:00"}},
};

class SynchronisingTest : public PopulationFixture {
 protected:
  void SetUp() override {
    PopulationFixture::SetUp();
    Lists.Cores = {"Northland"};
    Lists.Agencies = {{"Meteorology", 0}, {"Water", 0}};
  }
  static std::vector<std::string> Split(const std::string& codes) {
    std::vector<std::string> split;
    std::istringstream from(codes);
    for (std::string code; std::getline(from, code, '|');) split.push_back(code);
    if (!split.empty()) split.erase(split.begin());
    return split;
  }
  void Before(const std::string& instruments, const std::string& stations, const std::string& listed) {
    for (const auto& [table, column, codes] : {std::tuple("instrument", "instrument_code_id", instruments),
                                               std::tuple("station", "station_code_id", stations)}) {
      Run(std::string("DELETE FROM ") + table);
      for (const std::string& code : Split(codes))
        Run(std::string("INSERT INTO ") + table + " (" + column + ") VALUES ('" + code + "')");
    }
    Lists.Stations.clear();
    for (const std::string& code : Split(listed))
      Lists.Stations.push_back(
          {CodeParts(code).size() > 1 ? std::string(CodeParts(code)[1]) : code, code, 0, 0});
  }
  static std::string Listed(const ReferenceLists& lists) {
    std::string codes;
    for (const StationRecord& station : lists.Stations) codes += "|" + station.InstrumentCode;
    return codes;
  }
  /// The rows that are filled, as those that were there before are not.
  std::vector<std::string> NewRows() {
    std::vector<std::string> rows = Read("station", {"station_code_id", "station", "station_code"});
    for (std::string& row : Read("instrument", {"instrument_code_id", "station_code_id", "instrument_type",
                                                "station", "date_start_instrument"}))
      rows.push_back(std::move(row));
    std::erase_if(rows, [](const std::string& row) { return row.find("null") != std::string::npos; });
    return rows;
  }
  Synchronised Synchronise() {
    UnwatchedProgress progress;
    return hyetex::Synchronise(Database, Lists, Folder.Path(), Boxes, progress);
  }
};
HYETEX_ON_ALL_ENGINES(SynchronisingTest);

TEST_P(SynchronisingTest, BringsListAndDatabaseInLineBothWays) {
  for (const Case& c : Cases) {
    SCOPED_TRACE(c.Name);
    Before(c.Instruments, c.Stations, c.Listed);
    Boxes = {};
    Boxes.Typed = c.Typed;
    EXPECT_EQ(Synchronise(), Synchronised::Saved);
    EXPECT_EQ(Boxes.Boxes, c.Boxes);
    EXPECT_THAT(Boxes.Typed, IsEmpty());
    EXPECT_EQ(Listed(Lists), c.ListedAfter.empty() ? c.Listed : c.ListedAfter);
    EXPECT_EQ(NewRows(), c.New);
  }
}

TEST_P(SynchronisingTest, AsksAgainWithWhatWasTypedAndGoesOnWithoutTheLoadedField) {
  Run("ALTER TABLE chart_ascii DROP COLUMN loaded");
  Before("", "", "|NM-Hill-1-A");
  Boxes.Typed = {"1/2/1987", ""};
  Synchronise();
  const std::string title = "Adding a new instrument to the database";
  const std::string prompt =
      "Please enter the Instrument START DATE of NM-Hill-1-A\nin the following format - dd/mm/yyyy";
  EXPECT_THAT(Boxes.Inputs,
              ElementsAre(ShownInput{title, prompt, ""}, ShownInput{title, prompt, "1/2/1987"}));
  EXPECT_THAT(Boxes.Boxes, ElementsAre(NoLoaded));
}

// What finds no room in the list is known to the database all the same, and asked about by nobody.
TEST_P(SynchronisingTest, FillsTheListToItsEndAndNamesTheRest) {
  std::string codes;
  for (int i = 0; i < 230; ++i) codes += "|NM-Hill-" + std::to_string(1000 + i) + "-A";
  Before(codes, "", "|None|NM-Hill-1229-A");
  Synchronise();
  EXPECT_EQ(Lists.Stations.size(), 201U);
  ASSERT_EQ(Boxes.Boxes.size(), 2U);
  EXPECT_EQ(Boxes.Boxes[0], WereRead("199 Instruments were read from the database to the list in Hyetex"));
  EXPECT_THAT(Boxes.Boxes[1].Text, HasSubstr("\nNM-Hill-1199-A: There is no room for another station"));
  EXPECT_THAT(Boxes.Boxes[1].Text, HasSubstr("\nand 10 more."));
}

TEST_P(SynchronisingTest, StopsAtARowThatTheDatabaseRefusesAndKeepsTheRest) {
  Run("CREATE UNIQUE INDEX one ON instrument (date_start_instrument)");
  Before("|NW-Mill-9-A", "", "|NM-Hill-1-A|NW-Dam-2-A|NM-Hill-3-A");
  Boxes.Typed = {"01/02/1987", "01/02/1987"};
  EXPECT_EQ(Synchronise(), Synchronised::Partly);
  ASSERT_EQ(Boxes.Boxes.size(), 4U);
  EXPECT_THAT(Boxes.Boxes[1].Text, HasSubstr("-2147217873 "));
  EXPECT_THAT(Boxes.Boxes[2].Text, HasSubstr("have been added to the database: NM-Hill-1-A."));
  EXPECT_THAT(NewRows(), ElementsAre("NM-Hill-1 | Hill | 1", HasSubstr("NM-Hill-1-A | ")));
  EXPECT_EQ(Listed(*ReadLists(Folder.Path())), "|NW-Dam-2-A|NM-Hill-1-A|NM-Hill-3-A|NW-Mill-9-A");
}

TEST_P(SynchronisingTest, ChangesNothingWithoutADatabaseOrItsTables) {
  Before("", "", "|NM-Hill-1-A");
  Run("DROP TABLE instrument");
  EXPECT_EQ(Synchronise(), Synchronised::Partly);
  Database.ConnectionText = "DSN=no such source";
  EXPECT_EQ(Synchronise(), Synchronised::Not);
  EXPECT_EQ(Boxes.Boxes.size(), 2U);
  EXPECT_EQ(Listed(Lists), "|NM-Hill-1-A");
}

}  // namespace
}  // namespace hyetex
