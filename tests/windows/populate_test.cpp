// From stored charts to rows of rain by the keys and buttons of the real program, on a database file.
#include <QComboBox>
#include <QDesktopServices>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QStatusBar>
#include <QTableView>
#include <QTextBrowser>
#include <QTimer>
#include <QToolTip>
#include <functional>

#include "app/app_desk.h"
#include "core/numbers.h"
#include "database/access/new_database.h"
#include "database/stored_charts.h"
#include "paths.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* Code = "NM-Hill Farm-01";

/// Lets the test act while a question is on the screen.
class WatchedDialogs : public ScriptedDialogs {
 public:
  std::function<void()> OnQuestion;
  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override {
    if (OnQuestion && buttons != BoxButtons::Ok) OnQuestion();
    return ScriptedDialogs::MessageBox(title, text, buttons, icon);
  }
};

class Populating : public FolderTest {
 protected:
  Populating() {
    std::filesystem::copy(test::Demo("program"), folder_.Path());
    const std::string file = folder_ / "rain.sqlite";
    EXPECT_TRUE(CreateDatabaseFile(file));
    text_ = FileConnectionText(file).value_or("");
    Remember("DataBaseName", text_.c_str());
    for (const char* code : {"NM-Mill Pond-01", Code})
      Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (?)", {std::string(code)});
    // In the table's order: the second begins before the first ends, and the last is the oldest.
    AddChart(MakeDate(1998, 3, 1, 8), 1);
    AddChart(MakeDate(1998, 3, 2, 7), 1);
    AddChart(MakeDate(1998, 3, 9, 8), 1, 1);
    AddChart(MakeDate(1998, 1, 31, 8), 1);
  }

  void Execute(const std::string& sql, std::vector<DbValue> values = {}) {
    auto connection = Connection::Open(text_);
    ASSERT_TRUE(connection) << connection.error().Description;
    EXPECT_TRUE(connection->Execute(sql, values)) << sql;
  }
  /// The depth of all rows of CHART whose start begins so.
  double Rain(const std::string& start = "") {
    auto connection = Connection::Open(text_);
    auto rows = Recordset::Open(*connection, "CHART");
    double rain = 0;
    for (; !rows->Eof(); (void)rows->MoveNext())
      if (IsoText(DateOf(*rows->Value("start_time"))).starts_with(start))
        rain += NumberOf(*rows->Value("depth"));
    return Round(rain, 2);
  }
  /// A chart of four steps, digitized 10 mm deep; the manual gage has 12 mm.
  void AddChart(Date start, double days, int loaded = 0) {
    const StoredChart chart{.Instrument = Code, .Start = start, .End = start + days};
    Execute(
        "INSERT INTO CHART_ASCII (instrument_code_id, chart_date, ascii_file, loaded) VALUES (?, ?, ?, ?)",
        {chart.Instrument, DbDate{start}, DbBinary{chart.Text()}, std::int64_t{loaded}});
  }

  void OpenPrePop() {
    desk_ = std::make_unique<AppDesk>(StartWords{folder_.Path()}, watched_);
    desk_->Start();
    desk_->LoggedIn();
    Click(*desk_->Window(WindowId::MainMenu), "Command1");
  }
  void OpenPopulate(bool choose = true) {
    OpenPrePop();
    Click(PrePop(), "cmdContinue");
    ASSERT_NE(desk_->Window(WindowId::Populate), nullptr);
    if (choose) Part<QComboBox>("cboSelection").setCurrentText(Code);
  }
  QWidget& PrePop() { return *desk_->Window(WindowId::PrePop); }
  template <typename Widget>
  Widget& Part(const char* name) {
    return Find<Widget>(*desk_->Window(WindowId::Populate), name);
  }
  void ClickHere(const char* name) { Click(*desk_->Window(WindowId::Populate), name); }
  QTableView& Grid() { return Part<QTableView>("spFiles"); }
  std::string Status() { return Part<QStatusBar>("StatusBar1").currentMessage().toStdString(); }
  std::vector<std::string> Column(int column) {
    std::vector<std::string> texts;
    for (int row = 0; row < Grid().model()->rowCount(); ++row)
      texts.push_back(Grid().model()->index(row, column).data().toString().toStdString());
    return texts;
  }
  void ClickRow(int row, Qt::KeyboardModifiers keys = {}, Qt::MouseButton button = Qt::LeftButton) {
    const QPoint at = Grid().visualRect(Grid().model()->index(row, 1)).center();
    QTest::mouseClick(Grid().viewport(), button, keys, at);
  }
  /// Opens the grid's menu and chooses the entry; the menu waits for it.
  void ChooseInMenu(QContextMenuEvent::Reason reason, const char* name) {
    QTimer::singleShot(0, &Grid(), [this, name] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(&Part<QAction>(name)).center());
    });
    const QPoint at = Grid().visualRect(Grid().currentIndex()).center();
    QContextMenuEvent event(reason, at, Grid().viewport()->mapToGlobal(at));
    QApplication::sendEvent(Grid().viewport(), &event);
  }

  WatchedDialogs watched_;
  std::string text_;
  std::unique_ptr<AppDesk> desk_;
};

