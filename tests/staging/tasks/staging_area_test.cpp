// The staged charts as the task window shows and keeps them.
#include "staging/tasks/staging_area.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "core/dates.h"
#include "staging/tasks/task_rows.h"
#include "support.h"

namespace hyetex {
namespace {

using test::ReadFile;
using test::TempFolder;
using test::WriteFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

ChartRecord Task(std::string code, Date start, float eyed = 1, float manual = 2, std::string comments = "") {
  ChartRecord task;
  task.InstrumentCode = std::move(code);
  task.StartTime = start;
  task.EndTime = start + 1;
  task.EyedDepth = eyed;
  task.ManualDepth = manual;
  task.GeneralComment = std::move(comments);
  return task;
}

TEST(TaskRows, StandByTheirBeginAndKeepTheirOrderOtherwise) {
  const Date day = MakeDate(1998, 3, 5), late = MakeDate(2150, 1, 1);
  const auto rows = TaskRows({Task("A", day + 1), Task("B", day), Task("A", late), Task("A", day + 1),
                              Task("a", day), Task("A ", day), Task("A", day)},
                             "A");
  std::vector<int> order;
  for (const TaskRow& row : rows) order.push_back(row.Task);
  EXPECT_THAT(order, ElementsAre(6, 0, 3, 2));
}

TEST(TaskRows, SayWhichDepthIsNotKnown) {
  const Date day = MakeDate(1998, 3, 5, 7, 30);
  const auto cells = [&](float eyed, float manual, const char* comments) {
    return TaskRows({Task("A", day, eyed, manual, comments)}, "A")[0].Cells;
  };
  EXPECT_THAT(cells(12.5F, 0.1F, "CODE205"),
              ElementsAre("05/03/1998 07:30:00", "06/03/1998 07:30:00", "12.5", "0.1"));
  EXPECT_EQ(cells(-1, -1, "")[2], "   ");
  EXPECT_EQ(cells(-1, -1, "")[3], "unknown");
  EXPECT_EQ(cells(0, 5, "CODE213")[2], "Defective");
  EXPECT_EQ(cells(-1, 5, "x::CODE213")[2], "Defective");
}

TEST(TaskRows, FindTheStationThatWasSelected) {
  ReferenceLists lists;
  lists.Stations = {{"North", "RG1", 0, 0}, {"Old-Mill", "RG1-2", 0, 0}, {"South", "RG12", 0, 0}};
  const auto tree = StationTree(lists);
  for (std::size_t i = 2; i < tree.size(); ++i)
    EXPECT_EQ(FindStationSetting(tree, StationSetting(tree[i].Text)), static_cast<int>(i)) << tree[i].Text;
  EXPECT_EQ(StationSetting("South - RG12"), "- RG12");
  EXPECT_EQ(FindStationSetting(tree, "- RG"), 4) << "of several the last one";
  EXPECT_EQ(FindStationSetting(tree, "- RG3"), -1);
  EXPECT_EQ(FindStationSetting(tree, ""), -1);
}

std::vector<std::string> Copies(const TempFolder& folder) {
  std::vector<std::string> copies;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
    if (entry.path().filename().string().starts_with("Tasks.lst.bak-"))
      copies.push_back(entry.path().string());
  return copies;
}

TEST(StagingArea, KeepsAnOddFileBeforeItWritesOverIt) {
  TempFolder folder;
  const std::string odd = "A , 3/5/1998 7:00:00 AM , 06/03/1998 , 1 , 2 , 1\r\nfirst\r\nnothing\r\n";
  WriteFile(folder / "Tasks.lst", odd);
  StagingArea staging;
  EXPECT_EQ(staging.Load(folder.Path(), {}).size(), 2U);
  EXPECT_THAT(Copies(folder), IsEmpty()) << "looking changes nothing";
  ASSERT_TRUE(staging.Save());
  ASSERT_TRUE(staging.Save());
  ASSERT_EQ(Copies(folder).size(), 1U);
  EXPECT_EQ(ReadFile(Copies(folder)[0]), odd);
  EXPECT_THAT(staging.Load(folder.Path(), {}), IsEmpty());
  EXPECT_EQ(staging.Tasks()[0].InstrumentIndex, -1) << "a chart whose station is gone stays";
}

TEST(StagingArea, NeverWritesOverWhatItCannotKeep) {
  TempFolder folder;
  const std::string binary("\0A ,", 4);
  WriteFile(folder / "Tasks.lst", binary);
  StagingArea staging;
  EXPECT_EQ(staging.Load(folder.Path(), {}).size(), 1U);
  ASSERT_FALSE(staging.Add(Task("A", 1)));
  ASSERT_TRUE(staging.Save());
  ASSERT_EQ(Copies(folder).size(), 1U);
  EXPECT_EQ(ReadFile(Copies(folder)[0]), binary);

  TempFolder second;
  std::filesystem::create_directory(second / "Tasks.lst");
  EXPECT_EQ(staging.Load(second.Path(), {}).size(), 1U);
  EXPECT_FALSE(staging.Save());
}

TEST(StagingArea, RefusesTheChartThatDoesNotFit) {
  TempFolder folder;
  StagingArea staging;
  staging.Load(folder.Path(), {});
  for (int i = 0; i < 2001; ++i) ASSERT_FALSE(staging.Add(Task("A", i)));
  EXPECT_THAT(staging.Add(Task("A", 1)).value_or(""), StartsWith("There is no room for another chart"));
  staging.Delete(5000);
  staging.Delete(0);
  EXPECT_EQ(staging.Tasks().size(), 2000U);
  EXPECT_EQ(staging.Tasks()[0].StartTime, 1);
  EXPECT_TRUE(staging.Save());
}

}  // namespace
}  // namespace hyetex
