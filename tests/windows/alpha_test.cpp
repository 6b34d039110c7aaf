// Selecting an instrument's alpha by the keys and buttons of the real program, on a database file.
#include <QComboBox>
#include <QLineEdit>
#include <QTableView>

#include "alpha/windows/alpha_plot.h"
#include "app/app_desk.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "database/stored_charts.h"
#include "windows/database_fixture.h"

#include <gmock/gmock.h>

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr const char* Code = "NM-Hill Farm-01";

class AlphaWindow : public DatabaseFolderTest {
 protected:
  AlphaWindow() {
    for (const char* code : {"NM-Mill Pond-01  ", Code})
      Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (?)", {std::string(code)});
    for (int day = 1; day <= 5; ++day) AddChart(day);
  }

  /// One with the alpha 0.1 times the day; the first day's has none.
  void AddChart(int day) {
    StoredChart chart{.Instrument = Code, .Start = MakeDate(1998, 3, day, 7)};
    if (day > 1) chart.Comment = "\r\nAlpha 1 : 0." + std::to_string(day);
    Execute(
        "INSERT INTO CHART_ASCII (instrument_code_id, chart_date, ascii_file, loaded) VALUES (?, ?, ?, 1)",
        {std::string(Code) + " ", DbDate{chart.Start}, DbBinary{chart.Text()}});
  }
  /// The selected alphas that the texts have.
  std::vector<std::string> Stored() {
    std::vector<std::string> values;
    auto connection = Connection::Open(text_);
    for (auto table = Recordset::Open(*connection, "CHART_ASCII"); !table->Eof(); (void)table->MoveNext()) {
      const std::string text = TextOf(*table->Value("ascii_file"));
      const std::size_t at = text.rfind("Selected: ") + 10;
      values.push_back(text.substr(at, text.find('\r', at) - at));
    }
    return values;
  }

  void Open(bool choose = true) {
    desk_ = std::make_unique<AppDesk>(StartWords{.Folder = folder_.Path()}, dialogs_);
    desk_->Start();
    desk_->LoggedIn();
    ASSERT_TRUE(QTest::qWaitForWindowActive(desk_->ShellWindow()));
    QWidget* menu = desk_->Window(WindowId::MainMenu);
    ASSERT_TRUE(WaitFor([&] { return menu->isAncestorOf(QApplication::focusWidget()); }));
    QTest::keyClick(menu, Qt::Key_A, Qt::AltModifier);
    ASSERT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Alpha) != nullptr; }));
    if (!choose) return;
    Part<QComboBox>("cboSelection").setCurrentText(Code);
    Grid().setFocus();
    ASSERT_TRUE(WaitFor([&] { return Grid().hasFocus(); }));
  }
  QWidget& Window() { return *desk_->Window(WindowId::Alpha); }
  template <typename Widget>
  Widget& Part(const char* name) {
    return Find<Widget>(Window(), name);
  }
  QTableView& Grid() { return Part<QTableView>("ss"); }
  std::string Alpha() { return Part<QLineEdit>("txtAlpha").text().toStdString(); }
  std::string Rows() { return Part<QLabel>("labRows").text().toStdString(); }
  std::string Cell(int row, int column) {
    return Grid().model()->index(row, column).data().toString().toStdString();
  }
  QVariant Back(int row) { return Grid().model()->index(row, 0).data(Qt::BackgroundRole); }
  std::size_t Drawn() {
    std::size_t points = 0;
    for (const GraphLayer& layer : Part<AlphaPlot>("picGraph").Shown().Layers)
      points += std::get<GraphMarks>(layer).Points.size();
    return points;
  }
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&Grid(), key, modifiers); }
  QPoint At(int row) { return Grid().visualRect(Grid().model()->index(row, 1)).center(); }

  std::unique_ptr<AppDesk> desk_;
};

