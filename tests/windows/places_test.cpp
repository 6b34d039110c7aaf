// Windows come back where they stood, and never where nobody sees them.
#include "platform/places.h"

#include <QMdiArea>
#include <QMdiSubWindow>

#include "staging/definitions.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

TEST(Places, BringsFramesInsideTopLeftFirst) {
  const QRect area(100, 50, 800, 600);
  EXPECT_EQ(BroughtInside({200, 100, 300, 200}, area), QPoint(200, 100));
  EXPECT_EQ(BroughtInside({-5000, 9000, 300, 200}, area), QPoint(100, 450));
  EXPECT_EQ(BroughtInside({800, 100, 300, 200}, area), QPoint(600, 100));
  EXPECT_EQ(BroughtInside({300, 300, 2000, 2000}, area), QPoint(100, 50));
}

TEST(Places, RemembersWindowsOfTheShellInItsArea) {
  const TempFolder folder;
  QMdiArea area;
  area.resize(900, 700);
  area.show();
  auto* window = new QWidget;
  window->setObjectName("frmLists");
  window->setMinimumSize(200, 150);
  QMdiSubWindow* frame = area.addSubWindow(window);
  frame->show();

  frame->move(123, 45);
  StorePlace(*window, folder.Path());
  EXPECT_EQ(GetDefinition(folder.Path(), "frmLists-Left"), "1845");
  EXPECT_EQ(GetDefinition(folder.Path(), "frmLists-Top"), "675");
  frame->move(0, 0);
  RestorePlace(*window, folder.Path());
  EXPECT_EQ(frame->pos(), QPoint(123, 45));

  // The frame was larger when the place was kept.
  ASSERT_TRUE(SetDefinition(folder.Path(), "frmLists-Left", "60000"));
  ASSERT_TRUE(SetDefinition(folder.Path(), "frmLists-Top", "-900"));
  RestorePlace(*window, folder.Path());
  EXPECT_EQ(frame->x(), area.viewport()->width() - frame->width());
  EXPECT_EQ(frame->y(), 0);
}

TEST(Places, BringsWindowsFromAbsentScreensBack) {
  const TempFolder folder;
  QWidget window;
  window.setObjectName("frmLists");
  window.resize(200, 150);
  ASSERT_TRUE(SetDefinition(folder.Path(), "frmLists-Left", "-90000"));
  ASSERT_TRUE(SetDefinition(folder.Path(), "frmLists-Top", "nonsense"));
  window.show();
  RestorePlace(window, folder.Path());
  EXPECT_TRUE(window.screen()->availableGeometry().contains(window.frameGeometry()));
}

}  // namespace
}  // namespace hyetex
