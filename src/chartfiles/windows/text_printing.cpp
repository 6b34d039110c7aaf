#include "chartfiles/windows/text_printing.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace hyetex {
namespace {

constexpr double MarginShare = 0.05;

// Without any printer the toolkit's default is a file that has no name.
bool HasOutput(const QPrinter& printer) {
  return printer.isValid() &&
         (printer.outputFormat() == QPrinter::NativeFormat || !printer.outputFileName().isEmpty());
}

// The lines as they fit across the page: a line too wide is cut where its last character fits.
QStringList FittedLines(const QString& text, qsizetype most) {
  QStringList fitted;
  for (const QString& line : text.split('\n'))
    for (qsizetype at = 0; at == 0 || at < line.size(); at += most) fitted << line.mid(at, most);
  return fitted;
}

}  // namespace

bool PrintText(QPrinter& printer, const QString& text, const QFont& font,
               QPageLayout::Orientation orientation) {
  if (!HasOutput(printer)) return false;
  printer.setPageOrientation(orientation);
  printer.setFullPage(true);
  QPainter painter;
  if (!painter.begin(&printer)) return false;
  painter.setFont(font);

  const QRectF page(0, 0, printer.width(), printer.height());
  const QRectF area = page.adjusted(page.width() * MarginShare, page.height() * MarginShare,
                                    -page.width() * MarginShare, -page.height() * MarginShare);
  const QFontMetricsF metrics(font, &printer);
  const auto across = static_cast<qsizetype>(area.width() / metrics.horizontalAdvance('0'));
  const int perPage = std::max(1, static_cast<int>(area.height() / metrics.lineSpacing()));

  int onPage = 0;
  for (const QString& line : FittedLines(text, std::max<qsizetype>(1, across))) {
    if (onPage == perPage) {
      if (!printer.newPage()) return false;
      onPage = 0;
    }
    painter.drawText(QPointF(area.left(), area.top() + metrics.ascent() + metrics.lineSpacing() * onPage),
                     line);
    ++onPage;
  }
  return painter.end() && printer.printerState() != QPrinter::Error;
}

}  // namespace hyetex
