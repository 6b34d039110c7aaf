// load and extract.
#include "cli/run.h"
#include "database/access/new_database.h"
#include "database/access/plot_db.h"
#include "database/store/stored_text.h"
#include "database/stored_charts.h"
#include "paths.h"

namespace hyetex::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

TEST(Cli, LoadsAndExtractsCharts) {
  const TempFolder folder;
  ASSERT_TRUE(CreateDatabaseFile(folder / "rain.sqlite"));
  const std::string db = FileConnectionText(folder / "rain.sqlite").value_or("");
  auto connection = Connection::Open(db);
  ASSERT_TRUE(connection);
  const std::string code = "NM-Hill Farm-01";
  const DbValue values[] = {code};
  ASSERT_TRUE(connection->Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (?)", values));
  connection->Close();
  std::filesystem::copy(test::Demo("program"), folder / "program");
  const std::string text = StoredChart{.Instrument = code}.Text();
  const StoredText chart = SplitStoredText(text);
  const std::string file = folder / std::string(chart.FileName);
  WriteFile(file, std::string(chart.Bytes));

  const auto load = [&](const std::string& path) {
    return RunCli({"load", "--db", db, "--folder", folder / "program", file, path});
  };
  std::filesystem::copy(file, folder / "copy.dat");
  Ran ran = load(folder / "copy.dat");
  EXPECT_EQ(ran.Status, 1);
  EXPECT_THAT(ran.Out, AllOf(HasSubstr("1 files transferred from file to Database chart_ascii table\n"),
                             HasSubstr("\nLeft out:\ncopy.dat: the name is not ")));
  ran = RunCli({"extract", "--db", db, "--to", folder / "out", "--instrument", "nm-hill farm-01"});
  EXPECT_EQ(ran.Status, 0) << ran.Error;
  EXPECT_EQ(ran.Out, "1 Files extracted to " + (folder / "out") + "\n");
  EXPECT_EQ(ReadFile(folder / ("out/" + std::string(chart.FileName))), chart.Bytes);
  EXPECT_EQ(RunCli({"extract", "--db", db}).Status, 2);
  EXPECT_EQ(RunCli({"load", "--db", db}).Status, 2);
  EXPECT_EQ(RunCli({"load", "--db", "DSN=none such", "--folder", folder / "program", file}).Status, 1);
}

}  // namespace
}  // namespace hyetex::test
