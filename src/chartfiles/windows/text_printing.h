// Plain text on paper.
#pragma once

#include <QFont>
#include <QPageLayout>
#include <QPrinter>
#include <QString>

namespace hyetex {

/// Prints the text line by line on as many pages as it takes, with margins of a twentieth of the page's width
/// and height. A line that is wider than the page goes on below. False when there is no printer, or it fails.
bool PrintText(QPrinter& printer, const QString& text, const QFont& font,
               QPageLayout::Orientation orientation);

}  // namespace hyetex
