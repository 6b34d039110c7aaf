#include "digitizing/tablet_search.h"

#include <gtest/gtest.h>

#include <string>

namespace hyetex {
namespace {

class Ports : public TrialPort {
 public:
  std::string Story;
  void Open(int port, const TabletType& type) override {
    Story += std::to_string(port) + (type.Initialisation.empty() ? " " : "! ");
  }
  void Close() override { Story += "x "; }
};

class TabletSearching : public ::testing::Test {
 protected:
  void Tick(int times = 1) {
    while (times-- > 0) search_.Tick();
  }
  void Receive(std::string_view bytes) {
    search_.Receive({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  }
  static std::string ReportOf(int type) {
    return EncodeReport(TabletTypes()[static_cast<std::size_t>(type)], {300, 523, -1});
  }

  Ports ports_;
  TabletSearch search_{ports_, 0};
};

TEST_F(TabletSearching, GoesThroughItsTwoPortsInTurn) {
  EXPECT_EQ(search_.TestPort(), 0);
  Tick(4);
  EXPECT_EQ(ports_.Story, "1 x 2 x 1 x 2 ");
  EXPECT_EQ(search_.DetectedPort(), NoPort);
}

TEST_F(TabletSearching, KnowsEachTabletByItsReportsAlone) {
  for (int type = 0; type < TabletTypeCount; ++type) {
    search_.SetType(type);
    Tick();
    const int port = search_.TestPort();
    Receive("\x01garbage, in mid-report,\r");
    ASSERT_EQ(search_.DetectedPort(), NoPort) << type;
    const std::string report = ReportOf(type);
    Receive(report.substr(0, 4));
    Receive(report.substr(4));
    EXPECT_EQ(search_.DetectedPort(), port) << type;
  }
  search_.SetType(0);
  Tick();
  Receive(ReportOf(1) + ReportOf(3));
  EXPECT_EQ(search_.DetectedPort(), NoPort) << "a tablet of another type";
}

TEST_F(TabletSearching, CountsATabletAsLostAfterTwoSilentTicks) {
  Tick(2);
  Receive(ReportOf(0));
  EXPECT_EQ(search_.DetectedPort(), 2);
  Tick();
  Receive(ReportOf(0));
  Tick();
  Receive("noise");
  EXPECT_EQ(search_.DetectedPort(), 2);
  ports_.Story.clear();
  Tick();
  EXPECT_EQ(search_.DetectedPort(), NoPort);
  Receive(ReportOf(0));
  EXPECT_EQ(search_.DetectedPort(), NoPort) << "its port is closed";
  Tick(2);
  EXPECT_EQ(ports_.Story, "x 1 x 2 ");
}

TEST_F(TabletSearching, HalfAReportOfOnePortIsNotEndedByAnother) {
  Tick();
  const std::string report = ReportOf(0);
  Receive(report.substr(0, 14));
  Tick();
  Receive(report.substr(14));
  EXPECT_EQ(search_.DetectedPort(), NoPort);
}

TEST_F(TabletSearching, StartsAgainWithAnotherType) {
  EXPECT_FALSE(search_.SetType(2)) << "no port is open yet";
  Tick();
  Receive(ReportOf(2));
  EXPECT_EQ(search_.DetectedPort(), 1);
  EXPECT_TRUE(search_.SetType(1));
  EXPECT_EQ(search_.DetectedPort(), NoPort);
  Tick();
  EXPECT_EQ(ports_.Story, "1 x 2! ");
  Tick();
  EXPECT_TRUE(search_.SetType(2));
  Tick();
  EXPECT_EQ(ports_.Story, "1 x 2! x 1! x 1 ") << "none was found: it begins at the first port";
  search_.Stop();
  search_.Stop();
  EXPECT_EQ(ports_.Story, "1 x 2! x 1! x 1 x ");
}

}  // namespace
}  // namespace hyetex
