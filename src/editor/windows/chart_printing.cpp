#include "editor/windows/chart_printing.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>

#include "core/files.h"

namespace hyetex {
namespace {

constexpr const char* PrintTitle = "Printing the chart";
constexpr const char* NoPrinter =
    "There is no printer on this machine. The chart can be saved as a PDF file instead.";

void Tell(Dialogs& dialogs, const std::string& why) {
  dialogs.MessageBox(PrintTitle, why, BoxButtons::Ok, BoxIcon::Warning);
}

bool PrintOn(const ChartView& view, QPagedPaintDevice& page, Dialogs& dialogs) {
  const bool printed = view.PrintOn(page);
  if (!printed) Tell(dialogs, "An error has occured while the computer attempted to print");
  return printed;
}

}  // namespace

void PrintChart(ChartView& view, QPageLayout::Orientation orientation, Dialogs& dialogs) {
  if (QPrinterInfo::availablePrinterNames().isEmpty()) return Tell(dialogs, NoPrinter);
  QPrinter printer(QPrinter::HighResolution);
  printer.setPageOrientation(orientation);
  QPrintDialog dialog(&printer, &view);
  if (dialog.exec() == QDialog::Accepted) PrintOn(view, printer, dialogs);
}

void PreviewChart(ChartView& view, QPageLayout::Orientation orientation, Dialogs& dialogs) {
  QPrinter printer(QPrinter::HighResolution);
  if (!printer.isValid()) printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setPageOrientation(orientation);
  QPrintPreviewDialog dialog(&printer, &view);
  dialog.setObjectName("dlgPreview");
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested,
                   [&](QPrinter* page) { PrintOn(view, *page, dialogs); });
  dialog.exec();
}

void SaveChartAsPdf(ChartView& view, QPageLayout::Orientation orientation, const std::string& proposed,
                    Dialogs& dialogs) {
  const auto path = dialogs.ChooseFileToSave("Save the chart as PDF", proposed);
  if (!path) return;
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  {
    QPdfWriter page(&bytes);
    page.setPageSize(QPageSize(QPageSize::A4));
    page.setPageOrientation(orientation);
    page.setTitle("Hyetex");
    if (!PrintOn(view, page, dialogs)) return;
  }
  if (const auto written = WriteWholeFile(*path, bytes.data().toStdString()); !written)
    Tell(dialogs, written.error());
}

}  // namespace hyetex
