// Controls on a dark theme have edges that are seen.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "platform/outlined_style.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

QPalette Dark() {
  QPalette dark(QColor(45, 48, 52), QColor(45, 48, 52));
  dark.setColor(QPalette::Base, QColor(30, 32, 35));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    dark.setColor(role, QColor(230, 232, 235));
  return dark;
}

// The greatest difference in lightness between the ground and any pixel of the control.
int Contrast(QWidget& control, const QPalette& palette) {
  control.setPalette(palette);
  control.resize(120, 40);
  const QImage shown = control.grab().toImage();
  int most = 0;
  for (int y = 0; y < shown.height(); ++y)
    for (int x = 0; x < shown.width(); ++x)
      most = std::max(most, shown.pixelColor(x, y).lightness() - palette.color(QPalette::Window).lightness());
  return most;
}

template <typename... Controls>
void ExpectOutlines(QStyle& style) {
  const auto expect = [&](QWidget&& control) {
    control.setStyle(&style);
    EXPECT_GT(Contrast(control, Dark()), 50) << control.metaObject()->className();
  };
  (expect(Controls()), ...);
}

TEST(Outlines, AreSeenOnADarkTheme) {
  OutlinedStyle style("fusion");
  ExpectOutlines<QCheckBox, QRadioButton, QLineEdit, QComboBox, QPushButton, QListWidget, QPlainTextEdit>(
      style);
  EXPECT_TRUE(IsDark(Dark()));
  EXPECT_FALSE(IsDark(QPalette(Qt::lightGray, Qt::lightGray)));
}

}  // namespace
}  // namespace hyetex
