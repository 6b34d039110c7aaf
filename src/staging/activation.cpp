#include "staging/activation.h"

#include "core/comments.h"
#include "core/numbers.h"
#include "digitizing/tablets.h"
#include "staging/definitions.h"
#include "staging/tasks.h"

namespace hyetex {

Result<ActivatedChart> ActivateChart(const std::string& programFolder, const ReferenceLists& lists, int task,
                                     std::optional<int> chartType) {
  auto table = LoadTasks(programFolder, lists.Stations);
  if (!table) return Failure(table.error());
  const int count = static_cast<int>(table->Tasks.size());
  if (task < 0 || task >= count)
    return Failure("There is no chart " + ShortText(task) + " in the staging area; it holds " +
                   ShortText(count));

  ActivatedChart chart;
  chart.Task = std::move(table->Tasks[static_cast<std::size_t>(task)]);
  chart.Notes = std::move(table->Notes);

  const int type = chartType.value_or(LeadingInt16(GetDefinition(programFolder, "CurrentChart")));
  if (type < 0 || type >= static_cast<int>(lists.ChartTypes.size()))
    return Failure("There is no chart type " + ShortText(type));
  chart.ChartType = lists.ChartTypes[static_cast<std::size_t>(type)];
  chart.Task.PaperIndex = static_cast<std::int16_t>(type);
  chart.Task.ChartMethod = chart.ChartType.ChartMethod;

  const int tablet = LeadingInt16(GetDefinition(programFolder, "DigitizerType"));
  chart.Tablet = tablet >= 0 && tablet < TabletTypeCount ? tablet : 0;
  return chart;
}

std::optional<std::string> CheckTraceable(const ChartRecord& task) {
  if (!HasCode(task.GeneralComment, CodeDefective)) return std::nullopt;
  return "The chart is marked as extremely defective (" + CodeText(CodeDefective) + "): it is not digitized";
}

}  // namespace hyetex
