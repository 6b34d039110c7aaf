// The details of a staged chart as they are entered: what a new one begins with, what may not be entered, and
// the list of its comments.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

#include "core/records.h"
#include "core/settings.h"

namespace hyetex {

inline constexpr std::string_view TaskDetailsTitle = "Defining a Task";

/// The details as the controls hold them.
struct TaskDetails {
  Date BeginDate = 0, BeginTime = 0;  ///< of a date the whole days count, of a time the fraction
  Date EndDate = 0, EndTime = 0;
  std::string EyedDepth, ManualDepth;  ///< mm as typed; empty where no depth is known
  int Reliability = 0;
  std::string Comments;  ///< entries joined by "::"

  bool operator==(const TaskDetails&) const = default;
};

/// What a new chart begins with: the dates and the reliability used last, else today; from 8 to 8 o'clock.
TaskDetails NewTaskDetails(const Settings& settings, Date now);
TaskDetails DetailsOfTask(const ChartRecord& task);
/// Keeps dates and reliability for the next new chart.
void RememberTaskDetails(Settings& settings, const TaskDetails& details);

enum class TaskField { Begin, EyedDepth, ManualDepth };
struct TaskFault {
  std::string Text;  ///< what the operator is told
  TaskField Field;   ///< where it is mended
};
struct CheckedTask {
  ChartRecord Task;
  /// It lasts more than 10 days: the operator is asked LapseQuestion before it is taken.
  bool AsksAboutLapse = false;
};
inline constexpr std::string_view LapseQuestion =
    "There is a great time lapse between the beginning date and the ending date, would you like to continue "
    "anyway ? ";

/// Why a depth cannot be taken as typed. A word without digits is a depth that is not known.
std::optional<std::string> CheckTaskDepth(std::string_view typed);

/// The chart with these details; all else stays as it is in `task`. A chart needs an eyed depth other than
/// 0, unless it is marked as extremely defective and its manual depth is known. The manual depth may be left
/// out (a word counts as that), but not be 0. A typed -1 is no depth. A chart must last some time.
tl::expected<CheckedTask, TaskFault> CheckTaskDetails(const TaskDetails& details, ChartRecord task);

/// Marks a chart as extremely defective, once.
void AddDefectiveCode(std::string& comments);
/// The comments without the entry at `index` of CommentEntries; unchanged when there is none.
std::string WithoutEntry(std::string_view comments, int index);

}  // namespace hyetex
