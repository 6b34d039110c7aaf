// Runs the window tests on the offscreen platform, where all machines show the same.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>
#include <QStyleFactory>
#include <cstdio>

// Leaves out what the offscreen platform says of every window, and what a machine without a login session
// says.
static void ShowMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (!text.contains("propagateSizeHints") && !text.contains("XDG_RUNTIME_DIR"))
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
}

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_FONT_DPI", "96");
  qputenv("QT_SCALE_FACTOR", "1");
  qInstallMessageHandler(ShowMessage);
  testing::InitGoogleTest(&argc, argv);

  QApplication app(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  QApplication::setFont(QFont("DejaVu Sans", 10));
  for (const Qt::UIEffect effect :
       {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateCombo, Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip})
    QApplication::setEffectEnabled(effect, false);
  QApplication::setCursorFlashTime(0);
  return RUN_ALL_TESTS();
}
