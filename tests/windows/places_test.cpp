// Windows come back where they stood, and never where nobody sees them.
#include "platform/places.h"

#include <QMdiArea>
#include <QMdiSubWindow>

#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

using Places = FolderTest;

TEST_F(Places, RemembersWindowsOfTheShellInItsArea) {
  QMdiArea area;
  area.resize(900, 700);
  area.show();
  auto* window = new QWidget;
  window->setObjectName("frmLists");
  window->setMinimumSize(200, 150);
  QMdiSubWindow* frame = area.addSubWindow(window);
  frame->show();

  frame->move(123, 45);
  StorePlace(*window, settings_);
  EXPECT_EQ(Remembered("frmLists-Left"), "1845");
  EXPECT_EQ(Remembered("frmLists-Top"), "675");
  frame->move(0, 0);
  RestorePlace(*window, settings_);
  EXPECT_EQ(frame->pos(), QPoint(123, 45));

  // The frame was larger when the place was kept.
  Remember("frmLists-Left", "60000");
  Remember("frmLists-Top", "-900");
  RestorePlace(*window, settings_);
  EXPECT_EQ(frame->x(), area.viewport()->width() - frame->width());
  EXPECT_EQ(frame->y(), 0);
}

TEST_F(Places, BeginsInTheMiddleAndRemembersSizes) {
  QMdiArea area;
  area.resize(900, 700);
  area.show();
  auto* window = new QWidget;
  window->setObjectName("frmLists");
  window->setMinimumSize(200, 150);
  QMdiSubWindow* frame = area.addSubWindow(window);
  frame->show();
  RestoreSize(*window, settings_);
  RestorePlace(*window, settings_);
  const QPoint off = frame->geometry().center() - area.viewport()->rect().center();
  EXPECT_LE(off.manhattanLength(), 4);

  frame->resize(400, 333);
  StoreSize(*window, settings_);
  EXPECT_EQ(Remembered("frmLists-Size"), "6000,4995");
  frame->showMaximized();
  StoreSize(*window, settings_);
  EXPECT_EQ(Remembered("frmLists-Size"), "6000,4995") << "a window that fills the area keeps its own size";
  frame->showNormal();
  frame->resize(500, 500);
  RestoreSize(*window, settings_);
  EXPECT_EQ(frame->size(), QSize(400, 333));
  for (const auto& [kept, size] : {std::pair("90000,90000", area.viewport()->size()),
                                   {"900,600", frame->minimumSizeHint()},
                                   {"-5,x", frame->minimumSizeHint()}}) {
    Remember("frmLists-Size", kept);
    RestoreSize(*window, settings_);
    EXPECT_EQ(frame->size(), size) << kept;
  }
}

TEST_F(Places, BringsWindowsFromAbsentScreensBack) {
  QWidget window;
  window.setObjectName("frmLists");
  window.resize(200, 150);
  Remember("frmLists-Left", "-90000");
  Remember("frmLists-Top", "nonsense");
  window.show();
  RestorePlace(window, settings_);
  EXPECT_TRUE(window.screen()->availableGeometry().contains(window.frameGeometry()));
}

}  // namespace
}  // namespace hyetex
