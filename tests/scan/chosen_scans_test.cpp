// Which scan a staged chart has, and which part of it a view of the desk shows.
#include "scan/chosen_scans.h"

#include <gmock/gmock.h>

#include "core/dates.h"
#include "digitizing/tablets.h"
#include "scan/scan_view.h"
#include "support.h"

namespace hyetex {
namespace {

using ::testing::HasSubstr;

ChartRecord Chart(int day) {
  ChartRecord chart;
  chart.InstrumentCode = "NM-O'Hara-01";
  chart.StartTime = MakeDate(1998, 3, day, 7);
  return chart;
}

TEST(ChosenScans, PickedOnesStayAndFoundOnesGoWithTheirFolder) {
  const test::TempFolder folder;
  test::WriteFile(folder / "NM-O'Hara-01_19980305.tif", "");
  test::WriteFile(folder / "NM-O'Hara-01_19980306.tif", "");
  const ChartRecord charts[] = {Chart(5), Chart(6), Chart(7)};
  ChosenScans scans;
  EXPECT_THAT(scans.Of(charts[0]).error(), HasSubstr("Choose the chart's scan"));
  scans.Choose(charts[0], {"elsewhere.pdf", 3});
  ASSERT_TRUE(scans.LookIn(folder.Path(), charts));
  EXPECT_EQ(scans.Of(charts[0]), (ScanPick{"elsewhere.pdf", 3})) << "what the operator picked";
  EXPECT_EQ(scans.Of(charts[1])->Path, folder / "NM-O'Hara-01_19980306.tif");
  EXPECT_FALSE(scans.Of(charts[2]));
  EXPECT_FALSE(scans.LookIn(folder / "none", charts));
  EXPECT_TRUE(scans.Of(charts[0]));
  EXPECT_FALSE(scans.Of(charts[1])) << "of a folder that is no longer looked in";
}

TEST(ScanView, APixelOfTheViewShowsThePlaceThatAPressOnItMeans) {
  const TabletExtents& tablet = TabletTypes()[ScanTablet].Extents;
  constexpr int width = 3000, height = 900;
  ScanPlacement placement = *LaidOnSheet(tablet, width, height, 200 / 25.4);
  placement = TurnAboutCentre(placement, width, height, 91.5);
  DeskLayout layout = DefaultDeskLayout(tablet);
  layout.Home = AreaOf(placement, width, height);
  EXPECT_GT(layout.Home->Height, layout.Home->Width) << "it stands on its short side";
  ShowAround(layout, layout.Home->Left + layout.Home->Width / 2, layout.Home->Bottom + 900, 1.7);
  constexpr double unitsPerPixel = 15;
  const ScanWindow window = ScanWindowOf(layout, placement, unitsPerPixel);
  for (const auto& [right, down] : {std::pair(0, 0), {799, 0}, {0, 599}, {412, 233}}) {
    const auto [px, py] =
        ImagePosition(placement, layout.TabletX(right * unitsPerPixel), layout.TabletY(down * unitsPerPixel));
    EXPECT_NEAR(window.X + right * window.RightX + down * window.DownX, px, 1e-6);
    EXPECT_NEAR(window.Y + right * window.RightY + down * window.DownY, py, 1e-6);
  }
}

}  // namespace
}  // namespace hyetex
