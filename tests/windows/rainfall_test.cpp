// Rain as a picture and in tables, what is taken away of it, and the ways to the windows that mend it, by the
// keys and buttons of the real program on a database file.
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QTabWidget>
#include <filesystem>

#include "app/app_desk.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "database/conversion/population.h"
#include "database/stored_charts.h"
#include "platform/date_box.h"
#include "rain/windows/frmRainfall.h"
#include "windows/database_fixture.h"

#include <gmock/gmock.h>

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

constexpr const char* Code = "NM-Hill Farm-01";

class RainfallWindow : public DatabaseFolderTest {
 protected:
  RainfallWindow() {
    for (const char* code : {"NM-Mill Pond-01", Code})
      Execute("INSERT INTO INSTRUMENT (instrument_code_id, station) VALUES (?, 'Hill Farm')",
              {std::string(code)});
  }

  // Of a day each, from 8 to 8; four steps of equal length, the second of them without rain.
  void AddChart(Date start, const char* digitized, const char* manual) {
    const StoredChart chart{.Instrument = Code,
                            .Start = start,
                            .End = start + 1,
                            .Digitized = digitized,
                            .Selected = digitized,
                            .Manual = manual};
    Execute("INSERT INTO CHART_ASCII (instrument_code_id, chart_date, ascii_file) VALUES (?, ?, ?)",
            {chart.Instrument, DbDate{start}, DbBinary{chart.Text()}});
  }
  void Convert(const std::vector<Date>& dates) {
    HyetexPlotDB database(settings_, dialogs_);
    const auto lists = ReadLists(folder_.Path());
    ASSERT_TRUE(lists);
    std::vector<ChartToConvert> charts;
    for (const Date date : dates) charts.push_back({.ChartDate = date});
    UnwatchedProgress progress;
    const auto done = WriteChartRecords(
        database, *lists, Code, charts,
        {.Variables = {.GmtShift = 2.0F / 24}, .Overwrite = true, .LogFolder = {}}, dialogs_, progress);
    EXPECT_EQ(done.ChartsConverted, static_cast<int>(dates.size()))
        << ::testing::PrintToString(done.Problems);
  }
  /// Three charts, the second a day behind the first, the last not converted.
  void AddRain() {
    AddChart(first_, "10", "10");
    AddChart(first_ + 2, "30", "20");
    AddChart(first_ + 3, "4", "-1");
    Convert({first_, first_ + 2});
    Execute("INSERT INTO MANUAL_GAGE (instrument_code_id, start_date, end_date, depth) VALUES (?, ?, ?, 10)",
            {std::string(Code), DbDate{first_}, DbDate{first_ + 1}});
    Execute("INSERT INTO MANUAL_GAGE (instrument_code_id, start_date, end_date, depth) VALUES (?, ?, ?, 20)",
            {std::string(Code), DbDate{first_ + 2}, DbDate{first_ + 3}});
  }

  void Start() {
    desk_ = std::make_unique<AppDesk>(StartWords{folder_.Path()}, dialogs_);
    desk_->ShellSize = QSize(1024, 700);
    desk_->Start();
    desk_->LoggedIn();
    EXPECT_TRUE(QTest::qWaitForWindowActive(desk_->ShellWindow()));
  }
  void Open() {
    Start();
    Click(*desk_->Window(WindowId::MainMenu), "cmdRainfall");
    ASSERT_NE(desk_->Window(WindowId::Rainfall), nullptr);
    Settle();
  }
  void Settle() {
    for (int i = 0; i < 10; ++i) QCoreApplication::processEvents();
  }
  frmRainfall& Rain() { return *qobject_cast<frmRainfall*>(desk_->Window(WindowId::Rainfall)); }
  template <typename Widget>
  Widget& Part(const char* name) {
    return Find<Widget>(Rain(), name);
  }
  const RainOverview& Shown() { return *Rain().Shown(); }
  SheetView& Grid(const char* name) { return Part<SheetView>(name); }
  std::vector<std::string> Row(SheetView& grid, int row) {
    std::vector<std::string> texts;
    for (int column = 0; column < grid.model()->columnCount(); ++column)
      texts.push_back(grid.model()->index(row, column).data().toString().toStdString());
    return texts;
  }
  void TurnTo(int tab, QWidget& grid) {
    QTest::keyClick(&Rain(), static_cast<Qt::Key>(Qt::Key_1 + tab), Qt::ControlModifier);
    Settle();
    EXPECT_TRUE(grid.hasFocus()) << "tab " << tab;
  }
  void Key(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&widget, key, modifiers);
    Settle();
  }
  /// The middle of a step in the picture.
  QPoint PlaceOf(std::size_t step) {
    auto& view = Part<RainView>("picRain");
    const GraphLayout& layout = view.Layout();
    const RainStep& rain = view.Steps()[step];
    const Date middle = ToLocal((rain.Start + rain.End) / 2, Shown().Question.Clock);
    const double scale = view.logicalDpiX() / 72.0;
    return QPointF(layout.X.ToSurface(middle) * scale, (layout.Plot.Top + layout.Plot.Height / 2) * scale)
        .toPoint();
  }
  std::string OpenChart() {
    EXPECT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Editor) != nullptr; }));
    QWidget& editor = *desk_->Window(WindowId::Editor);
    auto& list = Find<QListView>(editor, "lstAscii");
    EXPECT_TRUE(WaitFor([&] { return list.currentIndex().isValid(); }));
    Settle();
    return list.currentIndex().data().toString().toStdString();
  }
  std::string State() { return Part<QLabel>("labState").text().toStdString(); }

  const Date first_ = MakeDate(1998, 3, 5, 8);
  std::unique_ptr<AppDesk> desk_;
};

