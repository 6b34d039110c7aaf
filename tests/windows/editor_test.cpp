// Quality control with the keys and buttons of the real program, on the demonstration's charts.
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTimeEdit>
#include <QTimer>
#include <algorithm>

#include "app/app_desk.h"
#include "editor/windows/chart_view.h"
#include "paths.h"
#include "platform/date_box.h"
#include "tools/pictures/picture_database.h"
#include "windows/support.h"

#include <gmock/gmock.h>

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class EditorWindow : public FolderTest {
 protected:
  EditorWindow() {
    std::filesystem::copy(test::Demo("program"), folder_.Path());
    std::filesystem::copy(test::Demo("charts"), folder_ / "charts");
    Remember("TargetFolder", (folder_ / "charts").c_str());
  }

  void Open() {
    desk_ = std::make_unique<AppDesk>(StartWords{.Folder = folder_.Path()}, dialogs_);
    desk_->Start();
    desk_->LoggedIn();
    ASSERT_TRUE(QTest::qWaitForWindowActive(desk_->ShellWindow()));
    QWidget* menu = desk_->Window(WindowId::MainMenu);
    ASSERT_TRUE(WaitFor([&] { return menu->isAncestorOf(QApplication::focusWidget()); }));
    QTest::keyClick(menu, Qt::Key_Q, Qt::AltModifier);
    ASSERT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Editor) != nullptr && !OpenName().empty(); }));
    desk_->ShellWindow()->activateWindow();  // as a window manager does when a question closes
    ASSERT_TRUE(WaitFor([&] { return List().hasFocus(); })) << "the focus is nowhere";
  }
  QWidget& Window() { return *desk_->Window(WindowId::Editor); }
  template <typename Widget>
  Widget& Part(const char* name) {
    return Find<Widget>(Window(), name);
  }
  QListView& List() { return Part<QListView>("lstAscii"); }
  std::string Text(const char* label) { return Part<QLabel>(label).text().toStdString(); }
  /// The chart that is open.
  std::string OpenName() {
    const std::string title = Part<QGroupBox>("frmDetails").title().toStdString();
    return title == "No chart is open" ? "" : title;
  }
  std::string Chart(const std::string& name) { return ReadFile(folder_ / ("charts/" + name)); }
  /// To whatever has the focus.
  void Key(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
    // A button that is pressed by its letter stays down for a moment.
    EXPECT_TRUE(WaitFor([&] {
      const auto buttons = desk_->ShellWindow()->findChildren<QAbstractButton*>();
      return std::ranges::none_of(buttons, &QAbstractButton::isDown);
    }));
    QCoreApplication::processEvents();
  }
  void Type(const char* text) { QTest::keyClicks(QApplication::focusWidget(), text); }
  void GoTo(const std::string& name) {
    List().setFocus();
    Key(Qt::Key_Home);
    for (int i = 0; i < 30 && OpenName() != name; ++i) Key(Qt::Key_Down);
    ASSERT_EQ(OpenName(), name);
  }

  std::unique_ptr<AppDesk> desk_;
};

constexpr const char* Second = "NM-Hill Farm-01-19980406-0700.dat";

