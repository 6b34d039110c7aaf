// The staging area: the charts that wait for digitizing, and their file `Tasks.lst` in the program folder.
//
// A text file of two lines a chart: instrument code, start, end, eyed depth, manual depth and reliability
// joined by " , "; then the comments, which may be empty. Operators edit it by hand, so what is odd in it is
// read as far as it goes and noted.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/records.h"
#include "core/result.h"

namespace hyetex {

inline constexpr std::string_view TasksFileName = "Tasks.lst";

struct TaskTable {
  std::vector<ChartRecord> Tasks;
  /// What was odd or left out, each with its line number, counted from 1. Beyond a screenful only their
  /// number.
  std::vector<std::string> Notes;
};

/// Reads the staged charts; each gets the index of the last station with its code. A missing file is an empty
/// list. Dates that are none read as 0, numbers leniently, a reliability other than 0 to 3 as 0. A line
/// without a comma where a chart should begin is passed over. Fails on a file that cannot be read, is too
/// long or is no text.
Result<TaskTable> LoadTasks(const std::string& programFolder, const std::vector<StationRecord>& stations);

/// Rewrites the file in full; line ends in comments become blanks. Fails, naming the chart, on whatever
/// CheckTask refuses, and on too many.
Result<void> SaveTasks(const std::string& programFolder, const std::vector<ChartRecord>& tasks);

/// Why a chart cannot stand in the file: its code holds a comma or a line break, or a text of it holds a
/// NUL. Nothing if it can.
std::optional<std::string> CheckTask(const ChartRecord& task);
/// Why no further chart can be staged; nothing if there is room.
std::optional<std::string> CheckTaskRoom(const std::vector<ChartRecord>& tasks);

/// Gives the charts of one instrument code another code in the file, which is otherwise left as it is, and
/// tells how many there were. Fails, with the file as it was, on a code that cannot stand in it.
Result<int> RenameInstrument(const std::string& programFolder, std::string_view oldCode,
                             std::string_view newCode);

}  // namespace hyetex
