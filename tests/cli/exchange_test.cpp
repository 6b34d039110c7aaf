// export and import.
#include "cli/run.h"
#include "database/access/new_database.h"
#include "database/access/plot_db.h"

namespace hyetex::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(Cli, ExportsTablesAndImportsThem) {
  const TempFolder folder;
  ASSERT_TRUE(CreateDatabaseFile(folder / "rain.sqlite"));
  const std::string db = FileConnectionText(folder / "rain.sqlite").value_or("");
  {
    auto connection = Connection::Open(db);
    ASSERT_TRUE(connection);
    ASSERT_TRUE(connection->Execute("INSERT INTO LUT_REGION VALUES ('A & B', 'A')"));
    ASSERT_TRUE(connection->Execute("CREATE UNIQUE INDEX codes ON LUT_REGION (region_code)"));
  }
  const std::string out = folder / "out";
  Ran ran = RunCli({"export", "--db", db, "--to", out});
  EXPECT_EQ(ran.Status, 0) << ran.Error;
  EXPECT_THAT(ran.Out, AllOf(StartsWith("station: 0 records to " + out + "/station.xml\n"),
                             HasSubstr("\nlut_region: 1 record to " + out + "/lut_region.xml\n"),
                             HasSubstr("\nchart_conversion: 0 records to ")));
  EXPECT_EQ(std::count(ran.Out.begin(), ran.Out.end(), '\n'), 19);

  WriteFile(folder / "no.xml", "<lut_regions>");
  ran = RunCli({"import", "--db", db, "out/lut_region.xml", "no.xml", out + "/chart.xml"},
               {.Folder = folder.Path()});
  EXPECT_EQ(ran.Status, 1);
  EXPECT_EQ(ran.Out,
            "out/lut_region.xml: 0 records into lut_region\n" + out + "/chart.xml: 0 records into chart\n");
  EXPECT_THAT(ran.Error,
              AllOf(HasSubstr("out/lut_region.xml: 1 refused, the first: row 1: "),
                    HasSubstr("/no.xml, line 1, column 14: "), HasSubstr(". Nothing of no.xml was added")));

  ran = RunCli({"export", "--db", db, "--to", out, "--unchanged", "LUT_REGION", "lut_region", "none"});
  EXPECT_EQ(ran.Status, 1);
  EXPECT_EQ(ran.Out, "LUT_REGION: 1 record to " + out + "/LUT_REGION.xml\n");
  EXPECT_EQ(ran.Error,
            "hyetex-cli: LUT_REGION: 1 value with \"<\", \"&\" or \"]]>\" unchanged: no XML program reads "
            "the file, "
            "the first in row 1, region\nhyetex-cli: none: The database has no table none\n");
  EXPECT_THAT(ReadFile(out + "/LUT_REGION.xml"), HasSubstr("<region>A & B</region>"));
  EXPECT_EQ(RunCli({"export", "--db", db}).Status, 2);
  EXPECT_EQ(RunCli({"import", "--db", db}).Status, 2);
  EXPECT_EQ(RunCli({"import", "--db", "DSN=none such", out + "/chart.xml"}).Status, 1);
}

// The sanitizers need many times the memory.
#ifndef __SANITIZE_ADDRESS__
// Larger than what a program could hold if it kept the rows.
TEST(Cli, ExportsAndImportsInLittleMemory) {
  const TempFolder folder;
  ASSERT_TRUE(CreateDatabaseFile(folder / "rain.sqlite"));
  const std::string db = FileConnectionText(folder / "rain.sqlite").value_or("");
  std::string text = "<charts>\n";
  const std::string row = "<chart><station>" + std::string(25, 's') + "</station><comments>" +
                          std::string(25, 'c') + "</comments></chart>\n";
  for (int i = 0; i < 250'000; ++i) text += row;
  WriteFile(folder / "chart.xml", text + "</charts>\n");
  const long libraries = RunCli({"--version"}).PeakKb;
  Ran ran = RunCli({"import", "--db", db, folder / "chart.xml"});
  EXPECT_EQ(ran.Out, (folder / "chart.xml") + ": 250000 records into chart\n") << ran.Error;
  EXPECT_LT(ran.PeakKb - libraries, 30'000);
  ran = RunCli({"export", "--db", db, "--to", folder / "out", "chart"});
  EXPECT_EQ(ran.Status, 0) << ran.Error;
  EXPECT_LT(ran.PeakKb - libraries, 30'000);
  EXPECT_GT(std::filesystem::file_size(folder / "out/chart.xml"), 60'000'000U);
}
#endif

}  // namespace
}  // namespace hyetex::test
