#include "staging/tasks/tasks.h"

#include <gmock/gmock.h>

#include <random>

#include "child.h"
#include "core/dates.h"
#include "support.h"

namespace hyetex {
namespace {

using test::ReadFile;
using test::TempFolder;
using test::WriteFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

ChartRecord Task(std::string code, Date start, Date end, float eyed, float manual, std::int16_t reliability,
                 std::string comments) {
  ChartRecord task;
  task.InstrumentCode = std::move(code);
  task.StartTime = start;
  task.EndTime = end;
  task.EyedDepth = eyed;
  task.ManualDepth = manual;
  task.Reliability = reliability;
  task.GeneralComment = std::move(comments);
  return task;
}

TEST(Tasks, WritesAndReadsItsTwoLinesAChart) {
  const std::vector<StationRecord> stations = {{"A", "J-1", 0, 0}, {"B", "J-1", 0, 0}};
  TempFolder folder;
  ASSERT_TRUE(SaveTasks(
      folder.Path(),
      {Task("J-1", MakeDate(1998, 3, 5, 8, 30), MakeDate(1998, 3, 6), 12.5F, -1, 2, "CODE213::a, b"),
       Task("gone ", MakeDate(1929, 12, 31), MakeDate(2031, 1, 1, 23, 59, 59), 0, 0.1F, 0, "")}));
  EXPECT_EQ(ReadFile(folder / "Tasks.lst"),
            "J-1 , 05/03/1998 08:30:00 , 06/03/1998 , 12.5 , -1 , 2\r\nCODE213::a, b\r\n"
            "gone  , 31/12/1929 , 01/01/2031 23:59:59 , 0 , 0.1 , 0\r\n\r\n");
  const auto table = LoadTasks(folder.Path(), stations);
  ASSERT_TRUE(table) << table.error();
  EXPECT_THAT(table->Notes, IsEmpty());
  ASSERT_EQ(table->Tasks.size(), 2U);
  EXPECT_EQ(table->Tasks[0].InstrumentIndex, 1);
  EXPECT_EQ(table->Tasks[0].GeneralComment, "CODE213::a, b");
  EXPECT_EQ(table->Tasks[1].InstrumentIndex, -1);
  EXPECT_EQ(table->Tasks[1].InstrumentCode, "gone ");
  const std::string before = ReadFile(folder / "Tasks.lst");
  ASSERT_TRUE(SaveTasks(folder.Path(), table->Tasks));
  EXPECT_EQ(ReadFile(folder / "Tasks.lst"), before);
}

TEST(Tasks, NotesWhatIsOddAndReadsTheRest) {
  TempFolder folder;
  EXPECT_THAT(LoadTasks(folder.Path(), {}).value().Tasks, IsEmpty());
  WriteFile(folder / "Tasks.lst",
            "\n"  // put in by hand
            "A ,05/03/98 8:30, 06/03/1998 ,x, -1 ,1\r\nfirst\r\n"
            "B , 99/99/1998 , 06/03/1998 , 1 , 2 , 9\rsecond\r\n"
            "nothing\r\n"
            "C , 05/03/1998 , 06/03/1998 , 3\n\n"
            "E , 05/03/1998 , 06/03/1998 , 1 , 2 , -1\n\n"
            "D , 05/03/1998 , 06/03/1998 , 1 , 2 , 3");  // its comments line was lost
  const auto table = LoadTasks(folder.Path(), {});
  ASSERT_TRUE(table) << table.error();
  std::vector<std::string> read;
  for (const auto& task : table->Tasks)
    read.push_back(task.InstrumentCode + " " + GeneralDateText(task.StartTime) + " " +
                   std::to_string(task.EyedDepth).substr(0, 3) + " " + std::to_string(task.Reliability) +
                   " " + task.GeneralComment);
  EXPECT_THAT(read, ElementsAre("A 05/03/1998 08:30:00 0.0 1 first", "B 30/12/1899 1.0 0 second",
                                "C 05/03/1998 3.0 0 ", "E 05/03/1998 1.0 0 ", "D 05/03/1998 1.0 3 "));
  EXPECT_THAT(
      table->Notes,
      ElementsAre("Line 4: \"99/99/1998\" is no date", "Line 4: there is no reliability 9",
                  "Line 6: left out, it holds no chart", "Line 7: 2 of the chart's 6 fields are missing",
                  "Line 9: there is no reliability -1", "Line 11: the chart's comments line is missing"));
}

TEST(Tasks, HoldsNoMoreThanItsTable) {
  TempFolder folder;
  std::vector<ChartRecord> tasks(2000, Task("A", 1, 2, 3, 4, 0, ""));
  EXPECT_FALSE(CheckTaskRoom(tasks));
  tasks.resize(2001, tasks[0]);
  EXPECT_TRUE(CheckTaskRoom(tasks));
  ASSERT_TRUE(SaveTasks(folder.Path(), tasks));
  const std::string full = ReadFile(folder / "Tasks.lst");
  tasks.resize(2002, tasks[0]);
  EXPECT_FALSE(SaveTasks(folder.Path(), tasks));
  EXPECT_EQ(ReadFile(folder / "Tasks.lst"), full);
  WriteFile(folder / "Tasks.lst", full + full);
  const auto table = LoadTasks(folder.Path(), {});
  EXPECT_EQ(table->Tasks.size(), 2001U);
  ASSERT_EQ(table->Notes.size(), 21U);
  EXPECT_THAT(table->Notes.front(), HasSubstr("Line 4003: left out"));
  EXPECT_EQ(table->Notes.back(), "and 1981 more");
}

TEST(Tasks, RefusesTextsThatWouldBreakTheFile) {
  TempFolder folder;
  ASSERT_TRUE(SaveTasks(folder.Path(), {Task("A", 1, 2, 3, 4, 0, "")}));
  const std::string before = ReadFile(folder / "Tasks.lst");
  for (const auto& bad : {Task("A ,B", 1, 2, 3, 4, 0, ""), Task("A\nB", 1, 2, 3, 4, 0, ""),
                          Task("A", 1, 2, 3, 4, 0, std::string(1, '\0')),
                          Task("A", 1, 2, 3, 4, 0, std::string(5 << 20, 'x'))}) {
    const auto saved = SaveTasks(folder.Path(), {Task("A", 1, 2, 3, 4, 0, ""), bad});
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().find('\n'), std::string::npos);
  }
  EXPECT_FALSE(RenameInstrument(folder.Path(), "A", "A,B"));
  EXPECT_EQ(ReadFile(folder / "Tasks.lst"), before);
  ASSERT_TRUE(SaveTasks(folder.Path(), {Task("A", 1, 2, 3, 4, 0, "a\r\nB , 1")}));
  const auto kept = LoadTasks(folder.Path(), {});
  ASSERT_EQ(kept->Tasks.size(), 1U);
  EXPECT_EQ(kept->Tasks[0].GeneralComment, "a B , 1");
}

TEST(Tasks, EndsInOneLineOnAFileThatIsNoTaskList) {
  TempFolder folder;
  std::mt19937 random(1);
  std::string binary(100'000, ' ');
  for (char& c : binary) c = static_cast<char>(random());
  WriteFile(folder / "Tasks.lst", binary);
  EXPECT_THAT(LoadTasks(folder.Path(), {}).error(), HasSubstr("it is no text file"));
  EXPECT_FALSE(RenameInstrument(folder.Path(), "A", "B"));
  std::filesystem::resize_file(folder / "Tasks.lst", 100 << 20);
  EXPECT_THAT(LoadTasks(folder.Path(), {}).error(), HasSubstr("it is longer than"));
  std::filesystem::remove(folder / "Tasks.lst");
  std::filesystem::create_directory(folder / "Tasks.lst");
  EXPECT_FALSE(LoadTasks(folder.Path(), {}));
  EXPECT_FALSE(SaveTasks(folder.Path(), {}));
}

TEST(Tasks, RenamesOnlyTheChartsOfTheCode) {
  TempFolder folder;
  EXPECT_EQ(RenameInstrument(folder.Path(), "A", "B").value(), 0);
  EXPECT_FALSE(std::filesystem::exists(folder / "Tasks.lst"));
  const std::string text = "A , 1 odd\r\nA , comments\r\nAB , x , y\r\n\r\na , x\r\nA\r\nA , x , y\nA ,";
  WriteFile(folder / "Tasks.lst", text);
  EXPECT_EQ(RenameInstrument(folder.Path(), "none", "B").value(), 0);
  EXPECT_EQ(RenameInstrument(folder.Path(), "A", "A").value(), 0);
  EXPECT_EQ(ReadFile(folder / "Tasks.lst"), text) << "nothing to change, nothing written";
  EXPECT_EQ(RenameInstrument(folder.Path(), "A", "New-1").value(), 2);
  EXPECT_EQ(ReadFile(folder / "Tasks.lst"),
            "New-1 , 1 odd\r\nA , comments\r\nAB , x , y\r\n\r\na , x\r\nA\r\nNew-1 , x , y\r\nA ,\r\n");
}

TEST(Tasks, StayWholeOnAFullDisk) {
  TempFolder folder;
  std::vector<ChartRecord> tasks(500, Task("A", 1, 2, 3, 4, 0, "Rain"));
  ASSERT_TRUE(SaveTasks(folder.Path(), tasks));
  const std::string before = ReadFile(folder / "Tasks.lst");
  tasks.resize(600, tasks[0]);
  EXPECT_TRUE(test::OnFullDisk(
      4096, [&] { return !SaveTasks(folder.Path(), tasks) && !RenameInstrument(folder.Path(), "A", "B"); }));
  EXPECT_EQ(ReadFile(folder / "Tasks.lst"), before);
}

}  // namespace
}  // namespace hyetex