TEST_F(Populating, StepsTheNumbersByKeysAndArrowsAndKeepsHoursAndAlphaOnly) {
  OpenPrePop();
  EXPECT_EQ(desk_->Window(WindowId::MainMenu), nullptr);
  auto* gmt = &Find<QLineEdit>(PrePop(), "txtGMT");
  auto* lapse = &Find<QLineEdit>(PrePop(), "txtLapse");
  EXPECT_EQ(gmt->text(), "2");
  EXPECT_EQ(lapse->text(), "0");
  gmt->setFocus();
  EXPECT_TRUE(WaitFor([&] { return gmt->selectedText() == "2"; }));
  QTest::keyClicks(gmt, "1.5");  // in place of what was selected
  for (int i = 0; i < 2; ++i) QTest::keyClick(gmt, Qt::Key_Down);
  EXPECT_EQ(gmt->text(), "-0.5");
  for (const char* refused : {"14.5", "2 h"}) {
    gmt->setText(refused);
    Click(PrePop(), "cmdContinue");
    ASSERT_NE(desk_->Window(WindowId::PrePop), nullptr) << refused;
    EXPECT_EQ(gmt->text(), refused) << "to be mended";
  }
  EXPECT_EQ(watched_.Boxes.front().Text, "The hours to GMT must be from -14 to 14.");
  QTest::keyClick(gmt, Qt::Key_Tab);
  EXPECT_TRUE(WaitFor([] { return QToolTip::isVisible(); })) << "beside the box that was left";
  gmt->setText("-0,5");
  Find<QAbstractButton>(Find(PrePop(), "udnLapse"), "").click();
  EXPECT_EQ(lapse->text(), "1");
  Click(PrePop(), "chkAlpha");
  Click(PrePop(), "optDepth1");
  Click(PrePop(), "cmdExit");
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);

  Click(*desk_->Window(WindowId::MainMenu), "Command1");
  EXPECT_EQ(Find<QLineEdit>(PrePop(), "txtGMT").text(), "-0,5");
  EXPECT_EQ(Find<QLineEdit>(PrePop(), "txtLapse").text(), "0");
  EXPECT_TRUE(Find<QAbstractButton>(PrePop(), "chkAlpha").isChecked());
  EXPECT_TRUE(Find<QAbstractButton>(PrePop(), "optDepth0").isChecked());
}

TEST_F(Populating, ShowsWhatIsNotLoadedByItsDatesAndMarksOverlaps) {
  OpenPopulate(false);
  EXPECT_EQ(Part<QComboBox>("cboSelection").count(), 2);
  EXPECT_EQ(Grid().model()->rowCount(), 0);
  EXPECT_FALSE(Part<QPushButton>("cmdWrite").isEnabled());

  Part<QComboBox>("cboSelection").setCurrentText(Code);
  EXPECT_THAT(Column(0), ElementsAre("31/01/98 08:00", "01/03/98 08:00", "02/03/98 07:00"));
  EXPECT_THAT(Column(3), ElementsAre("12", "12", "12"));
  EXPECT_THAT(Column(6), ElementsAre("Digitized", "Digitized", "Digitized"));
  EXPECT_EQ(Status(), "Records loaded from CHART_ASCII Table (3 records )");
  const auto mark = [&](int row) { return Grid().model()->index(row, 0).data(Qt::BackgroundRole); };
  EXPECT_FALSE(mark(1).isValid());
  EXPECT_EQ(mark(2).value<QColor>(), QColor(0xFF, 0x80, 0x80));

  ClickHere("chkShowAll");
  EXPECT_EQ(Status(), "Records loaded from CHART_ASCII Table (4 records )");
  QHeaderView& header = *Grid().horizontalHeader();
  QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, {header.sectionViewportPosition(1) + 5, 5});
  QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, {header.sectionViewportPosition(1) + 5, 5});
  EXPECT_THAT(Column(1), ElementsAre("10/03/98 08:00", "03/03/98 07:00", "02/03/98 08:00", "01/02/98 08:00"));
  ClickHere("chkShowAll");  // what is loaded anew keeps the order
  EXPECT_THAT(Column(1), ElementsAre("03/03/98 07:00", "02/03/98 08:00", "01/02/98 08:00"));

  Part<QComboBox>("cboSelection").setCurrentIndex(0);
  EXPECT_EQ(Status(), "Records loaded from CHART_ASCII Table (0 records )");
}

