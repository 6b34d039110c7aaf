// Each letter with Alt means one thing in a window, and nothing that the shell's menus have taken.
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QSpinBox>
#include <QTabBar>
#include <QTreeWidget>
#include <QWheelEvent>
#include <map>

#include "platform/date_box.h"
#include "tools/pictures/picture_database.h"
#include "windows/desk_fixture.h"

namespace hyetex::test {
namespace {

class Keys : public DeskTest {
 protected:
  using Letters = std::map<QString, QString>;  // the key, and what has it

  // Notes what a caption takes; what has been taken already is told.
  static void Take(const QString& caption, Letters& letters, const char* where) {
    const QKeySequence key = QKeySequence::mnemonic(caption);
    if (key.isEmpty()) return;
    const auto [has, isNew] = letters.emplace(key.toString(), caption);
    EXPECT_TRUE(isNew) << where << ": " << key.toString().toStdString() << " for \"" << caption.toStdString()
                       << "\" and \"" << has->second.toStdString() << "\"";
  }
  static void TakeOf(QWidget& window, Letters letters, const char* where) {
    for (const auto* each : window.findChildren<QAbstractButton*>())
      if (each->isVisibleTo(&window)) Take(each->text(), letters, where);
    for (const auto* each : window.findChildren<QLabel*>())
      if (each->buddy() != nullptr && each->isVisibleTo(&window)) Take(each->text(), letters, where);
    for (const auto* each : window.findChildren<QGroupBox*>()) Take(each->title(), letters, where);
    for (const auto* each : window.findChildren<QTabBar*>())
      for (int i = 0; i < each->count(); ++i) Take(each->tabText(i), letters, where);
  }
  Letters OfTheMenus() {
    Letters letters;
    // Hidden ones as well: the bar keeps the letters of all that it holds.
    for (const QAction* each : desk_->ShellWindow()->menuBar()->actions())
      Take(each->text(), letters, "the menus");
    return letters;
  }
  void Check(WindowId id, const char* name) {
    ASSERT_NE(desk_->Window(id), nullptr) << name;
    TakeOf(*desk_->Window(id), OfTheMenus(), name);
  }
};

TEST_F(Keys, MeanOneThingInEachWindow) {
  ASSERT_TRUE(MakePictureDatabase(settings_, dialogs_).has_value());
  desk_ = std::make_unique<AppDesk>(StartWords{.Folder = folder_.Path()}, dialogs_);
  desk_->Start();
  desk_->LoggedIn();
  for (const auto& [id, name] :
       {std::pair{WindowId::MainMenu, "frmInit"}, std::pair{WindowId::Tasks, "frmTasks"},
        std::pair{WindowId::TraceScans, "frmTraceScans"}, std::pair{WindowId::Lists, "frmLists"},
        std::pair{WindowId::ProgramDefaults, "frmProgramDefaults"},
        std::pair{WindowId::Definitions, "frmSettingsText"}, std::pair{WindowId::Connection, "frmODBCLogon"},
        std::pair{WindowId::Logon, "frmODBCLogon1"}, std::pair{WindowId::CreateTable, "frmCreateTable"},
        std::pair{WindowId::Load, "frmLoad"}, std::pair{WindowId::PrePop, "frmPrePop"},
        std::pair{WindowId::Populate, "frmPopulate"}, std::pair{WindowId::Editor, "frmEditor"},
        std::pair{WindowId::Alpha, "frmAlpha"}, std::pair{WindowId::SelectTable, "frmSelectTable"},
        std::pair{WindowId::Exchange, "frmCompress"}, std::pair{WindowId::TableExchange, "frmXMLExport"},
        std::pair{WindowId::Rainfall, "frmRainfall"}}) {
    desk_->Open(id);
    Check(id, name);
    QWidget* window = desk_->Window(id);
    if (id == WindowId::Tasks) {
      for (QTreeWidgetItemIterator item(&Find<QTreeWidget>(*window, "tvwStations")); *item != nullptr; ++item)
        if ((*item)->text(0).contains(" - NM-Hill Farm")) (*item)->treeWidget()->setCurrentItem(*item);
      Click(*window, "cmdAdd");
      Check(WindowId::TaskDef, "frmTaskDef");
      Click(*desk_->Window(WindowId::TaskDef), "cmdAdd");
      Check(WindowId::Comment, "frmComment");
      for (const WindowId inner : {WindowId::Comment, WindowId::TaskDef}) desk_->Window(inner)->close();
    }
    if (id == WindowId::SelectTable)
      for (const int entry : {2, 5}) {  // a grid with its master, and a picture
        desk_->Open(WindowId::SelectTable);
        window = desk_->Window(WindowId::SelectTable);
        Find<QComboBox>(*window, "cboTables").setCurrentIndex(entry);
        Click(*window, "cmdEdit");
        Check(WindowId::TableEditor, "frmTableEditor");
        Click(*desk_->Window(WindowId::TableEditor), "cmdAdd");
        Check(WindowId::TableEditor, "frmTableEditor, adding");
        desk_->Window(WindowId::TableEditor)->close();
        window = desk_->Window(WindowId::SelectTable);
      }
    window->close();
  }
  desk_.reset();

  OpenAndCalibrate();
  Check(WindowId::Digitizing, "frmHyetex");
  desk_->Open(WindowId::Save);
  Check(WindowId::Save, "frmSave");
}

TEST_F(Keys, ReachTheWindowThatComesBackWhenAnotherCloses) {
  ASSERT_TRUE(MakePictureDatabase(settings_, dialogs_).has_value());
  desk_ = std::make_unique<AppDesk>(StartWords{.Folder = folder_.Path()}, dialogs_);
  desk_->Start();
  desk_->LoggedIn();
  ASSERT_TRUE(QTest::qWaitForWindowActive(desk_->ShellWindow()));
  desk_->Open(WindowId::Connection);
  desk_->Open(WindowId::CreateTable);
  desk_->Window(WindowId::CreateTable)->close();
  QWidget* window = desk_->Window(WindowId::Connection);
  ASSERT_TRUE(WaitFor([&] {
    return window->isEnabled() && window->isAncestorOf(QApplication::focusWidget());
  })) << "the focus is nowhere";
  // By its letter, which leads nowhere without the focus.
  QTest::keyClick(window, Qt::Key_C, Qt::AltModifier);
  EXPECT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Connection) == nullptr; }));
}

