// Writes the sample program folder: lists, staged charts and settings, as the demonstration starts with them.
#include <string>

#include "commandline/parser.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/settings.h"
#include "staging/lists/lists.h"
#include "staging/tasks/tasks.h"

namespace hyetex {
namespace {

ReferenceLists SampleLists() {
  ReferenceLists lists;
  lists.ChartTypes = {
      {"Daily siphon, 10 mm", 100, 0.125F, 1 / 16.1F, 0, 0},
      {"Weekly arc pen", 100, 0.25F, 0.5F, 1, 12},
      {"Daily tipping bucket", 100, 0.1F, 1 / 16.1F, 2, 0},
  };
  lists.Cores = {"Northland"};
  lists.Agencies = {{"Meteorological Service", 0}, {"Water Authority", 0}};
  lists.Stations = {{"Hill Farm", "NM-Hill Farm-01", 0, 0},
                    {"Mill Pond", "NM-Mill Pond-01", 0, 0},
                    {"Upper Dam", "NW-Upper Dam-02", 0, 1}};
  lists.Users = {{"demo", "demo", 1}, {"operator", "operator", 10}};
  lists.Comments = {{"Ink blot on the chart", 301}, {"Chart changed late", 302}};
  return lists;
}

ChartRecord Staged(std::string code, Date start, Date end, float eyed, float manual,
                   std::string comments = {}) {
  ChartRecord task;
  task.InstrumentCode = std::move(code);
  task.StartTime = start;
  task.EndTime = end;
  task.EyedDepth = eyed;
  task.ManualDepth = manual;
  task.GeneralComment = std::move(comments);
  task.Reliability = 1;
  return task;
}

std::vector<ChartRecord> SampleTasks() {
  const auto day = [](int year, int month, int date) { return MakeDate(year, month, date, 7); };
  return {
      Staged("NM-Hill Farm-01", day(1998, 3, 5), day(1998, 3, 6), 53, 53.4F),
      Staged("NM-Hill Farm-01", day(1998, 3, 6), day(1998, 3, 7), 4.2F, NoDepth),
      Staged("NM-Mill Pond-01", day(1925, 11, 20), day(1925, 11, 21), 53, NoDepth),
      Staged("NW-Upper Dam-02", day(1967, 1, 31), day(1967, 2, 1), 12, 11.5F, CodeText(CodeDefective)),
      Staged("NM-Hill Farm-01", day(1998, 3, 7), day(1998, 3, 8), 22.5F, 22.7F),
      Staged("NW-Upper Dam-02", day(1967, 2, 6), day(1967, 2, 13), 36, NoDepth),
  };
}

Result<void> Write(const std::string& folder) {
  if (auto done = SaveLists(folder, SampleLists()); !done) return done;
  if (auto done = SaveTasks(folder, SampleTasks()); !done) return done;
  Settings settings(folder);
  // The recorded streams press the board's squares in a view of this height.
  for (const auto& done : {settings.Set(setting::UserName, "demo"), settings.Set(setting::CurrentChart, 0),
                           settings.Set(setting::DigitizerType, 1), settings.Set(setting::TargetFolder, ""),
                           settings.Set(setting::ViewHeight, 12000)})
    if (!done) return done;
  return {};
}

}  // namespace
}  // namespace hyetex

int main(int argc, char** argv) {
  using namespace hyetex::commandline;
  Description program("hyetex-demo-folder",
                      "Writes the sample program folder, as the demonstration starts with it.");
  std::string folder;
  AddWord(program, "DIR", folder, "where to write it; made beforehand")->required();
  if (const auto answer = Parse(program, std::vector<std::string>(argv + 1, argv + argc)))
    return Give(program.get_name(), *answer);
  const auto done = hyetex::Write(folder);
  return done ? Done : Fail(program.get_name(), done.error());
}
