// One page on paper: by the system's dialog, as a preview, as a PDF file.
#pragma once

#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QWidget>
#include <functional>
#include <string>

#include "platform/dialogs.h"
#include "platform/surface.h"

namespace hyetex {

struct PageToPrint {
  std::string What;                    ///< as in "Printing the chart": "the chart"
  std::string FileName;                ///< that a PDF file is proposed to have
  std::function<void(Surface&)> Draw;  ///< on all of a surface whose units are points
};

/// Draws on one page: of a printer, a preview or a PDF. False when the device fails.
bool DrawOn(QPagedPaintDevice& device, const std::function<void(Surface&)>& draw);

// Each tells the operator what fails; without any printer there still is the PDF.
void PrintPage(QWidget& window, const PageToPrint& page, QPageLayout::Orientation orientation,
               Dialogs& dialogs);
void PreviewPage(QWidget& window, const PageToPrint& page, QPageLayout::Orientation orientation,
                 Dialogs& dialogs);
void SavePageAsPdf(const PageToPrint& page, QPageLayout::Orientation orientation, Dialogs& dialogs);

}  // namespace hyetex
