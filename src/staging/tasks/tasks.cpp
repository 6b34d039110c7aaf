#include "staging/tasks/tasks.h"

#include <array>
#include <list>

#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/program_files.h"
#include "core/text.h"
#include "staging/lists/lists.h"

namespace hyetex {
namespace {

constexpr std::string_view Joint = " , ";
constexpr std::size_t FieldCount = 6;
constexpr std::size_t MostNotes = 20;

// Notes for the operator; the first ones in words, the rest as a number.
class NoteTaker {
 public:
  explicit NoteTaker(std::vector<std::string>& notes) : notes_(notes) {}
  NoteTaker(const NoteTaker&) = delete;
  NoteTaker& operator=(const NoteTaker&) = delete;
  ~NoteTaker() {
    if (more_ > 0) notes_.push_back(AndMore(more_));
  }
  void Add(std::size_t line, const std::string& what) {
    if (notes_.size() < MostNotes)
      notes_.push_back("Line " + std::to_string(line + 1) + ": " + what);
    else
      ++more_;
  }

 private:
  std::vector<std::string>& notes_;
  std::size_t more_ = 0;
};

Result<std::string> ReadTasksFile(const std::string& path) {
  Result<std::string> text = ReadProgramFile(path);
  if (text && text->find('\0') != std::string::npos)
    return Failure("Cannot read " + path + ": it is no text file");
  return text;
}

bool HoldsTask(std::string_view line) { return line.find(',') != std::string_view::npos; }

// Calls `take(index)` for the first line of each chart and `skip(index)` for a line that should be one and is
// not. Skipping just that line puts the pairs right again behind a line that was put in or lost.
template <typename Take, typename Skip>
void ForEachTask(const std::vector<std::string_view>& lines, Take&& take, Skip&& skip) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (HoldsTask(lines[i]))
      take(i++);
    else
      skip(i);
  }
}

// The fields of a first line; the last one is all that stands behind the fifth comma.
struct FirstLine {
  std::array<std::string_view, FieldCount> Fields;
  std::size_t Count = 0;
};

FirstLine SplitFirstLine(std::string_view line) {
  FirstLine split;
  while (split.Count + 1 < FieldCount) {
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos) break;
    split.Fields[split.Count++] = line.substr(0, comma);
    line.remove_prefix(comma + 1);
  }
  split.Fields[split.Count++] = line;
  return split;
}

// The code less the one character in front of the comma, which is the joint's blank.
std::string_view CodeField(const FirstLine& line) {
  const std::string_view field = line.Fields[0];
  return field.substr(0, field.empty() ? 0 : field.size() - 1);
}

Date ReadDate(std::string_view field, std::size_t line, NoteTaker& notes) {
  if (const auto parsed = ParseDateText(field)) return parsed->Value;
  notes.Add(line, Quoted(Trim(field)) + " is no date");
  return 0;
}

ChartRecord ReadTask(const std::vector<std::string_view>& lines, std::size_t at, NoteTaker& notes) {
  const FirstLine line = SplitFirstLine(lines[at]);
  if (line.Count < FieldCount)
    notes.Add(at, std::to_string(FieldCount - line.Count) + " of the chart's " + std::to_string(FieldCount) +
                      " fields are missing");
  ChartRecord task;
  if (!line.Fields[0].ends_with(' ')) notes.Add(at, "there is no blank between the code and the comma");
  task.InstrumentCode = CodeField(line);
  task.StartTime = ReadDate(line.Fields[1], at, notes);
  if (line.Count > 2) task.EndTime = ReadDate(line.Fields[2], at, notes);
  task.EyedDepth = LeadingFloat(line.Fields[3]);
  task.ManualDepth = LeadingFloat(line.Fields[4]);
  task.Reliability = LeadingInt16(line.Fields[5]);
  if (task.Reliability < 0 || task.Reliability > 3) {
    notes.Add(at, "there is no reliability " + std::to_string(task.Reliability));
    task.Reliability = 0;
  }
  if (at + 1 < lines.size())
    task.GeneralComment = lines[at + 1];
  else
    notes.Add(at, "the chart's comments line is missing");
  return task;
}

