// The window in which a box of scans is traced, and the way from one of its charts to the desk.
#include <QCoreApplication>
#include <QDir>

#include "app/app_desk.h"
#include "chartfiles/chart_text.h"
#include "core/files.h"
#include "digitizing/scan_placement.h"
#include "platform/beside.h"
#include "platform/qt_text.h"
#include "scan/box/chart_tracing.h"

namespace hyetex {
namespace {

constexpr const char* CommandLineName = "hyetex-cli";

}  // namespace

QWidget* AppDesk::MakeTraceScans() {
  const auto type = static_cast<std::size_t>(std::max<std::int16_t>(program_.CurrentChart, 0));
  if (type >= program_.Lists.ChartTypes.size()) return Tell("There is no chart type"), nullptr;
  const QDir programs(QCoreApplication::applicationDirPath());
  return new frmTraceScans(
      *this, dialogs_, program_.Settings,
      TraceQueue(program_.Settings.Folder(),
                 traceTarget_.empty() ? TargetFolder(program_.Settings) : traceTarget_, program_.Lists,
                 program_.Staging.Tasks(), program_.Scans),
      {.Program = TraceProgram.empty() ? FromQt(programs.filePath(CommandLineName)) : TraceProgram,
       .User = program_.User().Name,
       .ChartType = static_cast<int>(type),
       .ChartTypeName = program_.Lists.ChartTypes[type].Name,
       .Open = [this, type = static_cast<int>(type)](const TraceQueue::Row& row) {
         return OpenTraced(row, type);
       }});
}

bool AppDesk::OpenTraced(const TraceQueue::Row& row, int chartType) {
  if (Window(WindowId::Digitizing) != nullptr) return Open(WindowId::Digitizing), false;
  auto chart = PrepareChart(program_.Lists, row.Chart, chartType);
  if (!chart) return Tell(chart.error()), false;
  chart->Tablet = ScanTablet;
  if (!BeginChart(*chart, "")) return false;
  program_.Active->TraceIsWanted = row.Is == TraceQueue::State::ToReview;
  if (program_.Active->TraceIsWanted && !TraceOf(*program_.Active).Find())
    return Tell("What was traced of this chart cannot be read: " +
                TraceJournalPath(TargetFolder(program_.Settings), row.Name) +
                ".\n\nWithout that file the chart is traced anew."),
           false;
  // What is to be reviewed names its scan itself.
  if (!program_.Active->TraceIsWanted && !row.Scan.Path.empty()) {
    auto opened = RunBeside([&] { return ScanImage::Open(row.Scan.Path, row.Scan.Page); });
    if (!opened) return Tell(opened.error()), false;
    program_.Active->Scan = std::make_shared<const ScanImage>(*std::move(opened));
  }
  Open(WindowId::Digitizing);
  return true;
}

// The target folder is that of the moment: it may be chosen anew while the chart is on the desk.
EarlierTrace AppDesk::TraceOf(const ActiveChart& chart) {
  const auto path = [this, name = ChartFileName(chart.Origin.InstrumentCode, chart.Session.Chart.StartTime)] {
    return TraceJournalPath(TargetFolder(program_.Settings), name);
  };
  const auto find = [path]() -> std::optional<std::string> {
    const std::string file = path();
    auto journal =
        FileExists(file) ? ReadWholeFile(file, MostJournalBytes) : Result<std::string>(std::string());
    if (!journal || !IsToReview(*journal)) return std::nullopt;
    return *std::move(journal);
  };
  const auto keep = [path](std::string journal, double rainMm) {
    return KeepReview(path(), std::move(journal), rainMm);
  };
  return {.Find = find, .Keep = keep, .IsWanted = chart.TraceIsWanted};
}

}  // namespace hyetex
