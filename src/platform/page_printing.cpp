#include "platform/page_printing.h"

#include <QBuffer>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>

#include "core/files.h"
#include "core/text.h"
#include "platform/qt_surface.h"

namespace hyetex {
namespace {

void Tell(const PageToPrint& page, Dialogs& dialogs, const std::string& why) {
  dialogs.MessageBox("Printing " + page.What, why, BoxButtons::Ok, BoxIcon::Warning);
}

std::string InCapital(std::string text) {
  if (!text.empty()) text.replace(0, 1, UpperAscii(text.substr(0, 1)));
  return text;
}

bool PrintOn(const PageToPrint& page, QPagedPaintDevice& device, Dialogs& dialogs) {
  const bool printed = DrawOn(device, page.Draw);
  if (!printed) Tell(page, dialogs, "An error has occured while the computer attempted to print");
  return printed;
}

}  // namespace

bool DrawOn(QPagedPaintDevice& device, const std::function<void(Surface&)>& draw) {
  QPainter painter;
  if (!painter.begin(&device)) return false;
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = UnitsPerPoint(device);
  painter.scale(scale, scale);
  const QRectF area(QPointF(0, 0), device.pageLayout().paintRect(QPageLayout::Point).size());
  QtSurface surface(painter, area, Qt::white);
  draw(surface);
  const bool done = painter.end();
  const auto* printer = dynamic_cast<const QPrinter*>(&device);
  return done && (printer == nullptr || (printer->printerState() != QPrinter::Error &&
                                         printer->printerState() != QPrinter::Aborted));
}

void PrintPage(QWidget& window, const PageToPrint& page, QPageLayout::Orientation orientation,
               Dialogs& dialogs) {
  if (QPrinterInfo::availablePrinterNames().isEmpty())
    return Tell(page, dialogs,
                "There is no printer on this machine. " + InCapital(page.What) +
                    " can be saved as a PDF file instead.");
  QPrinter printer(QPrinter::HighResolution);
  printer.setPageOrientation(orientation);
  QPrintDialog dialog(&printer, &window);
  if (dialog.exec() == QDialog::Accepted) PrintOn(page, printer, dialogs);
}

void PreviewPage(QWidget& window, const PageToPrint& page, QPageLayout::Orientation orientation,
                 Dialogs& dialogs) {
  QPrinter printer(QPrinter::HighResolution);
  if (!printer.isValid()) printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setPageOrientation(orientation);
  QPrintPreviewDialog dialog(&printer, &window);
  dialog.setObjectName("dlgPreview");
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested,
                   [&](QPrinter* device) { PrintOn(page, *device, dialogs); });
  dialog.exec();
}

void SavePageAsPdf(const PageToPrint& page, QPageLayout::Orientation orientation, Dialogs& dialogs) {
  const auto path = dialogs.ChooseFileToSave("Save " + page.What + " as PDF", page.FileName);
  if (!path) return;
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  {
    QPdfWriter device(&bytes);
    device.setPageSize(QPageSize(QPageSize::A4));
    device.setPageOrientation(orientation);
    device.setTitle("Hyetex");
    if (!PrintOn(page, device, dialogs)) return;
  }
  if (const auto written = WriteWholeFile(*path, bytes.data().toStdString()); !written)
    Tell(page, dialogs, written.error());
}

}  // namespace hyetex
