// alpha: the command's lines, what it writes, and its exit status.
#include <gmock/gmock.h>

#include "cli/run.h"
#include "database/access/new_database.h"
#include "database/stored_charts.h"
#include "platform/odbc/recordset.h"

namespace hyetex::test {
namespace {

using ::testing::HasSubstr;

class AlphaCommand : public ::testing::Test {
 protected:
  AlphaCommand() {
    EXPECT_TRUE(CreateDatabaseFile(folder_ / "rain.sqlite"));
    Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('RG12')");
    Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('RG7')");
    const StoredChart first{.Alpha = "0.25\r\nAlpha 1 : 0.1\r\nAlpha 2 : 0.2"},
        second{.Start = MakeDate(1998, 3, 1, 10)};
    for (const StoredChart& chart : {first, second})
      Execute("INSERT INTO CHART_ASCII (instrument_code_id, chart_date, ascii_file) VALUES (?, ?, ?)",
              {chart.Instrument, DbDate{chart.Start}, DbBinary{chart.Text()}});
  }
  void Execute(const std::string& sql, std::vector<DbValue> values = {}) {
    auto connection = Connection::Open("Driver=SQLite3;Database=" + (folder_ / "rain.sqlite"));
    EXPECT_TRUE(connection && connection->Execute(sql, values)) << sql;
  }
  Ran Alpha(std::vector<std::string> more) {
    std::vector<std::string> words{"alpha", "--db", "Driver=SQLite3;Database=" + (folder_ / "rain.sqlite")};
    words.insert(words.end(), more.begin(), more.end());
    return RunCli(words);
  }
  static std::string Csv(const std::string& first, const std::string& second) {
    return "start,selected_alpha,alpha_1,alpha_2\n1998-03-01T10:00:00," + first + ",,\n1998-03-05T10:00:00," +
           second + ",0.1,0.2\naverage,0.15,,\n";
  }

  TempFolder folder_;
};

TEST_F(AlphaCommand, PrintsTheChartsAndWritesTheValueIntoAllOfThem) {
  const Ran read = Alpha({"--instrument", "rg12"});
  EXPECT_EQ(read.Out, Csv("None", "0.25"));
  EXPECT_EQ(read.Error, "");
  EXPECT_EQ(read.Status, 0);
  for (const char* value : {"0.0043", "0", "-0.2", "None"}) {
    const Ran wrote = Alpha({"--instrument", "RG12", "--write", value});
    EXPECT_EQ(wrote.Out, Csv(value, value));
    EXPECT_EQ(wrote.Error, "hyetex-cli: \"Alpha Value Selected: " + std::string(value) +
                               "\" was written into 2 charts.\n");
    EXPECT_EQ(wrote.Status, 0);
  }
  const Ran again = Alpha({"--instrument", "RG12", "--write", "none"});
  EXPECT_THAT(again.Error, HasSubstr("into 0 charts. 2 charts had it before"));
  const Ran empty = Alpha({"--instrument", "RG7", "--write", "1"});
  EXPECT_EQ(empty.Out, "start,selected_alpha\naverage,\n");
  EXPECT_EQ(empty.Status, 0);
}

TEST_F(AlphaCommand, SaysWhatIsOffAndWritesNothingThen) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{},
                                                {"--instrument", ""},
                                                {"--instrument", "RG12", "--write", ""},
                                                {"--instrument", "RG12", "--write", "O.0043"},
                                                {"--instrument", "RG12", "--write", "abc"},
                                                {"--instrument", "RG12", "--write", "-1000"},
                                                {"--instrument", "RG12", "--write"}})
    EXPECT_EQ(Alpha(words).Status, 2) << ::testing::PrintToString(words);
  EXPECT_EQ(Alpha({"--instrument", "RG12"}).Out, Csv("None", "0.25"));
  const Ran unknown = Alpha({"--instrument", "RG99", "--write", "1"});
  EXPECT_EQ(unknown.Status, 1);
  EXPECT_EQ(unknown.Out, "");
  EXPECT_THAT(unknown.Error, HasSubstr("There is no instrument RG99"));
  // A chart that does not take the value is named; the others have it.
  Execute("UPDATE CHART_ASCII SET ascii_file = ? WHERE chart_date < '1998-03-03'", {DbBinary{""}});
  const Ran some = Alpha({"--instrument", "RG12", "--write", "1"});
  EXPECT_EQ(some.Status, 1);
  EXPECT_THAT(some.Error, HasSubstr("RG12 01/03/1998 10:00:00: its text is no chart"));
  EXPECT_THAT(some.Out, HasSubstr("1998-03-05T10:00:00,1,0.1,0.2"));
  Execute("DROP TABLE CHART_ASCII");
  const Ran gone = Alpha({"--instrument", "RG12"});
  EXPECT_EQ(gone.Status, 1);
  EXPECT_THAT(gone.Error, HasSubstr("no table"));
}

}  // namespace
}  // namespace hyetex::test
