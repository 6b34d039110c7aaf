#include "staging/tasks/task_details.h"

#include <algorithm>
#include <cmath>

#include "core/chart_length.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/number_entry.h"
#include "core/numbers.h"
#include "core/text.h"
#include "staging/tasks/tasks.h"

namespace hyetex {
namespace {

constexpr Date EightOClock = 1.0 / 3;
constexpr long long LongestSeconds = 10LL * SecondsPerDay;

Date Joined(Date date, Date time) { return std::floor(date) + (time - std::floor(time)); }

std::string DepthText(float depth) { return depth == NoDepth ? std::string() : ShortText(depth); }

float DepthOf(std::string_view typed) { return static_cast<float>(TypedOrLeading(typed)); }

bool IsZero(std::string_view typed) {
  return DepthOf(typed) == 0 && typed.find('0') != std::string_view::npos;
}
// Neither empty, nor 0, nor letters.
bool IsDepth(std::string_view typed) { return DepthOf(typed) != 0; }

bool IsDefectiveByEntry(std::string_view comments) {
  const auto entries = CommentEntries(comments);
  return std::find(entries.begin(), entries.end(), CodeText(CodeDefective)) != entries.end();
}

}  // namespace

TaskDetails NewTaskDetails(const Settings& settings, Date now) {
  const Date today = std::floor(now);
  const int reliability = settings.Get(setting::TaskReliability);
  return {.BeginDate = settings.Get(setting::TaskBegin).value_or(today),
          .BeginTime = EightOClock,
          .EndDate = settings.Get(setting::TaskEnd).value_or(today),
          .EndTime = EightOClock,
          .EyedDepth = {},
          .ManualDepth = {},
          .Reliability = reliability >= 0 && reliability <= 3 ? reliability : 0,
          .Comments = {}};
}

TaskDetails DetailsOfTask(const ChartRecord& task) {
  return {.BeginDate = std::floor(task.StartTime),
          .BeginTime = task.StartTime - std::floor(task.StartTime),
          .EndDate = std::floor(task.EndTime),
          .EndTime = task.EndTime - std::floor(task.EndTime),
          .EyedDepth = DepthText(task.EyedDepth),
          .ManualDepth = DepthText(task.ManualDepth),
          .Reliability = task.Reliability,
          .Comments = task.GeneralComment};
}

void RememberTaskDetails(Settings& settings, const TaskDetails& details) {
  // What cannot be kept is not worth a message.
  (void)settings.Set(setting::TaskBegin, details.BeginDate);
  (void)settings.Set(setting::TaskEnd, details.EndDate);
  (void)settings.Set(setting::TaskReliability, details.Reliability);
}

std::optional<std::string> CheckTaskDepth(std::string_view typed) {
  const bool isWord = typed.find_first_of("0123456789") == std::string_view::npos;
  return isWord ? std::nullopt : CheckNumber(typed, DepthEntry);
}

tl::expected<CheckedTask, TaskFault> CheckTaskDetails(const TaskDetails& details, ChartRecord task) {
  const auto fault = [](std::string text, TaskField field) {
    return tl::unexpected(TaskFault{std::move(text), field});
  };
  task.StartTime = Joined(details.BeginDate, details.BeginTime);
  task.EndTime = Joined(details.EndDate, details.EndTime);
  const long long lapse = std::llround((task.EndTime - task.StartTime) * SecondsPerDay);
  if (!HasLength(task)) return fault(NoLengthRefusal, TaskField::Begin);
  if (IsZero(details.ManualDepth))
    return fault(
        "you must enter a value for the manual depth, or clear the manual depth Textbox for an unknown depth",
        TaskField::ManualDepth);
  if (const auto why = CheckTaskDepth(details.ManualDepth)) return fault(*why, TaskField::ManualDepth);
  if (const auto why = CheckTaskDepth(details.EyedDepth)) return fault(*why, TaskField::EyedDepth);
  if (!IsDepth(details.EyedDepth) && !(IsDefectiveByEntry(details.Comments) && IsDepth(details.ManualDepth)))
    return fault("you must enter a value for the Eyed depth", TaskField::EyedDepth);
  if (lapse == 0)
    return fault("The chart has no length: its end must be after its beginning", TaskField::Begin);

  task.GeneralComment = OneLine(details.Comments);
  task.EyedDepth = DepthOf(details.EyedDepth);
  task.ManualDepth = IsDepth(details.ManualDepth) ? DepthOf(details.ManualDepth) : NoDepth;
  task.Reliability = static_cast<std::int16_t>(details.Reliability);
  if (const auto why = CheckTask(task)) return fault(*why, TaskField::Begin);
  return CheckedTask{std::move(task), lapse > LongestSeconds};
}

void AddDefectiveCode(std::string& comments) {
  if (!HasCode(comments, CodeDefective)) AddCode(comments, CodeText(CodeDefective));
}

std::string WithoutEntry(std::string_view comments, int index) {
  const auto entries = CommentEntries(comments);
  if (index < 0 || index >= static_cast<int>(entries.size())) return std::string(comments);
  std::string rest;
  bool first = true;
  for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
    if (i == index) continue;
    rest.append(std::exchange(first, false) ? "" : "::").append(entries[static_cast<std::size_t>(i)]);
  }
  return rest;
}

}  // namespace hyetex
