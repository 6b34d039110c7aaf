// Each letter with Alt means one thing in a window, and nothing that the shell's menus have taken.
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
#include <QTabBar>
#include <map>

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
    for (const QAction* each : desk_->ShellWindow()->menuBar()->actions())
      if (each->isVisible()) Take(each->text(), letters, "the menus");
    return letters;
  }
};

TEST_F(Keys, MeanOneThingInEachWindow) {
  ASSERT_TRUE(MakePictureDatabase(settings_, dialogs_).has_value());
  desk_ = std::make_unique<AppDesk>(StartWords{.Folder = folder_.Path()}, dialogs_);
  desk_->Start();
  desk_->LoggedIn();
  for (const auto& [id, name] :
       {std::pair{WindowId::MainMenu, "frmInit"}, std::pair{WindowId::Tasks, "frmTasks"},
        std::pair{WindowId::Lists, "frmLists"}, std::pair{WindowId::ProgramDefaults, "frmProgramDefaults"},
        std::pair{WindowId::Definitions, "frmDefinitions"}, std::pair{WindowId::Connection, "frmODBCLogon"},
        std::pair{WindowId::Logon, "frmODBCLogon1"}, std::pair{WindowId::CreateTable, "frmCreateTable"},
        std::pair{WindowId::Load, "frmLoad"}, std::pair{WindowId::PrePop, "frmPrePop"},
        std::pair{WindowId::Populate, "frmPopulate"}}) {
    desk_->Open(id);
    QWidget* window = desk_->Window(id);
    ASSERT_NE(window, nullptr) << name;
    TakeOf(*window, OfTheMenus(), name);
    if (id == WindowId::Tasks) {
      desk_->Open(WindowId::TaskDef);
      if (QWidget* details = desk_->Window(WindowId::TaskDef)) {
        TakeOf(*details, OfTheMenus(), "frmTaskDef");
        details->close();
      }
    }
    window->close();
  }
  desk_.reset();

  OpenAndCalibrate();
  TakeOf(Window(), OfTheMenus(), "frmHyetex");
  desk_->Open(WindowId::Save);
  TakeOf(*desk_->Window(WindowId::Save), OfTheMenus(), "frmSave");
}

}  // namespace
}  // namespace hyetex::test
