// The windows of the exchange, on an embedded database.
#include <QComboBox>
#include <QStatusBar>
#include <QTableView>
#include <QTableWidget>
#include <QTimer>
#include <filesystem>

#include "database/access/new_database.h"
#include "exchange/windows/frmCompress.h"
#include "exchange/windows/frmXMLExport.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

template <typename Window>
class ExchangeWindow : public WindowTest<Window> {
 protected:
  ExchangeWindow() {
    EXPECT_TRUE(CreateDatabaseFile(this->folder_ / "rain.sqlite"));
    database_.ConnectionText = FileConnectionText(this->folder_ / "rain.sqlite").value_or("");
    this->Remember("Exchange-Folder", (this->folder_ / "xml").c_str());
  }
  void Run(const std::string& sql) {
    ASSERT_TRUE(database_.OpenDatabase());
    const auto done = database_.DatabaseConnection.Execute(sql);
    EXPECT_TRUE(done) << done.error().Description;
    database_.Close();
  }
  std::string File(const std::string& name) { return ReadFile(this->folder_ / ("xml/" + name)); }
  bool MayImport() {
    if (!mayImport_)
      this->dialogs_.MessageBox("Authorization Limitation", "no", BoxButtons::Ok, BoxIcon::Warning);
    return mayImport_;
  }

  HyetexPlotDB database_{this->settings_, this->dialogs_};
  bool mayImport_ = true;
};

class CompressWindow : public ExchangeWindow<frmCompress> {
 protected:
  void Open() {
    Show(database_,
         ExchangeServices{.MayImport = [this] { return MayImport(); }, .Help = [this] { ++helped_; }});
  }
  std::vector<std::string> Row(int row) {
    auto& grid = Find<QTableWidget>(*window_, "fgdResult");
    std::vector<std::string> cells;
    for (int i = 0; i < grid.columnCount(); ++i) {
      const auto* item = row < 0 ? grid.horizontalHeaderItem(i) : grid.item(row, i);
      cells.push_back(item == nullptr ? "" : item->text().toStdString());
    }
    return cells;
  }
  int Rows() { return Find<QTableWidget>(*window_, "fgdResult").rowCount(); }
  int helped_ = 0;
};

TEST_F(CompressWindow, TakesTheWholeDatabaseOutAndIn) {
  Run("INSERT INTO STATION (station, comments) VALUES ('Hill', 'a < b')");
  Run("INSERT INTO JORDAN_CHARTS_By_HAND (station) VALUES ('Hill')");
  Open();
  EXPECT_EQ(window_->windowTitle(), "Export Database to file.");
  ExpectCaptions(*window_, {{"cmdCompress", "Export Current Database to XML"},
                            {"cmdRead", "Import XML to Current Database"},
                            {"cmdAdvanced", "By Table Export"},
                            {"cmdExit", "Exit"},
                            {"cmdHelp", "Help"}});
  const std::string folder = folder_ / "xml";
  dialogs_.Answers = {BoxAnswer::Cancel};
  Click(*window_, "cmdCompress");
  EXPECT_EQ(
      dialogs_.Boxes.back(),
      (ShownBox{"Database to xML Export",
                "you will be able to export the current database to xML files.\nThese xML files will be "
                "saved in the following directory:\n" +
                    folder,
                BoxButtons::OkCancel, BoxIcon::Information}));
  EXPECT_FALSE(std::filesystem::exists(folder));

  dialogs_.Answers = {BoxAnswer::Ok, BoxAnswer::Yes};
  Click(*window_, "cmdCompress");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("station: 1 value, the first in row 1, comments"));
  EXPECT_EQ(dialogs_.Boxes.back().Buttons, BoxButtons::YesNoCancel) << "Yes, escaped, is the default";
  ASSERT_EQ(Rows(), 10);
  EXPECT_THAT(Row(-1), ElementsAre("Table Name", "Records Exported", "Location of xML file", "Notes"));
  EXPECT_THAT(Row(0), ElementsAre("station", "1", folder + "/station.xml", ""));
  EXPECT_THAT(Row(8), ElementsAre("jordan_charts_by_hand", "1", folder + "/JORDAN_CHARTS_By_HAND.xml", ""));
  EXPECT_THAT(File("station.xml"), HasSubstr("a &lt; b"));

  // Back, with one file missing, one that is none, and one of which the database has a record already.
  Run("DELETE FROM JORDAN_CHARTS_By_HAND");
  Run("CREATE UNIQUE INDEX names ON STATION (station)");
  std::filesystem::remove(folder + "/LOGGER.xml");
  WriteFile(folder + "/chart.xml", "<charts><chart>");
  dialogs_.Answers = {BoxAnswer::Ok};
  dialogs_.Opened = {folder + "/station.xml"};
  Click(*window_, "cmdRead");
  ASSERT_EQ(Rows(), 9);
  EXPECT_THAT(Row(-1),
              ElementsAre("Table Name", "Records Imported", "xML file imported", "Refused and Notes"));
  EXPECT_EQ(Row(0)[1], "0");
  EXPECT_THAT(Row(0)[3], HasSubstr("1 refused, the first: row 1: "));
  EXPECT_THAT(Row(2)[3], HasSubstr("Nothing of it was added. " + folder + "/chart.xml, line 1"));
  EXPECT_THAT(Row(8), ElementsAre("jordan_charts_by_hand", "1", folder + "/JORDAN_CHARTS_By_HAND.xml", ""));
  EXPECT_EQ(dialogs_.Boxes.back(),
            Warning("xML to Database Import", "Nothing of 1 file was added. The last column tells why."));
  Click(*window_, "cmdHelp");
  EXPECT_EQ(helped_, 1);
  Click(*window_, "cmdAdvanced");
  EXPECT_THAT(desk_.Opened, ElementsAre(WindowId::TableExchange));
}

