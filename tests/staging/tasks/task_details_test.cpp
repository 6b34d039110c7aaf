#include "staging/tasks/task_details.h"

#include "core/dates.h"
#include "core/definitions.h"
#include "support.h"

namespace hyetex {
namespace {

using test::TempFolder;

constexpr const char *NoManual =
                         "you must enter a value for the manual depth, or clear the manual depth "
                         "Textbox for an unknown depth",
                     *NoEyed = "you must enter a value for the Eyed depth";

TaskDetails Details(std::string eyed, std::string manual, std::string comments = "") {
  return {.BeginDate = MakeDate(1998, 3, 5),
          .BeginTime = 1.0 / 3,
          .EndDate = MakeDate(1998, 3, 6),
          .EndTime = 1.0 / 3,
          .EyedDepth = std::move(eyed),
          .ManualDepth = std::move(manual),
          .Reliability = 2,
          .Comments = std::move(comments)};
}

TEST(TaskDetails, TakeOnlyDepthsThatAreKnown) {
  struct {
    const char *Eyed, *Manual, *Comments;
    const char* Refused;  // null: taken, with these depths
    float EyedDepth, ManualDepth;
  } const rows[] = {
      {"12.5", "13", "", nullptr, 12.5F, 13},
      {"12.5", "", "", nullptr, 12.5F, -1},
      {"12.5", "abc", "", nullptr, 12.5F, -1},
      {"12.5", "-1", "", nullptr, 12.5F, -1},
      {" 7,25", ".5", "", nullptr, 7.25F, 0.5F},
      {"0,5", "0,5", "", nullptr, 0.5F, 0.5F},
      {" 7mm", ".5", "", "\"7mm\" is no number. Type a number alone, as 2.5.", 0, 0},
      {"7", "-2", "", "A depth must be no less than 0.", 0, 0},
      {"-7", "", "", "A depth must be no less than 0.", 0, 0},
      {"12.5", "0", "", NoManual, 0, 0},
      {"12.5", "0.00", "", NoManual, 0, 0},
      {"12.5", "a0", "", NoManual, 0, 0},
      {"12.5", "1e-60", "", NoManual, 0, 0},
      {"", "", "", NoEyed, 0, 0},
      {"", "5", "", NoEyed, 0, 0},
      {"0.0", "5", "", NoEyed, 0, 0},
      {"abc", "5", "", NoEyed, 0, 0},
      {"0.0", "5", "CODE213", nullptr, 0, 5},
      {"", "5", "Ink ran::CODE213::CODE301", nullptr, 0, 5},
      {"", "", "CODE213", NoEyed, 0, 0},
      {"", "x", "CODE213", NoEyed, 0, 0},
      {"", "0", "CODE213", NoManual, 0, 0},
      {"", "5", "CODE213 + torn", NoEyed, 0, 0},
      {"", "5", "CODE2130", NoEyed, 0, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.Eyed) + " | " + row.Manual + " | " + row.Comments);
    ChartRecord before;
    before.InstrumentCode = "RG12";
    before.InstrumentIndex = 3;
    const auto checked = CheckTaskDetails(Details(row.Eyed, row.Manual, row.Comments), before);
    EXPECT_EQ(checked ? "" : checked.error().Text, row.Refused ? row.Refused : "");
    if (!checked) continue;
    EXPECT_EQ(checked->Task.EyedDepth, row.EyedDepth);
    EXPECT_EQ(checked->Task.ManualDepth, row.ManualDepth);
    EXPECT_EQ(checked->Task.GeneralComment, row.Comments);
    EXPECT_EQ(GeneralDateText(checked->Task.StartTime), "05/03/1998 08:00:00");
    EXPECT_EQ(checked->Task.Reliability, 2);
    EXPECT_EQ(checked->Task.InstrumentCode, "RG12");
    EXPECT_EQ(checked->Task.InstrumentIndex, 3);
  }
}

TEST(TaskDetails, AskAboutMoreThanTenDaysAndRefuseLessThanNone) {
  constexpr double Minute = 1.0 / 1440, Second = Minute / 60;
  for (double at = 0; at < 1; at += 0.01) {  // the last bits of a time of day must not decide
    const auto lasting = [&](double days) {
      TaskDetails details = Details("1", "");
      details.BeginTime = at;
      const Date end = details.BeginDate + at + days;
      details.EndDate = end;
      details.EndTime = end;
      const auto checked = CheckTaskDetails(details, {});
      return !checked ? "refused" : checked->AsksAboutLapse ? "asks" : "taken";
    };
    EXPECT_STREQ(lasting(-Second), "refused");
    EXPECT_STREQ(lasting(0), "refused");
    EXPECT_STREQ(lasting(Second), "taken");
    EXPECT_STREQ(lasting(10), "taken");
    EXPECT_STREQ(lasting(10 + Minute), "asks");
  }
  EXPECT_EQ(CheckTaskDetails(Details("0", "0"), {}).error().Field, TaskField::ManualDepth)
      << "the manual depth is looked at first";
}

TEST(TaskDetails, RefuseWhatTheTaskListCannotHold) {
  ChartRecord task;
  task.InstrumentCode = "RG,12";
  EXPECT_EQ(CheckTaskDetails(Details("1", ""), task).error().Text,
            "An instrument code must not hold a comma.");
}

TEST(TaskDetails, OfANewChartAreTheLastOnesElseToday) {
  TempFolder folder;
  Settings settings(folder.Path());
  const Date now = MakeDate(2024, 2, 29, 17, 30);
  const auto begins = [&] {
    const TaskDetails details = NewTaskDetails(settings, now);
    return GeneralDateText(details.BeginDate + details.BeginTime) + " - " +
           GeneralDateText(details.EndDate + details.EndTime) + " " + std::to_string(details.Reliability);
  };
  EXPECT_EQ(begins(), "29/02/2024 08:00:00 - 29/02/2024 08:00:00 0");
  RememberTaskDetails(settings, Details("1", ""));
  EXPECT_EQ(GetDefinition(folder.Path(), "frmTaskDef-BeginDate"), "05/03/1998");
  EXPECT_EQ(begins(), "05/03/1998 08:00:00 - 06/03/1998 08:00:00 2");
  ASSERT_TRUE(SetDefinition(folder.Path(), "frmTaskDef-BeginDate", "99/99/1998"));
  ASSERT_TRUE(SetDefinition(folder.Path(), "frmTaskDef-Reliability", "3"));
  EXPECT_EQ(begins(), "29/02/2024 08:00:00 - 06/03/1998 08:00:00 3");
  ASSERT_TRUE(SetDefinition(folder.Path(), "frmTaskDef-Reliability", "7"));
  EXPECT_EQ(begins(), "29/02/2024 08:00:00 - 06/03/1998 08:00:00 0");
}

TEST(TaskDetails, OfAStagedChartComeBackAsTheyWere) {
  ChartRecord task;
  task.StartTime = MakeDate(1925, 11, 20, 7, 5, 9);
  task.EndTime = MakeDate(1925, 11, 21);
  task.EyedDepth = 0.1F;
  task.ManualDepth = NoDepth;
  task.Reliability = 3;
  task.GeneralComment = "a::CODE213";
  const TaskDetails details = DetailsOfTask(task);
  EXPECT_EQ(details.ManualDepth, "") << "an unknown depth is an empty box";
  const auto again = CheckTaskDetails(details, task);
  ASSERT_TRUE(again);
  EXPECT_EQ(GeneralDateText(again->Task.StartTime), "20/11/1925 07:05:09");
  EXPECT_EQ(again->Task.EndTime, task.EndTime);
  EXPECT_EQ(again->Task.EyedDepth, task.EyedDepth);
  EXPECT_EQ(again->Task.ManualDepth, task.ManualDepth);
}

TEST(TaskComments, KeepTheirOrderWhenOneGoes) {
  std::string comments = "Ink ran";
  AddDefectiveCode(comments);
  AddDefectiveCode(comments);
  EXPECT_EQ(comments, "Ink ran::CODE213");
  EXPECT_EQ(WithoutEntry("a::b::c", 0), "b::c");
  EXPECT_EQ(WithoutEntry("a::b::c", 2), "a::b");
  EXPECT_EQ(WithoutEntry("a", 0), "");
  EXPECT_EQ(WithoutEntry("a::b", 2), "a::b");
  EXPECT_EQ(WithoutEntry("a::b", -1), "a::b");
}

}  // namespace
}  // namespace hyetex
