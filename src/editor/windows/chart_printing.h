// The view of a chart on paper: by the system's dialog, as a preview, as a PDF file.
#pragma once

#include <QPageLayout>

#include "editor/windows/chart_view.h"
#include "platform/dialogs.h"

namespace hyetex {

// Each tells the operator what fails; without any printer there still is the PDF.
void PrintChart(ChartView& view, QPageLayout::Orientation orientation, Dialogs& dialogs);
void PreviewChart(ChartView& view, QPageLayout::Orientation orientation, Dialogs& dialogs);
/// `proposed` is a path or a name for the file.
void SaveChartAsPdf(ChartView& view, QPageLayout::Orientation orientation, const std::string& proposed,
                    Dialogs& dialogs);

}  // namespace hyetex
