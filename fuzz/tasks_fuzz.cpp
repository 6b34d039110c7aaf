// Any bytes as the staged charts: what is read is written and read back as many charts.
#include "program_folder.h"
#include "staging/tasks/tasks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hyetex;
  using fuzz::Must;
  static const fuzz::ProgramFolder folder;
  folder.Hold(TasksFileName, fuzz::Text(data, size));
  std::vector<StationRecord> stations(2);
  stations[1].InstrumentCode = "RG1";
  const auto tasks = LoadTasks(folder.Path(), stations);
  if (!tasks) return 0;
  Must(tasks->Tasks.size() <= static_cast<std::size_t>(MaxTask) + 1);
  if (!SaveTasks(folder.Path(), tasks->Tasks)) return 0;
  const auto again = LoadTasks(folder.Path(), stations);
  Must(again && again->Tasks.size() == tasks->Tasks.size());
  for (std::size_t i = 0; i < again->Tasks.size(); ++i)
    Must(again->Tasks[i].InstrumentCode == tasks->Tasks[i].InstrumentCode);
  return 0;
}
