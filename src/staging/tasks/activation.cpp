#include "staging/tasks/activation.h"

#include <cstdio>

#include "core/chart_length.h"
#include "core/comments.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "digitizing/tablets.h"
#include "staging/tasks/tasks.h"

namespace hyetex {
namespace {

constexpr std::size_t TrialBytes = 64U << 10;

}  // namespace

Result<ActivatedChart> PrepareChart(const ReferenceLists& lists, ChartRecord task, int chartType) {
  if (chartType < 0 || chartType >= static_cast<int>(lists.ChartTypes.size()))
    return Failure("There is no chart type " + ShortText(chartType));
  ActivatedChart chart;
  chart.Task = std::move(task);
  chart.ChartType = lists.ChartTypes[static_cast<std::size_t>(chartType)];
  chart.Task.PaperIndex = static_cast<std::int16_t>(chartType);
  chart.Task.ChartMethod = chart.ChartType.ChartMethod;
  return chart;
}

TraceSource StoredTraceSource(const Settings& settings) {
  const std::int16_t stored = settings.Get(setting::TraceSource);
  return stored > 0 && stored < TraceSourceCount ? static_cast<TraceSource>(stored) : TraceSource::Tablet;
}

int StoredTabletType(const Settings& settings) {
  const int tablet = settings.Get(setting::DigitizerType);
  return tablet >= 0 && tablet < TabletTypeCount ? tablet : 0;
}

Result<ActivatedChart> ActivateChart(const Settings& settings, const ReferenceLists& lists, int task,
                                     std::optional<int> chartType) {
  auto table = LoadTasks(settings.Folder(), lists.Stations);
  if (!table) return Failure(table.error());
  const int count = static_cast<int>(table->Tasks.size());
  if (task < 0 || task >= count)
    return Failure("There is no chart " + ShortText(task) + " in the staging area; it holds " +
                   ShortText(count));

  const auto current = settings.Read(setting::CurrentChart);
  if (!current) return Failure(current.error());
  auto chart = PrepareChart(lists, std::move(table->Tasks[static_cast<std::size_t>(task)]),
                            chartType.value_or(*current));
  if (!chart) return chart;
  chart->Notes = std::move(table->Notes);
  chart->Tablet = StoredTabletType(settings);
  return chart;
}

std::optional<std::string> CheckTraceable(const ChartRecord& task) {
  if (HasCode(task.GeneralComment, CodeDefective))
    return "The chart is marked as extremely defective (" + CodeText(CodeDefective) +
           "): it is not digitized";
  if (!HasLength(task)) return std::string(NoLengthRefusal);
  return std::nullopt;
}

std::optional<std::string> CheckTargetTakesFiles(const std::string& folder) {
  if (!FolderExists(folder)) return "There is no folder " + ShownText(folder);
  // Rights and mounts tell only half of it: a trial tells. As large as a chart, for the disk may be full.
  const std::string trial = JoinPath(folder, ".hyetex-trial");
  const auto written = WriteWholeFile(trial, std::string(TrialBytes, ' '));
  std::remove(trial.c_str());
  if (!written) return written.error();
  return std::nullopt;
}

}  // namespace hyetex
