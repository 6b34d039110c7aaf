// Outlines of controls on a dark theme. The toolkit's own style draws them darker than the window, which
// nobody sees where the window is dark already: boxes to tick, lists and frames run into what is around them.
#pragma once

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

namespace hyetex {

/// Whether the windows' colours are light letters on dark ground.
bool IsDark(const QPalette& palette);
/// What is seen on that ground without shouting.
QColor OutlineOn(const QPalette& palette);

class OutlinedStyle : public QProxyStyle {
  Q_OBJECT

 public:
  /// Over the toolkit's own style. A desktop's style has outlines of its own and is left alone.
  static void Install();

  using QProxyStyle::QProxyStyle;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returned) const override;
};

}  // namespace hyetex