TEST_F(Populating, ConvertsTheBlockWithTheDepthsChosenInTheMenu) {
  OpenPopulate();
  ClickRow(2, {}, Qt::RightButton);
  ChooseInMenu(QContextMenuEvent::Mouse, "mnuChangeSelectedDepth");
  EXPECT_THAT(Column(6), ElementsAre("Digitized", "Digitized", "Manual"));
  ClickRow(0);
  ClickRow(1, Qt::ShiftModifier);
  ChooseInMenu(QContextMenuEvent::Keyboard, "mnuChangeSelectedDepth");
  EXPECT_THAT(Column(6), ElementsAre("Manual", "Manual", "Manual"));
  ClickRow(1, Qt::ControlModifier);
  desk_->ShellWindow()->activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(desk_->ShellWindow()));
  QTest::keyClick(&Grid(), Qt::Key_D, Qt::ControlModifier);  // one row is no block: the cursor's
  EXPECT_THAT(Column(6), ElementsAre("Manual", "Digitized", "Manual"));
  ClickRow(1);
  ClickRow(2, Qt::ShiftModifier);
  ClickHere("cmdWrite");
  EXPECT_THAT(watched_.Boxes,
              ElementsAre(ShownBox{"Populating the Database",
                                   "The procespFiles has been completed succesfully 8 records written",
                                   BoxButtons::Ok, BoxIcon::Information}));
  EXPECT_EQ(Rain(), 10 + 12);
  EXPECT_EQ(Rain("1998-03-01T06:00:00"), 2.5);  // in GMT, two hours before local time
  EXPECT_THAT(Column(0), ElementsAre("31/01/98 08:00"));

  ClickHere("cmdBack");
  EXPECT_EQ(desk_->Window(WindowId::Populate), nullptr);
  Click(PrePop(), "cmdContinue");
  ClickHere("cmdExit");
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
}

TEST_F(Populating, AsksWhichChartsAndShowsTheLog) {
  QTextBrowser viewer;
  QDesktopServices::setUrlHandler("file", &viewer, "setSource");
  OpenPopulate();
  ClickRow(1);
  ChooseInMenu(QContextMenuEvent::Keyboard, "mnuPopulateViewSelected");
  EXPECT_THAT(viewer.toPlainText().toStdString(), HasSubstr("Start: 01/03/1998 08:00"));

  watched_.Answers = {BoxAnswer::Cancel};
  ClickHere("cmdWrite");
  EXPECT_EQ(Rain(), 0);
  ClickHere("chkDataLog");
  watched_.Answers = {BoxAnswer::No, BoxAnswer::Yes};  // the current chart only; see the log
  ClickHere("cmdWrite");
  EXPECT_EQ(Rain(), 10);
  EXPECT_EQ(Rain("1998-03-01T06"), 2.5);
  EXPECT_THAT(viewer.toPlainText().toStdString(), HasSubstr("4 records added to DB"));
  const ShownBox which{
      "Populating The Database",
      "Would you like to read all the files in the table, press no to read only the current file",
      BoxButtons::YesNoCancel, BoxIcon::Question};
  const ShownBox seeLog{
      "Populating the Database",
      "The procespFiles has been completed succesfully 4 records written, would you like to "
      "see the data log?",
      BoxButtons::YesNoCancel, BoxIcon::Question};
  EXPECT_THAT(watched_.Boxes, ElementsAre(which, which, seeLog));
  QDesktopServices::unsetUrlHandler("file");
}

TEST_F(Populating, StopsBehindTheChartOfWhichItAsks) {
  OpenPopulate();
  watched_.Answers = {BoxAnswer::Yes};
  ClickHere("cmdWrite");
  EXPECT_EQ(Rain(), 30);

  ClickHere("chkShowAll");
  Grid().selectAll();
  watched_.Boxes.clear();
  watched_.Answers = {BoxAnswer::Yes};
  watched_.OnQuestion = [this] {
    EXPECT_TRUE(Part<QProgressBar>("barProgress").isVisible());
    ClickHere("cmdCancel");
  };
  ClickHere("cmdWrite");
  ASSERT_EQ(watched_.Boxes.size(), 2U) << "no second chart is asked about";
  EXPECT_EQ(watched_.Boxes[0].Title, "Populating CHART table");
  EXPECT_THAT(watched_.Boxes[1].Text, HasSubstr("4 records written"));
  EXPECT_FALSE(Part<QPushButton>("cmdCancel").isVisible());
}

TEST_F(Populating, ShowsManyProblemsInAWindowOfTheirOwn) {
  for (int day = 1; day <= 6; ++day) AddChart(MakeDate(1999, 5, day, 8), 0);
  OpenPopulate();
  watched_.Answers = {BoxAnswer::Yes};
  ClickHere("cmdWrite");
  EXPECT_EQ(Rain(), 30);
  EXPECT_EQ(Grid().model()->rowCount(), 6);
  QWidget* view = desk_->Window(WindowId::LargeView);
  ASSERT_NE(view, nullptr);
  EXPECT_THAT(Find<QPlainTextEdit>(*view, "txtView").toPlainText().toStdString(), HasSubstr("06/05/1999"));
}

}  // namespace
}  // namespace hyetex