TEST_F(CompressWindow, WritesNothingWhenTheQuestionIsCancelledAndImportsOnlyForWhomMay) {
  Run("INSERT INTO STATION (station) VALUES ('a & b')");
  Open();
  dialogs_.Answers = {BoxAnswer::Ok, BoxAnswer::Cancel};
  Click(*window_, "cmdCompress");
  EXPECT_TRUE(std::filesystem::is_empty(folder_ / "xml"));
  EXPECT_EQ(dialogs_.Boxes.back().Text, "The export was stopped. No file has changed.");
  dialogs_.Answers = {BoxAnswer::Ok, BoxAnswer::No};
  Click(*window_, "cmdCompress");
  EXPECT_THAT(File("station.xml"), HasSubstr("<station>a & b</station>"));
  EXPECT_THAT(Row(0)[3], HasSubstr("1 value with \"<\", \"&\" or \"]]>\" unchanged"));
  mayImport_ = false;
  Click(*window_, "cmdRead");
  EXPECT_EQ(dialogs_.Boxes.back().Title, "Authorization Limitation");
  // The folder is remembered, and changed by the operator.
  dialogs_.Folders = {folder_ / "elsewhere"};
  Click(*window_, "cmdFolder");
  window_->close();
  EXPECT_EQ(Remembered("Exchange-Folder"), folder_ / "elsewhere");
}

TEST_F(CompressWindow, TellsOfADatabaseThatCannotBeReached) {
  database_.ConnectionText = "DSN=no such source";
  Open();
  dialogs_.Answers = {BoxAnswer::Ok};
  Click(*window_, "cmdCompress");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr(" occurred in ExportAll Description: "));
  EXPECT_THAT(ReadFile(folder_ / "errors.tXt"), HasSubstr("Source: ExportAll"));
}