TEST_F(EditorWindow, ReviewsCorrectsSavesAndDeletesByKeysAlone) {
  ASSERT_NO_FATAL_FAILURE(Open());
  EXPECT_EQ(Text("labCount"), "20 charts");
  EXPECT_EQ(Text("labCaption0"), "Eyed Depth: 28");
  std::vector<std::string> opened{OpenName()}, faulty;
  for (int i = 1; i < 20; ++i) {
    Key(Qt::Key_Down);
    opened.push_back(OpenName());
    if (!Part<QLabel>("labLacks").isHidden()) faulty.push_back(OpenName() + ": " + Text("labLacks"));
  }
  EXPECT_EQ(std::set(opened.begin(), opened.end()).size(), 20U);
  ASSERT_THAT(faulty, SizeIs(4)) << ::testing::PrintToString(faulty);
  EXPECT_THAT(faulty[0], HasSubstr("cut off: its head counts"));
  EXPECT_THAT(faulty[1], HasSubstr("cut off: its last lines are missing"));
  EXPECT_THAT(faulty[2], HasSubstr("no points"));
  EXPECT_THAT(faulty[3], HasSubstr("no series"));

  GoTo(Second);
  EXPECT_EQ(Text("labFactor0"), "Digitized Depth Factor: -12.8");
  EXPECT_EQ(Text("labFactor1"), "Manual Depth Factor: 38.9");
  EXPECT_TRUE(Part<QLabel>("labFactor1").palette().color(QPalette::WindowText) == Qt::red);
  Key(Qt::Key_2, Qt::AltModifier);
  Key(Qt::Key_H, Qt::AltModifier);
  Type("10,9");
  EXPECT_EQ(Text("labFactor0"), "Digitized Depth Factor: 0");
  Key(Qt::Key_L, Qt::AltModifier);
  Type("11.2");
  EXPECT_EQ(Text("labFactor1"), "Manual Depth Factor: 2.8");
  EXPECT_FALSE(Part<QLabel>("labFactor1").palette().color(QPalette::WindowText) == Qt::red);
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_THAT(Chart(Second),
              ::testing::AllOf(HasSubstr("\r\nManual Depth: 11.2\r\n"), HasSubstr("2-Marginal")));
  EXPECT_EQ(Text("labUnsaved"), "Saved");

  // On to the next one from the box, with something unsaved: the answers stay, save, and drop.
  Key(Qt::Key_Up);
  dialogs_.Answers = {BoxAnswer::Cancel};
  Key(Qt::Key_PageDown);
  EXPECT_EQ(OpenName(), Second);
  EXPECT_EQ(List().currentIndex().row(), 1) << "the list shows what is open";
  dialogs_.Answers = {BoxAnswer::Yes};
  Key(Qt::Key_PageDown);
  EXPECT_THAT(Chart(Second), HasSubstr("\r\nManual Depth: 11.3\r\n"));
  EXPECT_NE(OpenName(), Second);
  Key(Qt::Key_3, Qt::AltModifier);
  dialogs_.Answers = {BoxAnswer::No};
  Key(Qt::Key_PageUp);
  EXPECT_EQ(OpenName(), Second);

  // Another start is another name, where the list goes on.
  dialogs_.Boxes.clear();
  Key(Qt::Key_T, Qt::AltModifier);
  Type("11041998");
  dialogs_.Answers = {BoxAnswer::Ok};
  Key(Qt::Key_E, Qt::AltModifier);
  Type("12041998");
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(dialogs_.Boxes.at(0),
            (ShownBox{"Saving the file",
                      "Due to changes made to the file details it will be saved in a different name: "
                      "NM-Hill Farm-01-19980411-0700.dat",
                      BoxButtons::OkCancel, BoxIcon::Warning}));
  EXPECT_EQ(OpenName(), "NM-Hill Farm-01-19980411-0700.dat");
  EXPECT_EQ(Chart(Second), "");
  Key(Qt::Key_PageDown);
  EXPECT_EQ(OpenName(), "NM-Hill Farm-01-19980412-0700.dat");

  dialogs_.Boxes.clear();
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Key(Qt::Key_D, Qt::AltModifier);
  EXPECT_NE(Chart("NM-Hill Farm-01-19980412-0700.dat"), "");
  Key(Qt::Key_D, Qt::AltModifier);
  EXPECT_EQ(dialogs_.Boxes.at(1),
            (ShownBox{"Deleting Files from the Hard Drive",
                      "Are you sure you want to delete the selected files from the hard drive ?",
                      BoxButtons::NoUnlessYes, BoxIcon::Warning}));
  EXPECT_EQ(Chart("NM-Hill Farm-01-19980412-0700.dat"), "");
  EXPECT_EQ(Text("labCount"), "19 charts");
  EXPECT_EQ(OpenName(), "NM-Hill Farm-01-19980413-0700.dat");
  EXPECT_THAT(dialogs_.Answers, IsEmpty());
}