TEST_F(AlphaWindow, ShowsTheChartsOfAnInstrumentAndAveragesWithoutTheExcluded) {
  ASSERT_NO_FATAL_FAILURE(Open(false));
  EXPECT_EQ(Window().windowTitle().toStdString(), "Select Alpha for Use");
  ExpectCaptions(Window(), {{"cmdUseAverage", "Show Average"},
                            {"cmdWriteToDB", "Write Alpha to DB"},
                            {"cmdPrint", "Print"},
                            {"cmdDone", "Return To Main Menu"},
                            {"chkGrid", "Grid"},
                            {"optPage0", "Landscape"},
                            {"optPage1", "Portrait"}});
  EXPECT_EQ(Find(Window(), "cmdWriteToDB").toolTip().toStdString(),
            "This writes the field Selected Alpha Value to the DB");
  auto& instruments = Part<QComboBox>("cboSelection");
  EXPECT_EQ(instruments.currentIndex(), -1);
  instruments.setCurrentText("NM-Mill Pond-01");
  EXPECT_EQ(Grid().model()->rowCount(), 0);
  EXPECT_EQ(Rows(), "No charts");
  instruments.setCurrentText(Code);
  ASSERT_EQ(Grid().model()->rowCount(), 5);
  EXPECT_EQ(Grid().model()->columnCount(), 4);
  EXPECT_EQ(Cell(1, 0) + "|" + Cell(1, 1) + "|" + Cell(1, 2) + "|" + Cell(1, 3),
            "NM-Hill Farm-01|02/03/1998 07:00:00|None|0.2");
  EXPECT_EQ(Drawn(), 4U);

  Click(Window(), "cmdUseAverage");
  EXPECT_EQ(Alpha(), "0.35");
  // A click, an unsteady one too, selects no block; a double click excludes.
  QTest::mousePress(Grid().viewport(), Qt::LeftButton, {}, At(4));
  QTest::mouseMove(Grid().viewport(), At(4) + QPoint(9, 1));
  QTest::mouseRelease(Grid().viewport(), Qt::LeftButton, {}, At(4) + QPoint(9, 1));
  EXPECT_FALSE(Grid().selectionModel()->hasSelection());
  EXPECT_EQ(Grid().currentIndex(), Grid().model()->index(4, 2));
  EXPECT_FALSE(Back(4).isValid());
  QTest::mouseDClick(Grid().viewport(), Qt::LeftButton, {}, At(4));
  EXPECT_EQ(Back(4).value<QColor>(), QColor(120, 120, 120));
  EXPECT_EQ(Drawn(), 3U);
  Click(Window(), "cmdUseAverage");
  EXPECT_EQ(Alpha(), "0.3");
  QTest::mouseDClick(Grid().viewport(), Qt::LeftButton, {}, At(4));
  EXPECT_FALSE(Back(4).isValid());
  EXPECT_EQ(Drawn(), 4U);

  // Blocks by the mouse: a drag, and a row's number.
  QTest::mousePress(Grid().viewport(), Qt::LeftButton, {}, At(1));
  QMouseEvent move(QEvent::MouseMove, At(2), Grid().viewport()->mapToGlobal(At(2)), Qt::NoButton,
                   Qt::LeftButton, {});
  QApplication::sendEvent(Grid().viewport(), &move);
  QTest::mouseRelease(Grid().viewport(), Qt::LeftButton, {}, At(2));
  EXPECT_EQ(Rows(), "5 charts; worked on: rows 2 to 3");
  EXPECT_EQ(Drawn(), 2U);
  QTest::mouseClick(Grid().viewport(), Qt::LeftButton, Qt::ShiftModifier, At(4));
  EXPECT_EQ(Rows(), "5 charts; worked on: rows 2 to 5");
  QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, At(4));
  EXPECT_EQ(Rows(), "5 charts; no block selected: all are worked on");
  QTest::mouseClick(Grid().viewport(), Qt::LeftButton, Qt::ShiftModifier, At(3));
  EXPECT_EQ(Rows(), "5 charts; worked on: rows 4 to 5");
  QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, At(0));
  Part<QLineEdit>("txtAlpha").setText("7");
  Grid().selectRow(3);
  EXPECT_EQ(Rows(), "5 charts; worked on: row 4");
  EXPECT_EQ(Drawn(), 4U) << "a single row draws all";
  Click(Window(), "cmdUseAverage");
  EXPECT_EQ(Alpha(), "0.4");
  instruments.setCurrentIndex(0);
  EXPECT_EQ(Alpha(), "") << "one instrument's value is not another's";
  Click(Window(), "cmdDone");
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
}