std::string FirstLineText(const ChartRecord& task) {
  std::string text = task.InstrumentCode;
  for (const std::string& field :
       {GeneralDateText(task.StartTime), GeneralDateText(task.EndTime), ShortText(task.EyedDepth),
        ShortText(task.ManualDepth), ShortText(static_cast<int>(task.Reliability))})
    text.append(Joint).append(field);
  return text;
}

std::optional<std::string> CheckCode(std::string_view code) {
  if (code.find(',') != std::string_view::npos) return "An instrument code must not hold a comma.";
  return CheckOneLine(code);
}

}  // namespace

Result<TaskTable> LoadTasks(const std::string& programFolder, const std::vector<StationRecord>& stations) {
  const Result<std::string> text = ReadTasksFile(JoinPath(programFolder, TasksFileName));
  if (!text) return Failure(text.error());
  const std::vector<std::string_view> lines = EditedLines(*text);
  TaskTable table;
  {
    NoteTaker notes(table.Notes);
    ForEachTask(
        lines,
        [&](std::size_t at) {
          if (CheckTaskRoom(table.Tasks)) return notes.Add(at, "left out, there are too many charts");
          ChartRecord task = ReadTask(lines, at, notes);
          task.InstrumentIndex = FindStation(stations, task.InstrumentCode);
          table.Tasks.push_back(std::move(task));
        },
        [&](std::size_t at) {
          if (!Trim(lines[at]).empty()) notes.Add(at, "left out, it holds no chart");
        });
  }
  return table;
}

Result<void> SaveTasks(const std::string& programFolder, const std::vector<ChartRecord>& tasks) {
  if (tasks.size() > MaxTask + 1)
    return Failure("The staged charts cannot be saved: there are more than " + std::to_string(MaxTask + 1) +
                   ".");
  std::list<std::string> texts;
  std::vector<std::string_view> lines;
  for (const ChartRecord& task : tasks) {
    if (const auto why = CheckTask(task))
      return Failure("The staged charts cannot be saved: the chart of " + Quoted(task.InstrumentCode) +
                     " from " + GeneralDateText(task.StartTime) + ": " + *why);
    lines.push_back(texts.emplace_back(FirstLineText(task)));
    lines.push_back(texts.emplace_back(OneLine(task.GeneralComment)));
  }
  return WriteLines(JoinPath(programFolder, TasksFileName), lines);
}

std::optional<std::string> CheckTask(const ChartRecord& task) {
  if (const auto why = CheckCode(task.InstrumentCode)) return why;
  return CheckOneLine(OneLine(task.GeneralComment));
}

std::optional<std::string> CheckTaskRoom(const std::vector<ChartRecord>& tasks) {
  if (tasks.size() <= MaxTask) return std::nullopt;
  return "There is no room for another chart: the staging area holds at most " + std::to_string(MaxTask + 1) +
         ".";
}

Result<int> RenameInstrument(const std::string& programFolder, std::string_view oldCode,
                             std::string_view newCode) {
  if (oldCode == newCode) return 0;
  if (const auto why = CheckCode(newCode)) return Failure(*why);
  const std::string path = JoinPath(programFolder, TasksFileName);
  const Result<std::string> old = ReadTasksFile(path);
  if (!old) return Failure(old.error());
  std::vector<std::string_view> lines = EditedLines(*old);
  std::list<std::string> renamed;
  ForEachTask(
      lines,
      [&](std::size_t at) {
        const std::size_t end = lines[at].find(" ,");
        if (end == std::string_view::npos || lines[at].substr(0, end) != oldCode) return;
        lines[at] = renamed.emplace_back(newCode).append(lines[at].substr(end));
      },
      [](std::size_t) {});
  if (renamed.empty()) return 0;
  if (const auto written = WriteLines(path, lines); !written) return Failure(written.error());
  return static_cast<int>(renamed.size());
}

}  // namespace hyetex