// Many rows, so that the work is going when the button is pressed.
TEST_F(CompressWindow, StopsInTheMiddleAndLeavesTheDatabaseAsItWas) {
  std::string text = "<stations>";
  for (int i = 0; i < 30'000; ++i) text += "<station><station>S</station></station>\n";
  WriteFile(folder_ / "station.xml", text + "</stations>");
  Open();
  QTimer stop;
  stop.callOnTimeout([&] {
    if (auto& button = Find<QPushButton>(*window_, "cmdStop"); button.isVisible()) button.click();
  });
  stop.start(20);
  dialogs_.Answers = {BoxAnswer::Ok};
  dialogs_.Opened = {folder_ / "station.xml"};
  Click(*window_, "cmdRead");
  EXPECT_THAT(Row(0)[3], HasSubstr("Nothing of it was added. Stopped"));
  ASSERT_TRUE(database_.OpenStation());
  EXPECT_TRUE(database_.StationTable.Eof());
  database_.Close();
}

class TableExchangeWindow : public ExchangeWindow<frmXMLExport> {
 protected:
  void Open() {
    Show(database_, TableExchangeServices{.MayImport = [this] { return MayImport(); },
                                          .OpenXml = [this](const std::string& path) -> Result<void> {
                                            opened_.push_back(path);
                                            return opens_ ? Result<void>() : Failure("no");
                                          }});
  }
  std::vector<std::string> opened_;
  bool opens_ = true;
};

TEST_F(TableExchangeWindow, MovesATableAndShowsItsFile) {
  Run("INSERT INTO LUT_REGION VALUES ('North', 'N')");
  Run("INSERT INTO LUT_REGION VALUES ('South\r\nWest', NULL)");
  Open();
  EXPECT_EQ(window_->windowTitle(), "Export/Import Contents of Table as XML");
  ExpectCaptions(*window_, {{"cmdExport", "Export Table as XML"},
                            {"cmdImport", "Import XML to Table"},
                            {"cmdViewXML", "View XML in Grid"},
                            {"cmdViewBrowser", "View XML in Browser"},
                            {"cmdExit", "Exit"}});
  Click(*window_, "cmdExport");
  EXPECT_EQ(dialogs_.Boxes.back().Text, "you must select a table to export from the list");
  auto& tables = Find<QComboBox>(*window_, "cboTableName");
  EXPECT_EQ(tables.count(), 12);
  tables.setCurrentText("lut_region");
  Click(*window_, "cmdExport");
  EXPECT_EQ(
      dialogs_.Boxes.back().Text,
      "2 records from lut_region have been saved to lut_region.xml\nin the folder " + (folder_ / "xml"));
  const std::string file = folder_ / "xml/lut_region.xml";

  dialogs_.Opened = {file, file, file, folder_ / "none.xml"};
  Click(*window_, "cmdImport");
  EXPECT_EQ(dialogs_.Boxes.back().Text, "2 Records imported from " + file + " into current database.");
  Click(*window_, "cmdViewXML");
  auto& grid = Find<QTableView>(*window_, "MSFlexGrid1");
  auto& status = Find<QStatusBar>(*window_, "StatusBar1");
  EXPECT_EQ(status.currentMessage(), "lut_region.xml: 2 rows");
  ASSERT_EQ(grid.model()->columnCount(), 3);
  EXPECT_EQ(grid.model()->headerData(1, Qt::Horizontal), "region");
  EXPECT_EQ(grid.model()->index(1, 0).data(), 2);
  QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(grid.model()->index(1, 1)).center());
  EXPECT_EQ(status.currentMessage(), "region = South West : 2");
  QTest::keyClick(&grid, Qt::Key_Up);
  EXPECT_EQ(status.currentMessage(), "region = North : 1");

  Click(*window_, "cmdViewBrowser");
  EXPECT_THAT(opened_, ElementsAre(file));
  opens_ = false;
  Click(*window_, "cmdViewBrowser");
  EXPECT_EQ(dialogs_.Boxes.back().Text, "Could not find file or URL " + (folder_ / "none.xml"));
}

TEST_F(TableExchangeWindow, TellsWhatIsWrongWithAFileAndWhoMayNotImport) {
  WriteFile(folder_ / "bad.xml",
            "<lut_regions>\n<lut_region><colour>red</colour></lut_region></lut_regions>");
  WriteFile(folder_ / "none.xml", "words");
  Open();
  dialogs_.Opened = {folder_ / "bad.xml", folder_ / "none.xml", folder_ / "none.xml"};
  Click(*window_, "cmdImport");
  EXPECT_EQ(dialogs_.Boxes.back().Text,
            "Field: colour does not exist in your database table. The matching field by index is: region   "
            "This will "
            "require you to correct the database.\n\nNothing of the file was added.");
  Click(*window_, "cmdImport");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("none.xml, line 1, column 1: this is no XML"));
  Click(*window_, "cmdViewXML");
  EXPECT_EQ(dialogs_.Boxes.size(), 3U);
  mayImport_ = false;
  Click(*window_, "cmdImport");
  EXPECT_EQ(dialogs_.Boxes.back().Title, "Authorization Limitation");
}

}  // namespace
}  // namespace hyetex