TEST_F(EditorWindow, KeepsCommentsApartAndAsksBeforeTheProgramEnds) {
  ASSERT_NO_FATAL_FAILURE(Open());
  GoTo("NM-Hill Farm-01-19980408-0700.dat");
  auto& comments = Part<QListWidget>("lstComment");
  EXPECT_EQ(comments.count(), 2);
  Key(Qt::Key_A, Qt::AltModifier);
  QWidget* window = desk_->Window(WindowId::Comment);
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(Find(*window, "cmdClear").isHidden());
  Find<QLineEdit>(*window, "txtCode").clear();
  Find<QLineEdit>(*window, "txtComment").setText("checked");
  Click(*window, "cmdAdd");
  ASSERT_TRUE(WaitFor([&] { return Window().isAncestorOf(QApplication::focusWidget()); }));
  EXPECT_EQ(comments.item(2)->text(), "checked");
  comments.setFocus();
  comments.setCurrentRow(0);
  Key(Qt::Key_Delete);
  EXPECT_EQ(comments.count(), 2);

  dialogs_.Answers = {BoxAnswer::Cancel};
  desk_->EndProgram();
  ASSERT_NE(desk_->Window(WindowId::Editor), nullptr);
  EXPECT_EQ(dialogs_.Boxes.back().Text,
            "NM-Hill Farm-01-19980408-0700.dat has been changed. Do you want to save the changes ?");
  dialogs_.Answers = {BoxAnswer::Yes};
  Key(Qt::Key_Escape);
  EXPECT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Editor) == nullptr; }));
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
  EXPECT_THAT(Chart("NM-Hill Farm-01-19980408-0700.dat"),
              HasSubstr("General Comment: Clock stopped at night::checked\r\n"));
  EXPECT_EQ(Remembered("Editor-Chart"), "0");
}

TEST_F(EditorWindow, NarrowsTheListAndTellsWhatIsGone) {
  ASSERT_NO_FATAL_FAILURE(Open());
  auto& station = Part<QComboBox>("comStation");
  auto& year = Part<QComboBox>("comYear");
  station.setCurrentText("Mill Pond - NM-Mill Pond-01");
  EXPECT_EQ(Text("labCount"), "3 charts");
  EXPECT_EQ(year.count(), 3);
  year.setCurrentText("1925");
  EXPECT_EQ(Text("labCount"), "1 chart");
  EXPECT_EQ(List().model()->index(0, 0).data().toString(), "NM-Mill Pond-01-19251127-0700.dat (27.11.25)");
  station.setCurrentText("Upper Dam - NW-Upper Dam-02");
  EXPECT_EQ(Text("labCount"), "3 charts") << "without the year that it has no charts of";
  EXPECT_EQ(OpenName(), "NM-Hill Farm-01-19980405-0700.dat") << "and what is open stays open";

  std::filesystem::remove(folder_ / "charts/NW-Upper Dam-02-19670215-0700.dat");
  Key(Qt::Key_Down);
  Key(Qt::Key_Down);
  EXPECT_EQ(OpenName(), "");
  EXPECT_THAT(Text("labLacks"), HasSubstr("NW-Upper Dam-02-19670215-0700.dat: No such file"));
  EXPECT_FALSE(Part<QPushButton>("cmdSave").isEnabled());
  Key(Qt::Key_Down);
  EXPECT_EQ(OpenName(), "NW-Upper Dam-02-19670216-0700.dat");
}