TEST_F(RainfallWindow, OpensOnTheGreatestStormOfWhatWasConvertedLast) {
  AddRain();
  Open();
  EXPECT_EQ(desk_->Window(WindowId::MainMenu), nullptr);
  ASSERT_TRUE(Rain().Shown());
  EXPECT_EQ(Part<QComboBox>("cboInstrument").currentText().toStdString(), Code);
  EXPECT_EQ(Part<QLineEdit>("txtHours").text(), "2");
  EXPECT_EQ(Shown().Question.FromDay, MakeDate(1998, 3, 7));
  EXPECT_EQ(Shown().Question.ToDay, MakeDate(1998, 3, 8));
  EXPECT_EQ(Shown().StepMinutes, 5);
  EXPECT_NEAR(Shown().Depth(), 30, 0.011) << "each row is rounded";
  EXPECT_TRUE(Part<RainView>("picRain").hasFocus());
  EXPECT_FALSE(Part<RainView>("picRain").Shown().Layers.empty());

  const QWidget& frame = *Rain().parentWidget();
  EXPECT_TRUE(frame.parentWidget()->rect().contains(frame.geometry())) << "all of it is in view";

  // Back leads to all of its year.
  Key(Rain(), Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(Shown().Question.FromDay, MakeDate(1998, 1, 1));
  EXPECT_EQ(Shown().StepMinutes, 1440);
  EXPECT_EQ(Part<QComboBox>("comYear").currentText(), "1998");
  EXPECT_FALSE(Part<QPushButton>("cmdBack").isEnabled());
  EXPECT_THAT(State(), StartsWith("40"));
  EXPECT_EQ(Shown().Steps.size(), 365U);
}

TEST_F(RainfallWindow, HasTheLogicsNumbersInItsTablesAndLeadsOnFromThem) {
  AddRain();
  Open();
  Part<QComboBox>("comYear").setCurrentText("1998");
  SheetView& gage = Grid("grdGage");
  TurnTo(1, gage);
  ASSERT_EQ(gage.model()->rowCount(), 2);
  EXPECT_THAT(Row(gage, 0),
              ElementsAre("05/03/1998 08:00", "06/03/1998 08:00", "10", "100%", "10", ::testing::_));
  EXPECT_FALSE(gage.model()->index(0, 5).data(Qt::BackgroundRole).isValid());
  EXPECT_EQ(Row(gage, 1)[5], "+50%");
  EXPECT_TRUE(gage.model()->index(1, 5).data(Qt::BackgroundRole).isValid()) << "beyond five percent";

  SheetView& maxima = Grid("grdMaxima");
  TurnTo(2, maxima);
  ASSERT_EQ(maxima.model()->rowCount(), static_cast<int>(Shown().Maxima.size()));
  ASSERT_EQ(maxima.model()->rowCount(), 12);
  for (int row = 0; row < 12; ++row) {
    const RainMaximum& one = Shown().Maxima[static_cast<std::size_t>(row)];
    EXPECT_EQ(Row(maxima, row)[1], RoundedText(one.Depth, 2)) << one.Minutes;
  }
  EXPECT_EQ(Row(maxima, 11)[0], "24 h");
  EXPECT_EQ(Row(maxima, 11)[1], "30");

  SheetView& storms = Grid("grdStorms");
  TurnTo(3, storms);
  ASSERT_EQ(storms.model()->rowCount(), static_cast<int>(Shown().Storms.size()));
  ASSERT_GE(storms.model()->rowCount(), 2);
  // A longer dry spell joins them.
  auto& dry = Part<QLineEdit>("txtDry");
  dry.setText("100");
  Settle();
  EXPECT_EQ(storms.model()->rowCount(), 1);
  dry.setText("6");
  Settle();
  storms.sortByColumn(3, Qt::DescendingOrder);  // by their rain
  storms.setFocus();
  Key(storms, Qt::Key_Home, Qt::ControlModifier);
  const std::string greatest = Row(storms, 0)[0];
  Key(storms, Qt::Key_Return);
  EXPECT_EQ(GeneralDateText(Shown().Question.FromDay), greatest.substr(0, 10));
  EXPECT_EQ(Shown().StepMinutes, 5);
  Click(Rain(), "cmdBack");
  Settle();

  SheetView& years = Grid("grdYears");
  TurnTo(4, years);
  ASSERT_EQ(years.model()->rowCount(), 1);
  EXPECT_THAT(Row(years, 0), ElementsAre("1998", "40", ::testing::_, ::testing::_, "365", ::testing::_));

  SheetView& days = Grid("grdDays");
  TurnTo(0, days);
  EXPECT_EQ(days.model()->rowCount(), 365);
  EXPECT_THAT(Row(days, 0), ElementsAre("01/01/1998", "no data", "0%", "", ""));
}

TEST_F(RainfallWindow, OpensTheChartOfABarByAClickAndByTheKeys) {
  AddRain();
  Open();
  Part<QComboBox>("comYear").setCurrentText("1998");
  auto& view = Part<RainView>("picRain");
  view.setFocus();
  Key(view, Qt::Key_Right);  // the first with rain
  ASSERT_TRUE(view.Framed());
  EXPECT_EQ(DayOf(view.Steps()[*view.Framed()].Start, Shown().Question.Clock), MakeDate(1998, 3, 5));
  EXPECT_THAT(Part<QLabel>("labReadOut").text().toStdString(), StartsWith("05/03/1998: "));
  Key(view, Qt::Key_Right, Qt::ControlModifier);
  Key(view, Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(DayOf(view.Steps()[*view.Framed()].Start, Shown().Question.Clock), MakeDate(1998, 3, 7));
  Key(view, Qt::Key_Return);
  EXPECT_THAT(OpenChart(), StartsWith("NM-Hill Farm-01-19980307-0800"));
  desk_->Window(WindowId::Editor)->close();
  Settle();

  // By the mouse, in the picture of the first chart's day.
  Find<DateBox>(Rain(), "dtpFrom").setDate(QDate(1998, 3, 5));
  Find<DateBox>(Rain(), "dtpTo").setDate(QDate(1998, 3, 6));
  Part<QComboBox>("comStep").setCurrentIndex(Part<QComboBox>("comStep").findData(60));
  Settle();
  ASSERT_EQ(view.Steps().size(), 48U);
  QTest::mouseClick(&view, Qt::LeftButton, {}, PlaceOf(10));
  EXPECT_EQ(view.Framed(), 10U);
  EXPECT_THAT(OpenChart(), StartsWith("NM-Hill Farm-01-19980305-0800"));
  desk_->Window(WindowId::Editor)->close();
  Settle();
  QTest::mouseClick(&view, Qt::LeftButton, {}, PlaceOf(45));
  Settle();
  EXPECT_THAT(OpenChart(), StartsWith("NM-Hill Farm-01-19980305-0800")) << "of a gap, the chart before it";
}

TEST_F(RainfallWindow, ShowsTheSameRainByOtherClocksAndSteps) {
  AddRain();
  Open();
  Part<QComboBox>("comYear").setCurrentText("1998");
  const double all = Shown().Depth();
  for (int step = 0; step < Part<QComboBox>("comStep").count(); ++step) {
    Part<QComboBox>("comStep").setCurrentIndex(step);
    Settle();
    double sum = 0;
    for (const RainStep& one : Shown().Steps) sum += one.Depth;
    EXPECT_NEAR(sum, all, 1e-6) << Part<QComboBox>("comStep").currentText().toStdString();
  }
  EXPECT_EQ(Shown().StepMinutes, 1440);
  Part<QComboBox>("comTime").setCurrentIndex(1);
  Settle();
  EXPECT_EQ(Shown().Question.Clock.MinutesFromGmt, 0);
  EXPECT_EQ(Shown().Question.LocalMinutes, 120) << "the gage's time stays";
  EXPECT_EQ(Shown().Compared.at(0).Chart, 10);
  Part<QComboBox>("comDayBegins").setCurrentIndex(8);
  Settle();
  EXPECT_EQ(Shown().Days.front().Start % DaySeconds, 8 * 3600);
  // Days that the wrong way round are none leave the picture as it is.
  Find<DateBox>(Rain(), "dtpTo").setDate(QDate(1997, 3, 6));
  Settle();
  EXPECT_EQ(State(), "The last day lies before the first.");
}

TEST_F(RainfallWindow, TakesFilesAway) {
  AddRain();
  Open();
  const auto choose = [&](const char* name, const std::string& file) {
    dialogs_.Files = {folder_ / file};
    Part<QAction>(name).trigger();
    Settle();
    EXPECT_THAT(dialogs_.Files, IsEmpty()) << name;
    return ReadFile(folder_ / file);
  };
  const std::string csv = choose("mnuCsv", "rain.csv");
  EXPECT_EQ(std::ranges::count(csv, '\n'), static_cast<std::ptrdiff_t>(Shown().Steps.size()) + 1);
  EXPECT_THAT(csv, HasSubstr("1998-03-07T08:00:00+02:00"));
  EXPECT_TRUE(QImage::fromData(QByteArray::fromStdString(choose("mnuPng", "rain.png"))).width() > 1000);
  EXPECT_THAT(choose("mnuSvg", "rain.svg"), HasSubstr("<svg"));
  EXPECT_THAT(choose("mnuPdf", "rain.pdf"), StartsWith("%PDF"));
  EXPECT_EQ(Remembered("frmRainfall-Folder"), folder_.Path());
  EXPECT_THAT(choose("mnuReport", "report.pdf"), StartsWith("%PDF"));

  std::filesystem::create_directory(folder_ / "sef");
  dialogs_.Folders = {folder_ / "sef"};
  Part<QAction>("mnuSef").trigger();
  Settle();
  const auto files = std::distance(std::filesystem::directory_iterator(folder_ / "sef"), {});
  EXPECT_EQ(files, 2);
  for (const auto& file : std::filesystem::directory_iterator(folder_ / "sef"))
    EXPECT_THAT(ReadFile(file.path()), StartsWith("SEF\t1.0.0"));

  dialogs_.Files = {folder_ / "no such folder/rain.csv"};
  dialogs_.Boxes.clear();
  Part<QAction>("mnuCsv").trigger();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U) << "told, and the window goes on";
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Rainfall Results");
}

TEST_F(RainfallWindow, WorksOffWhatAilsTheCharts) {
  AddRain();
  Open();
  SheetView& charts = Grid("grdCharts");
  TurnTo(5, charts);
  ASSERT_EQ(charts.model()->rowCount(), 3);
  EXPECT_EQ(Row(charts, 0)[1], "No chart");
  EXPECT_EQ(Row(charts, 1)[1], "Depth and gage differ");
  EXPECT_EQ(Row(charts, 2)[1], "Not converted");
  EXPECT_EQ(Caption(Part<QPushButton>("cmdMend").text()), "Stage a Chart");

  Key(charts, Qt::Key_Return);
  ASSERT_NE(desk_->Window(WindowId::Tasks), nullptr);
  EXPECT_THAT(Remembered("frmTasks-Station"), HasSubstr("Hill Farm"));
  EXPECT_EQ(Remembered("frmTaskDef-BeginDate"), "06/03/1998");
  desk_->Window(WindowId::Tasks)->close();
  Settle();

  charts.setFocus();
  Key(charts, Qt::Key_Down);
  EXPECT_EQ(Caption(Part<QPushButton>("cmdMend").text()), "Open in Quality Control");
  Click(Rain(), "cmdMend");
  EXPECT_THAT(OpenChart(), StartsWith("NM-Hill Farm-01-19980307-0800"));
  desk_->Window(WindowId::Editor)->close();
  Settle();

  charts.setFocus();
  Key(charts, Qt::Key_Down);
  Key(charts, Qt::Key_Return);
  ASSERT_NE(desk_->Window(WindowId::PrePop), nullptr);
  Click(*desk_->Window(WindowId::PrePop), "cmdContinue");
  Settle();
  QWidget& populate = *desk_->Window(WindowId::Populate);
  EXPECT_EQ(Find<QComboBox>(populate, "cboSelection").currentText().toStdString(), Code);

  // What is converted there is shown here, and the list has one thing less.
  dialogs_.Answers = {BoxAnswer::Yes};
  EXPECT_FALSE(Find(populate, "cmdRain").isEnabled());
  Click(populate, "cmdWrite");
  EXPECT_TRUE(Find(populate, "cmdRain").isEnabled()) << ::testing::PrintToString(dialogs_.Boxes);
  Click(populate, "cmdRain");
  Settle();
  EXPECT_EQ(Shown().Question.FromDay, MakeDate(1998, 3, 8));
  EXPECT_EQ(Shown().Question.ToDay, MakeDate(1998, 3, 9));
  EXPECT_EQ(charts.model()->rowCount(), 2);
}

TEST_F(RainfallWindow, SaysWhereThereIsNoRain) {
  Open();
  EXPECT_EQ(State(), "Choose an instrument");
  EXPECT_FALSE(Part<QPushButton>("cmdExport").isEnabled());
  Part<QComboBox>("cboInstrument").setCurrentIndex(0);
  Settle();
  EXPECT_EQ(State(), "There are no rows of rain of this instrument.");
  EXPECT_FALSE(Rain().Shown());
  for (int tab = 0; tab < 7; ++tab) Part<QTabWidget>("tabTables").setCurrentIndex(tab);
  Key(Part<RainView>("picRain"), Qt::Key_Right);
  EXPECT_THAT(dialogs_.Boxes, IsEmpty());
  Click(Rain(), "cmdExit");
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
}

TEST_F(RainfallWindow, FillsTheTablesAfterAQuestion) {
  AddRain();
  Execute("INSERT INTO DAILy_CHART (instrument_code_id, date, depth) VALUES (?, ?, 99)",
          {std::string(Code), DbDate{MakeDate(1998, 3, 7)}});
  Open();
  const auto depths = [this] {
    std::vector<std::string> told;
    auto connection = Connection::Open(text_);
    for (auto table = Recordset::Open(*connection, "DAILy_CHART"); !table->Eof(); (void)table->MoveNext())
      told.push_back(RoundedText(NumberOf(*table->Value("depth")), 2));
    return told;
  };
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Click(Rain(), "cmdFill");
  EXPECT_THAT(depths(), ElementsAre("99"));
  Click(Rain(), "cmdFill");
  EXPECT_THAT(State(), StartsWith("Written: DAILy_CHART: 2 rows"));
  EXPECT_THAT(depths(),
              ElementsAre(RoundedText(Shown().Days[0].Depth, 2), RoundedText(Shown().Days[1].Depth, 2)));
}

TEST_F(RainfallWindow, ShowsAndTakesAwayButWritesNothingForOneWithoutTheRight) {
  AddRain();
  auto lists = ReadLists(folder_.Path());
  ASSERT_TRUE(lists);
  for (UserRecord& user : lists->Users) user.Level = 10;
  ASSERT_TRUE(SaveLists(folder_.Path(), *lists));
  Open();
  Click(Rain(), "cmdFill");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U) << "no question of what to replace";
  EXPECT_EQ(dialogs_.Boxes[0].Text, "You are not authorized to perform that action.");
  auto connection = Connection::Open(text_);
  EXPECT_TRUE(Recordset::Open(*connection, "DAILy_CHART")->Eof());
  dialogs_.Boxes.clear();
  Key(Part<RainView>("picRain"), Qt::Key_Return);
  EXPECT_EQ(desk_->Window(WindowId::Editor), nullptr);
  dialogs_.Boxes.clear();
  dialogs_.Files = {folder_ / "rain.csv"};
  Part<QAction>("mnuCsv").trigger();
  EXPECT_THAT(ReadFile(folder_ / "rain.csv"), StartsWith("start,end,depth_mm,covered"));
  EXPECT_THAT(dialogs_.Boxes, IsEmpty());
}

}  // namespace
}  // namespace hyetex
