#include "platform/outlined_style.h"

#include <QApplication>
#include <QGroupBox>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>

namespace hyetex {
namespace {

constexpr double Rounded = 2;

void Outline(QPainter& painter, const QStyleOption& option, bool circle = false) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(OutlineOn(option.palette));
  painter.setBrush(Qt::NoBrush);
  const QRectF edge = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
  if (circle)
    painter.drawEllipse(edge);
  else
    painter.drawRoundedRect(edge, Rounded, Rounded);
  painter.restore();
}

}  // namespace

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor OutlineOn(const QPalette& palette) {
  const QColor ground = palette.color(QPalette::Window), letters = palette.color(QPalette::WindowText);
  const auto between = [](int from, int to) { return from + (to - from) * 2 / 5; };
  return {between(ground.red(), letters.red()), between(ground.green(), letters.green()),
          between(ground.blue(), letters.blue())};
}

void OutlinedStyle::Install() {
  if (QApplication::style()->name().compare("fusion", Qt::CaseInsensitive) == 0)
    QApplication::setStyle(new OutlinedStyle("fusion"));
}

void OutlinedStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  if (!IsDark(option->palette)) return;
  // The style's own colour tells where the keys go, and which button Return presses.
  const bool marked = option->state.testFlag(State_HasFocus) && option->state.testFlag(State_Enabled);
  const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
  switch (element) {
    case PE_PanelButtonCommand:
      if (!marked && (button == nullptr || !button->features.testFlag(QStyleOptionButton::DefaultButton)))
        Outline(*painter, *option);
      break;
    case PE_FrameLineEdit:
    case PE_Frame:
      if (!marked) Outline(*painter, *option);
      break;
    case PE_IndicatorRadioButton:
      Outline(*painter, *option, true);
      break;
    case PE_IndicatorCheckBox:
    case PE_FrameTabWidget:
      Outline(*painter, *option);
      break;
    case PE_FrameGroupBox:
      if (const auto* group = qobject_cast<const QGroupBox*>(widget)) {
        // The title stands above the frame.
        constexpr int above = 3;
        const int title =
            std::max(pixelMetric(PM_ExclusiveIndicatorHeight, option, widget), group->fontMetrics().height());
        QStyleOption frame(*option);
        frame.rect.setTop(frame.rect.top() + above + (group->title().isEmpty() ? 0 : title));
        Outline(*painter, frame);
      }
      break;
    default:
      break;
  }
}

void OutlinedStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                       QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  if (!IsDark(option->palette) || option->state.testFlag(State_HasFocus)) return;
  if (control == CC_ComboBox || control == CC_SpinBox) Outline(*painter, *option);
}

int OutlinedStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                             QStyleHintReturn* returned) const {
  if (hint == SH_Table_GridLineColor && option != nullptr && IsDark(option->palette)) {
    QColor line = OutlineOn(option->palette);
    return static_cast<int>(line.darker(160).rgb());
  }
  return QProxyStyle::styleHint(hint, option, widget, returned);
}

}  // namespace hyetex