TEST_F(EditorWindow, DrawsTheViewsAndSumsUpAndPrints) {
  ASSERT_NO_FATAL_FAILURE(Open());
  auto& view = Part<ChartView>("picPreview");
  EXPECT_EQ(view.Options().Kind, ChartViewKind::Digitization);
  Key(Qt::Key_2, Qt::ControlModifier);
  EXPECT_EQ(view.Options().Kind, ChartViewKind::TimeDepth);
  Part<QComboBox>("comHyetograph").setCurrentText("30 min");
  Key(Qt::Key_G, Qt::AltModifier);
  Part<QLineEdit>("txtFontSize").setText("1000");
  EXPECT_EQ(view.Options().HyetographMinutes, 30);
  EXPECT_FALSE(view.Options().Grid);
  EXPECT_EQ(view.Options().FontPoints, MostFontPoints);
  Key(Qt::Key_3, Qt::ControlModifier);
  EXPECT_FALSE(view.isVisible());
  EXPECT_FALSE(Part<QWidget>("frmToolBox").isVisible());
  EXPECT_TRUE(Part<QWidget>("frmDetails").isVisible());
  Key(Qt::Key_1, Qt::ControlModifier);

  dialogs_.Files = {folder_ / "chart.pdf", folder_ / "no/chart.pdf"};
  auto* pdf = Part<QPushButton>("cmdPrint").menu()->findChild<QAction*>("mnuPdf");
  pdf->trigger();
  EXPECT_TRUE(ReadFile(folder_ / "chart.pdf").starts_with("%PDF"));
  pdf->trigger();
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("no/chart.pdf"));
  Key(Qt::Key_P, Qt::ControlModifier);
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("There is no printer"));

  List().setFocus();
  Key(Qt::Key_A, Qt::ControlModifier);
  std::filesystem::remove(folder_ / ("charts/" + std::string(Second)));
  Key(Qt::Key_M, Qt::AltModifier);
  QWidget* large = desk_->Window(WindowId::LargeView);
  ASSERT_NE(large, nullptr);
  EXPECT_EQ(large->windowTitle(), "File Summary");
  const QString text = Find<QPlainTextEdit>(*large, "txtView").toPlainText();
  EXPECT_TRUE(text.startsWith("Start       Start"));
  EXPECT_EQ(text.count("unknown"), 6) << text.toStdString();
  EXPECT_TRUE(text.contains("19980406-0700.dat: No such file"));
  EXPECT_EQ(text.trimmed().count('\n'), 2 + 19 + 1);
}

TEST_F(EditorWindow, WorksOnTheChartsOfTheDatabase) {
  ASSERT_TRUE(MakePictureDatabase(settings_, dialogs_).has_value());
  Remember("TargetFolder", (folder_ / "Data").c_str());
  QTimer asked;
  QObject::connect(&asked, &QTimer::timeout, [&] {
    QWidget* question = QApplication::activeModalWidget();
    if (question == nullptr) return;
    asked.stop();
    Click(*question, "cmdAnswer1");
  });
  asked.start(5);
  ASSERT_NO_FATAL_FAILURE(Open());
  EXPECT_EQ(Text("labCount"), "7 charts");
  const std::string first = OpenName();
  Key(Qt::Key_3, Qt::AltModifier);
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Text("labUnsaved"), "Saved");
  EXPECT_EQ(Part<QComboBox>("comReliability").currentText(), "Unreliable");

  dialogs_.Boxes.clear();
  dialogs_.Answers = {BoxAnswer::Yes, BoxAnswer::No};
  Key(Qt::Key_Delete);
  ASSERT_THAT(dialogs_.Boxes, SizeIs(2));
  EXPECT_EQ(dialogs_.Boxes[0],
            (ShownBox{"Deleting Files from the Database",
                      "Are you sure you want to delete the selected files from the database ?",
                      BoxButtons::NoUnlessYes, BoxIcon::Warning}));
  EXPECT_EQ(dialogs_.Boxes[1].Title, "Deleting Files from the Hard Drive");
  EXPECT_EQ(Text("labCount"), "6 charts");
  EXPECT_TRUE(std::filesystem::exists(folder_ / ("Data/" + first)));
  std::filesystem::remove(folder_ / ("Data/" + OpenName()));
  dialogs_.Answers = {BoxAnswer::Yes};
  Key(Qt::Key_Delete);
  EXPECT_THAT(dialogs_.Boxes, SizeIs(3)) << "no file of its name stands in the folder";
  EXPECT_EQ(Text("labCount"), "5 charts");
}

}  // namespace
}  // namespace hyetex
