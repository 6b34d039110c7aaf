#include "editor/windows/chart_printing.h"

#include "platform/page_printing.h"

namespace hyetex {
namespace {

PageToPrint PageOf(const ChartView& view) {
  return {"the chart", "chart.pdf", [&view](Surface& surface) { view.DrawOn(surface); }};
}

}  // namespace

void PrintChart(ChartView& view, QPageLayout::Orientation orientation, Dialogs& dialogs) {
  PrintPage(view, PageOf(view), orientation, dialogs);
}

void PreviewChart(ChartView& view, QPageLayout::Orientation orientation, Dialogs& dialogs) {
  PreviewPage(view, PageOf(view), orientation, dialogs);
}

void SaveChartAsPdf(ChartView& view, QPageLayout::Orientation orientation, Dialogs& dialogs) {
  SavePageAsPdf(PageOf(view), orientation, dialogs);
}

}  // namespace hyetex