TEST_F(AlphaWindow, IsWorkedByKeysFromTheListToTheWriting) {
  ASSERT_NO_FATAL_FAILURE(Open());
  EXPECT_EQ(Rows(), "5 charts; no block selected: all are worked on");
  Key(Qt::Key_Down);
  Key(Qt::Key_Down);
  EXPECT_FALSE(Grid().selectionModel()->hasSelection());
  Key(Qt::Key_Space);
  EXPECT_TRUE(Back(2).isValid());
  Key(Qt::Key_Up);
  Key(Qt::Key_Down, Qt::ShiftModifier);
  Key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(Rows(), "5 charts, 1 excluded; worked on: rows 2 to 4, 1 excluded");
  EXPECT_EQ(Drawn(), 2U);
  Key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Rows(), "5 charts, 1 excluded; no block selected: all are worked on");
  for (int i = 0; i < 2; ++i) Key(Qt::Key_Up, Qt::ShiftModifier);
  QTest::keyClick(&Window(), Qt::Key_A, Qt::AltModifier);
  EXPECT_TRUE(WaitFor([&] { return Alpha() == "0.3"; }));

  // Return asks first, with No as the answer of a Return in haste.
  Part<QLineEdit>("txtAlpha").setFocus();
  dialogs_.Answers = {BoxAnswer::No};
  QTest::keyClick(&Part<QLineEdit>("txtAlpha"), Qt::Key_Return);
  ASSERT_TRUE(WaitFor([&] { return dialogs_.Boxes.size() == 1; }));
  EXPECT_EQ(
      dialogs_.Boxes[0],
      (ShownBox{"Write Alpha to DB",
                "Write \"Alpha Value Selected: 0.3\" into 3 charts of NM-Hill Farm-01 in the database ?\n\n"
                "An excluded chart is among them, and gets it too.\n\n"
                "3 of them were converted to time-depth data, and will need converting again.",
                BoxButtons::NoUnlessYes, BoxIcon::Warning}));
  EXPECT_THAT(Stored(), ElementsAre("None", "None", "None", "None", "None"));
  EXPECT_TRUE(Back(2).isValid());
  dialogs_.Answers = {BoxAnswer::Yes};
  Click(Window(), "cmdWriteToDB");
  EXPECT_THAT(Stored(), ElementsAre("None", "0.3", "0.3", "0.3", "None"));
  EXPECT_THAT(dialogs_.Boxes.back().Text,
              HasSubstr("was written into 3 charts.\n\nPlease note:\n3 charts were"));
  EXPECT_EQ(Cell(1, 2), "0.3");
  EXPECT_FALSE(Back(2).isValid()) << "the list was loaded again";

  // Nothing without a value, nothing with one that is mistyped; 0 is a number, and None is none.
  auto& alpha = Part<QLineEdit>("txtAlpha");
  alpha.clear();
  EXPECT_FALSE(Find(Window(), "cmdWriteToDB").isEnabled());
  alpha.setText("O.03");
  dialogs_.Boxes.clear();
  Click(Window(), "cmdWriteToDB");
  ASSERT_THAT(dialogs_.Boxes, SizeIs(1));
  EXPECT_THAT(dialogs_.Boxes[0].Text, HasSubstr("is no number"));
  for (const char* value : {"0", "None"}) {
    alpha.setText(value);
    dialogs_.Answers = {BoxAnswer::Yes};
    Click(Window(), "cmdWriteToDB");
    EXPECT_THAT(Stored(), ElementsAre(value, value, value, value, value));
  }
  QTest::keyClick(&Grid(), Qt::Key_Escape);
  EXPECT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Alpha) == nullptr; }));
}

TEST_F(AlphaWindow, TellsOfChartsThatOthersHaveRemovedAndOfADatabaseThatIsGone) {
  ASSERT_NO_FATAL_FAILURE(Open());
  Part<QLineEdit>("txtAlpha").setText("0.5");
  Execute("DELETE FROM CHART_ASCII WHERE chart_date > '1998-03-05'");
  dialogs_.Answers = {BoxAnswer::Yes, BoxAnswer::Yes};
  Click(Window(), "cmdWriteToDB");
  EXPECT_THAT(dialogs_.Boxes.back().Text,
              HasSubstr("Left out:\nNM-Hill Farm-01 05/03/1998 07:00:00: it is no longer in the database"));
  EXPECT_EQ(dialogs_.Boxes.back().Icon, BoxIcon::Warning);
  EXPECT_THAT(Stored(), ElementsAre("0.5", "0.5", "0.5", "0.5"));
  EXPECT_EQ(Grid().model()->rowCount(), 4);

  Key(Qt::Key_Space);
  Execute("ALTER TABLE CHART_ASCII RENAME TO elsewhere");
  Click(Window(), "cmdWriteToDB");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("Nothing was written."));
  EXPECT_EQ(Grid().model()->rowCount(), 4);
  EXPECT_TRUE(Back(0).isValid()) << "what the operator has done stays";
}

TEST_F(AlphaWindow, DrawsOnScreenAndPaperAlike) {
  ASSERT_NO_FATAL_FAILURE(Open());
  auto& plot = Part<AlphaPlot>("picGraph");
  EXPECT_EQ(plot.Shown().Title, "Alpha Values For NM-Hill Farm-01");
  Click(Window(), "chkGrid");
  EXPECT_FALSE(plot.Shown().Grid);
  auto& font = Part<QLineEdit>("txtFontSize");
  for (const auto& [from, key, to] : {std::tuple("9", Qt::Key_Up, "10"),
                                      {"24", Qt::Key_Up, "24"},
                                      {"4", Qt::Key_Down, "4"},
                                      {"99", Qt::Key_Down, "24"}}) {
    font.setText(from);
    QTest::keyClick(&font, key);
    EXPECT_EQ(font.text().toStdString(), to);
    EXPECT_EQ(plot.Shown().FontPoints, LeadingNumber(to));
  }
  for (const char* page : {"optPage1", "optPage0"}) {
    Part<QRadioButton>(page).setChecked(true);
    dialogs_.Files = {folder_ / "a.pdf"};
    Click(Window(), "cmdPdf");
    EXPECT_THAT(ReadFile(folder_ / "a.pdf"),
                HasSubstr(std::string_view(page) == "optPage1" ? "[0 0 595.000000 842.000000]"
                                                               : "[0 0 842.000000 595.000000]"));
  }
  EXPECT_THAT(dialogs_.Boxes, IsEmpty());
  dialogs_.Files = {folder_ / "no/a.pdf"};
  Click(Window(), "cmdPdf");
  ASSERT_THAT(dialogs_.Boxes, SizeIs(1));
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Printing the graph");
}

}  // namespace
}  // namespace hyetex