// The boxes' own window is enough: the guard is the whole application's.
TEST(Wheel, ChangesNoBoxWithoutTheFocusAndScrollsWhatIsAroundIt) {
  const auto guard = KeepWheelFromBoxes();
  QScrollArea area;
  auto* inside = new QWidget;
  inside->setFixedSize(200, 2000);
  auto* list = new QComboBox(inside);
  list->addItems({"a", "b", "c"});
  auto* number = new QSpinBox(inside);
  number->move(0, 60);
  auto* tabs = new QTabBar(inside);
  tabs->addTab("x");
  tabs->addTab("y");
  tabs->move(0, 120);
  area.setWidget(inside);
  area.resize(260, 240);
  area.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
  area.setFocus();
  const auto turn = [&](QWidget* over) {
    const QPoint at = over->rect().center();
    QWheelEvent event(at, over->mapToGlobal(at), {}, {0, -120}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(over, &event);
    return event.isAccepted();
  };
  for (QWidget* box :
       {static_cast<QWidget*>(list), static_cast<QWidget*>(number), static_cast<QWidget*>(tabs)}) {
    EXPECT_FALSE(turn(box)) << "it goes on to what is around";
    EXPECT_EQ(box->focusPolicy() & Qt::WheelFocus & ~Qt::StrongFocus, 0) << "nor does it bring the focus";
  }
  EXPECT_EQ(list->currentIndex() + number->value() + tabs->currentIndex(), 0);
  list->setFocus();
  turn(list);
  EXPECT_EQ(list->currentIndex(), 1) << "which has the focus";
}

// Each text goes into a box as keys, one behind the other.
TEST(DateBox, TakesADateTypedInOneGoAndKeepsWhatIsNone) {
  QWidget window;
  DateBox box;
  QLineEdit next;
  box.setParent(&window);
  next.setParent(&window);
  next.move(0, 60);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  test::ScriptedDialogs dialogs;
  for (const char* typed : {"12/04/1999", "12.4.1999", "12041999", "12/04/99", "31/02/1999", "12/04/1999x"}) {
    next.setFocus();
    box.setDate({1950, 1, 2});
    box.setFocus();
    ASSERT_TRUE(WaitFor([&] { return box.selectedText() == "02/01/1950"; }));
    QTest::keyClicks(&box, typed);
    const bool isDate = !box.Refusal();
    EXPECT_EQ(box.date(),
              isDate || std::string_view(typed).ends_with('x') ? QDate(1999, 4, 12) : QDate(1950, 1, 2));
    next.setFocus();
    EXPECT_EQ(box.text().toStdString(), isDate ? "12/04/1999" : typed);
    EXPECT_EQ(RefusesEntries(window, dialogs, "Dates"), !isDate);
  }
  ASSERT_EQ(dialogs.Boxes.size(), 3U);
  EXPECT_EQ(dialogs.Boxes[1].Text,
            "\"31/02/1999\" is no date. Type day, month and year, as in 31/12/1999, from 1850 to 2100.");

  box.setDate({1999, 12, 31});
  for (const auto& [at, day] :
       {std::pair(0, QDate(2000, 1, 1)), std::pair(4, QDate(2000, 2, 1)), std::pair(8, QDate(2001, 2, 1))}) {
    box.setCursorPosition(at);
    QTest::keyClick(&box, Qt::Key_Up);
    EXPECT_EQ(box.date(), day);
  }
}

}  // namespace
}  // namespace hyetex::test
