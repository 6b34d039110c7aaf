#include "scan/find_scans.h"

#include <gmock/gmock.h>

#include "support.h"

namespace hyetex {
namespace {

using test::TempFolder;
using ::testing::HasSubstr;

class FindScansInAFolder : public ::testing::Test {
 protected:
  void Put(std::initializer_list<std::string> names) {
    for (const std::string& name : names) test::WriteFile(folder_ / name, "");
  }
  // The name of the scan of one chart among `others`, or why there is none.
  std::string Find(const std::string& code, int hour, int day = 5,
                   const std::vector<WantedScan>& others = {}) {
    std::vector<WantedScan> charts{{code, MakeDate(1998, 3, day, hour)}};
    charts.insert(charts.end(), others.begin(), others.end());
    const auto found = FindScans(folder_.Path(), charts);
    if (!found) return found.error();
    EXPECT_EQ(found->size(), charts.size());
    const Result<std::string>& first = found->front();
    return first ? std::filesystem::path(*first).filename().string() : first.error();
  }
  TempFolder folder_;
};

TEST_F(FindScansInAFolder, TakesTheFormsThatServicesUse) {
  Put({"NM-Hill Farm-01_19980305.tif", "RG12-19980305-0700.PNG", "rg12-19980306-0700.jpeg",
       "box 7 RG 13 19980305_0700 back.pdf", "St-M\xc3\xa4rz-19980305.bmp", "RG12-19980307-0700.dat",
       "RG12-19980308", "X19980305.tif", "RG1419980305.tif", "RG15-199803051.tif"});
  std::filesystem::create_directory(folder_ / "RG16-19980305.tif");
  EXPECT_EQ(Find("NM-Hill Farm-01", 7), "NM-Hill Farm-01_19980305.tif");
  EXPECT_EQ(Find("nm_hill farm 01", 7), "NM-Hill Farm-01_19980305.tif");
  EXPECT_EQ(Find("RG12", 7), "RG12-19980305-0700.PNG");
  EXPECT_EQ(Find("RG12", 7, 6), "rg12-19980306-0700.jpeg");
  EXPECT_EQ(Find("RG-13", 7), "box 7 RG 13 19980305_0700 back.pdf");
  EXPECT_EQ(Find("St-M\xc3\xa4rz", 7), "St-M\xc3\xa4rz-19980305.bmp");
  EXPECT_EQ(Find("St-M\xe4rz", 7), "St-M\xc3\xa4rz-19980305.bmp");  // the code as an old file holds it
  EXPECT_EQ(Find("RG12", 8), "No scan is named as this chart, RG12-19980305-0800.");
  for (const auto& [code, day] : {std::pair("RG12", 7),
                                  {"RG12", 8},
                                  {"RG14", 5},
                                  {"RG15", 5},
                                  {"RG16", 5},
                                  {"G12", 5},
                                  {"", 5},
                                  {"2", 5}})
    EXPECT_THAT(Find(code, 7, day), HasSubstr("No scan")) << code;
}

TEST_F(FindScansInAFolder, TakesTheBestNameAndGuessesNothing) {
  const std::vector<WantedScan> evening{{"RG12", MakeDate(1998, 3, 5, 19)}};
  Put({"RG12-19980305.tif"});
  EXPECT_EQ(Find("RG12", 7), "RG12-19980305.tif");
  EXPECT_THAT(Find("RG12", 7, 5, evening), HasSubstr("named as several charts"));
  Put({"RG12-19980305-0700.tif"});
  EXPECT_EQ(Find("RG12", 7, 5, evening), "RG12-19980305-0700.tif");  // the time decides
  EXPECT_THAT(Find("RG12", 19, 5, {{"RG12", MakeDate(1998, 3, 5, 7)}}), HasSubstr("named as several charts"));
  Put({"RG12-19980305-0700 copy.tif"});
  EXPECT_EQ(Find("RG12", 7), "RG12-19980305-0700.tif");  // nothing else in the name
  Put({"rg12_19980305_0700.jpg"});
  EXPECT_EQ(Find("RG12", 7),
            "Several scans are named as this chart: RG12-19980305-0700.tif and rg12_19980305_0700.jpg.");
  // One code ends another one.
  Put({"North-RG20-19980305.tif"});
  const std::vector<WantedScan> north{{"North-RG20", MakeDate(1998, 3, 5, 7)}};
  EXPECT_THAT(Find("RG20", 7, 5, north), HasSubstr("No scan"));
  EXPECT_EQ(Find("North-RG20", 7, 5, {{"RG20", MakeDate(1998, 3, 5, 7)}}), "North-RG20-19980305.tif");
  EXPECT_THAT(FindScans(folder_ / "missing", north).error(), HasSubstr("Cannot read the folder"));
}

TEST_F(FindScansInAFolder, FindsEveryChartOfAFullFolder) {
  std::vector<WantedScan> charts;
  for (int i = 0; i < 1000; ++i) {
    charts.push_back({"RG" + std::to_string(i % 7), MakeDate(1950, 1, 1 + i / 7, 7)});
    Put({charts.back().InstrumentCode + "-" + DateCode(charts.back().Start) + ".tif"});
  }
  const auto found = FindScans(folder_.Path(), charts);
  ASSERT_TRUE(found);
  for (std::size_t i = 0; i < charts.size(); ++i)
    ASSERT_EQ((*found)[i], folder_ / (charts[i].InstrumentCode + "-" + DateCode(charts[i].Start) + ".tif"));
}

}  // namespace
}  // namespace hyetex
