// setting, lists and tasks: what the program folder holds.
#include <array>

#include "chartfiles/chart_text.h"
#include "cli/commands.h"
#include "core/dates.h"
#include "core/definitions.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "core/numbers.h"
#include "core/text.h"
#include "staging/lists/lists.h"
#include "staging/tasks/tasks.h"

namespace hyetex::cli {
namespace {

Exit NoFolder(const std::string& folder) { return Fail("There is no program folder " + folder); }

std::string_view MethodName(int method) {
  static constexpr std::array<std::string_view, 3> names{"linear", "non-linear", "tipping-bucket"};
  return method >= 0 && method < 3 ? names[static_cast<std::size_t>(method)] : "unknown method";
}

// A heading, then each entry with its index.
template <typename List, typename Describe>
void PrintList(std::string_view heading, const List& list, Describe&& describe) {
  Print(std::string(heading) + "\n");
  for (std::size_t i = 0; i < list.size(); ++i)
    Print("  " + ShortText(static_cast<int>(i)) + ": " + ShownText(describe(list[i])) + "\n");
}

std::string DepthText(float depth) { return depth == NoDepth ? "unknown" : ShortText(depth) + " mm"; }

}  // namespace

Exit RunGetSetting(const SettingWords& words) {
  if (!FolderExists(words.Folder)) return NoFolder(words.Folder);
  const auto value = ReadDefinition(words.Folder, words.Key);
  if (!value) return Fail(value.error());
  Print(*value + "\n");
  return Done;
}

Exit RunSetSetting(const SettingWords& words) {
  if (!FolderExists(words.Folder)) return NoFolder(words.Folder);
  const auto lock = FolderLock::Take(words.Folder);
  if (!lock) return Fail(lock.error());
  const auto done = SetDefinition(words.Folder, words.Key, words.Value);
  return done ? Done : Fail(done.error());
}

Exit RunLists(const FolderWords& words) {
  const std::string& folder = words.Folder;
  if (!FolderExists(folder)) return NoFolder(folder);
  const auto lists = ReadLists(folder);
  if (!lists) return Fail(lists.error());
  PrintList("Chart types", lists->ChartTypes, [](const ChartTypeRecord& type) {
    return type.Name + ", " + std::string(MethodName(type.ChartMethod)) + ", height " +
           ShortText(type.ChartHeightMm) + " mm, depth scale " + ShortText(type.DepthScale) +
           " mm of rain / mm, time scale " + ShortText(type.TimeScale) + " hours / mm" +
           (type.ChartMethod == 1 ? ", middle to bottom " + ShortText(type.MiddleToBottomMm) + " mm" : "");
  });
  PrintList("Core parties", lists->Cores, [](const std::string& core) { return core; });
  PrintList("Agencies", lists->Agencies,
            [](const AgencyRecord& agency) { return agency.Name + ", core " + ShortText(agency.Core); });
  PrintList("Stations", lists->Stations, [](const StationRecord& station) {
    return station.Name + " - " + station.InstrumentCode + ", core " + ShortText(station.Core) + ", agency " +
           ShortText(station.Agency);
  });
  PrintList("Users", lists->Users,
            [](const UserRecord& user) { return user.Name + ", level " + ShortText(user.Level); });
  PrintList("Comments", lists->Comments, [](const CommentRecord& comment) {
    return ShortText(comment.Code) + " - " + comment.Description;
  });
  return Done;
}

Exit RunTasks(const FolderWords& words) {
  const std::string& folder = words.Folder;
  if (!FolderExists(folder)) return NoFolder(folder);
  const auto lists = ReadLists(folder);
  if (!lists) return Fail(lists.error());
  const auto tasks = LoadTasks(folder, lists->Stations);
  if (!tasks) return Fail(tasks.error());
  for (const std::string& note : tasks->Notes) Say(note);
  PrintList("Staged charts", tasks->Tasks, [](const ChartRecord& task) {
    return task.InstrumentCode + (task.InstrumentIndex < 0 ? " (no such station)" : "") + ", " +
           GeneralDateText(task.StartTime) + " to " + GeneralDateText(task.EndTime) + ", eyed " +
           DepthText(task.EyedDepth) + ", manual " + DepthText(task.ManualDepth) + ", " +
           std::string(ReliabilityText(task.Reliability)) +
           (task.GeneralComment.empty() ? "" : ", " + task.GeneralComment);
  });
  return Done;
}

}  // namespace hyetex::cli
