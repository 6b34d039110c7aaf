#include "staging/activation.h"

#include "core/comments.h"
#include "core/numbers.h"
#include "digitizing/tablets.h"
#include "staging/definitions.h"
#include "staging/tasks.h"

namespace hyetex {

Result<ActivatedChart> ActivateChart(const std::string& programFolder, const ReferenceLists& lists,
                                     int task) {
  auto table = LoadTasks(programFolder, lists.Stations);
  if (!table) return Failure(table.error());
  const int count = static_cast<int>(table->Tasks.size());
  if (task < 0 || task >= count)
    return Failure("There is no chart " + ShortText(task) + " in the staging area; it holds " +
                   ShortText(count));

  ActivatedChart chart;
  chart.Task = std::move(table->Tasks[static_cast<std::size_t>(task)]);
  if (HasCode(chart.Task.GeneralComment, CodeDefective))
    return Failure("The chart is marked as extremely defective (" + CodeText(CodeDefective) +
                   "): it is not digitized");

  const std::int16_t type = LeadingInt16(GetDefinition(programFolder, "CurrentChart"));
  if (type < 0 || type >= static_cast<int>(lists.ChartTypes.size()))
    return Failure("There is no chart type " + ShortText(type));
  chart.ChartType = lists.ChartTypes[static_cast<std::size_t>(type)];
  chart.Task.PaperIndex = type;
  chart.Task.ChartMethod = chart.ChartType.ChartMethod;

  const int tablet = LeadingInt16(GetDefinition(programFolder, "DigitizerType"));
  chart.Tablet = tablet >= 0 && tablet < TabletTypeCount ? tablet : 0;
  return chart;
}

}  // namespace hyetex
