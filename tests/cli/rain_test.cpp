// rain: the storm of the sample chart from its journal to maxima that were reckoned apart from this program,
// and to files that are opened again.
#include "cli/run.h"
#include "database/access/new_database.h"
#include "database/access/plot_db.h"
#include "paths.h"
#include "rain/sef_rules.h"
#include "scan/scan_image.h"

namespace hyetex::test {
namespace {

using ::testing::AllOf;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class RainCommandTest : public ::testing::Test {
 protected:
  RainCommandTest() {
    std::filesystem::copy(test::Demo("program"), Folder / "program");
    EXPECT_TRUE(CreateDatabaseFile(Folder / "rain.sqlite"));
    Db = FileConnectionText(Folder / "rain.sqlite").value_or("");
    Execute("INSERT INTO INSTRUMENT (instrument_code_id, station) VALUES ('NM-Hill Farm-01', 'Hill Farm')");
    std::filesystem::create_directory(Folder / "charts");
    Must(On("digitize",
            {"--target", Folder / "charts", "--task", "0", "--comment", "Sample chart",
             test::Demo("journals/siphon-1.txt")},
            false));
    for (const auto& file : std::filesystem::directory_iterator(Folder / "charts"))
      Must(On("load", {file.path().string()}));
    Must(On("populate", {"--instrument", "NM-Hill Farm-01"}));
  }
  static void Must(const Ran& ran) { ASSERT_EQ(ran.Status, 0) << ran.Out << ran.Error; }
  Ran On(const std::string& command, std::vector<std::string> words, bool asked = true,
         const RunWith& with = {}) {
    words.insert(words.begin(), {command, "--folder", Folder / "program"});
    if (asked) words.insert(words.end(), {"--db", Db});
    return RunCli(words, with);
  }
  Ran Rain(std::vector<std::string> words, const RunWith& with = {}) {
    words.insert(words.end(), {"--instrument", "nm-hill farm-01"});
    return On("rain", words, true, with);
  }
  void Execute(const std::string& sql) {
    auto connection = Connection::Open(Db);
    ASSERT_TRUE(connection) << connection.error().Description;
    EXPECT_TRUE(connection->Execute(sql)) << sql;
  }
  std::vector<std::string> Files(const std::string& folder) {
    std::vector<std::string> paths;
    for (const auto& file : std::filesystem::directory_iterator(Folder / folder))
      paths.push_back(file.path().string());
    return paths;
  }

  const TempFolder Folder;
  std::string Db;
};

TEST_F(RainCommandTest, FindsTheMaximaOfTheSampleStorm) {
  const Ran maxima = Rain({"--maxima"});
  EXPECT_EQ(maxima.Status, 0);
  EXPECT_EQ(maxima.Error, "");
  // The greatest sums over windows that begin or end where a row does, of the rows as SQL gives them.
  EXPECT_THAT(maxima.Out,
              AllOf(StartsWith("minutes,depth_mm,start,covered\n5,12.99,1998-03-05T12:56:10+00:00,1\n"),
                    HasSubstr("\n60,29.685555555,1998-03-05T12:55:30+00:00,1\n"),
                    HasSubstr("\n120,44,1998-03-05T12:03:40+00:00,1\n"),
                    HasSubstr("\n1440,53.11,1998-03-05T05:00:00+00:00,1\n")));
  EXPECT_EQ(Rain({"--daily", "--local", "2", "--day-begins", "07:00"}).Out,
            "start,end,depth_mm,covered\n1998-03-05T07:00:00+02:00,1998-03-06T07:00:00+02:00,53.11,1\n");
  EXPECT_EQ(Rain({"--daily", "--from", "1998-03-06", "--to", "1998-03-07"}).Out,
            "start,end,depth_mm,covered\n1998-03-06T00:00:00+00:00,1998-03-07T00:00:00+00:00,0.54,0.2083\n");
}

TEST_F(RainCommandTest, WritesFilesThatOpenAgain) {
  const Ran ran = Rain({"--sef", Folder / "sef", "--pdf", Folder / "year.pdf", "--png", Folder / "day.png",
                        "--svg", Folder / "day.svg", "--step", "60"});
  EXPECT_EQ(ran.Status, 0) << ran.Error;
  const auto written = Files("sef");
  ASSERT_EQ(written.size(), 2U);
  for (const std::string& path : written) {
    const std::string text = ReadFile(path);
    EXPECT_THAT(SefFaults(path, text), IsEmpty()) << path;
    double sum = 0;
    for (const auto& row : ReadSef(text).Rows) sum += std::stod(row[6]);
    EXPECT_NEAR(sum, 53.11, 0.05) << path;
  }
  const auto report = LookAtScan(Folder / "year.pdf");
  ASSERT_TRUE(report) << report.error();
  EXPECT_EQ(report->Pages, 13) << "a page a month, and one of maxima";
  const auto picture = ScanImage::Open(Folder / "day.png");
  ASSERT_TRUE(picture) << picture.error();
  EXPECT_GT(picture->Width(), picture->Height());
  EXPECT_THAT(ReadFile(Folder / "day.svg"), AllOf(HasSubstr("<svg"), HasSubstr("</svg>")));
}

TEST_F(RainCommandTest, SaysWhatIsOffAndWritesNothing) {
  EXPECT_EQ(Rain({}).Status, 2);
  EXPECT_EQ(Rain({"--daily", "--maxima"}).Status, 2);
  EXPECT_EQ(Rain({"--daily", "--from", "1998-03-06", "--to", "1998-03-06"}).Status, 2);
  EXPECT_EQ(Rain({"--daily", "--from", "1998-02-29"}).Status, 2);
  for (const char* minutes : {"0", "-5", "1441", "5,5", "x"})
    EXPECT_EQ(Rain({"--step", minutes}).Status, 2) << minutes;
  const Ran unknown = On("rain", {"--instrument", "O'Hara", "--daily"});
  EXPECT_EQ(unknown.Status, 1);
  EXPECT_THAT(unknown.Error, HasSubstr("There is no instrument O'Hara in the database"));
  const Ran nowhere = Rain({"--pdf", Folder / "none/year.pdf"});
  EXPECT_EQ(nowhere.Status, 1);
  EXPECT_THAT(nowhere.Error, HasSubstr("none/year.pdf"));
}

// However soon it ends: the table holds what it held, or what it is to hold, and never a part.
TEST_F(RainCommandTest, FillsTablesWholeOrNotAtAllWhenKilled) {
  const std::string old =
      "DELETE FROM DAILy_CHART; DELETE FROM Intensity_duration; "
      "INSERT INTO DAILy_CHART (instrument_code_id, date, depth) VALUES ('NM-Hill Farm-01', '1998-03-05 "
      "00:00:00', 99)";
  const auto held = [this] {
    auto connection = Connection::Open(Db);
    std::string depths;
    for (auto table = Recordset::Open(*connection, "DAILy_CHART"); !table->Eof(); (void)table->MoveNext())
      depths += TextOf(*table->Value("depth")) + " ";
    int classes = 0;
    for (auto table = Recordset::Open(*connection, "Intensity_duration"); !table->Eof();
         (void)table->MoveNext())
      ++classes;
    return depths + (classes > 0 ? "with classes" : "without");
  };
  const auto reset = [&] {
    for (std::size_t at = 0; at < old.size();) {
      const std::size_t end = std::min(old.find(';', at), old.size());
      Execute(old.substr(at, end - at));
      at = end + 1;
    }
  };
  reset();
  ASSERT_EQ(held(), "99 without");
  const Ran refused = Rain({"--fill"});
  EXPECT_EQ(refused.Status, 1);
  EXPECT_THAT(refused.Error, HasSubstr("--overwrite replaces them"));
  EXPECT_EQ(held(), "99 without");
  const Ran filled = Rain({"--fill", "--overwrite"});
  EXPECT_EQ(filled.Status, 0) << filled.Error;
  const std::string whole = held();
  EXPECT_THAT(whole, AllOf(HasSubstr("52.57 0.54"), HasSubstr("classes")));
  for (const useconds_t life : {20'000, 25'000, 30'000, 35'000, 40'000, 45'000, 50'000, 60'000, 80'000}) {
    reset();
    (void)Rain({"--fill", "--overwrite"}, {.KillAfter = life});
    EXPECT_THAT(held(), AnyOf("99 without", whole)) << "killed after " << life << " microseconds";
  }
}

}  // namespace
}  // namespace hyetex::test
