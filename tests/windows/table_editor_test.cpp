// The windows that choose a table and edit its rows, by the mouse and the keys, on an embedded database.
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTableView>
#include <filesystem>

#include "app/app_desk.h"
#include "database/access/new_database.h"
#include "database/windows/frmSelectTable.h"
#include "database/windows/frmTableEditor.h"
#include "paths.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class TableWindow : public WindowTest<frmTableEditor> {
 protected:
  TableWindow() {
    EXPECT_TRUE(CreateDatabaseFile(folder_ / "rain.sqlite"));
    text_ = FileConnectionText(folder_ / "rain.sqlite").value_or("");
    db_ = std::move(Connection::Open(text_).value());
  }
  void Run(const std::string& sql) { ASSERT_TRUE(db_.Execute(sql)) << sql; }
  void AddRegions(int count) {
    for (int i = 1; i <= count; ++i)
      Run("INSERT INTO LUT_REGION VALUES ('region " + std::to_string(i) + "', '" + std::to_string(i) + "')");
  }
  void Open(std::string_view entry) {
    const EditedTable& table = *std::ranges::find(EditedTables(), entry, &EditedTable::Entry);
    auto editor = TableEditor::Open(table, text_);
    ASSERT_TRUE(editor) << editor.error();
    Show(*std::move(editor), [this] { return level_; });
  }
  std::string Status() { return Find<QLabel>(*window_, "lblStatus").text().toStdString(); }
  std::string Box(int field) { return Find<QLineEdit>(*window_, Name(field)).text().toStdString(); }
  const char* Name(int field) { return (name_ = "txtFields" + std::to_string(field)).c_str(); }
  void Type(int field, const char* text) {
    auto& box = Find(*window_, Name(field));
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&box, Qt::Key_Delete);
    QTest::keyClicks(&box, QString::fromUtf8(text));
  }
  bool IsShown(const char* name) { return Find(*window_, name).isVisible(); }
  std::vector<std::string> Stored(const std::string& table, const std::string& column) {
    std::vector<std::string> values;
    auto rows = Recordset::Open(db_, table, {.Columns = {column}});
    for (; rows && !rows->Eof(); (void)rows->MoveNext()) values.push_back(TextOf(rows->Value(0).value()));
    return values;
  }

  std::string text_, name_;
  Connection db_;
  std::int16_t level_ = 5;
};

TEST_F(TableWindow, MovesAddsEditsAndDeletes) {
  AddRegions(3);
  Open("LUT REGION");
  EXPECT_EQ(window_->objectName(), "frmEdit_LUT_Region");
  ExpectCaptions(*window_, {{"cmdAdd", "Add"},
                            {"cmdEdit", "Edit"},
                            {"cmdDelete", "Delete"},
                            {"cmdRefresh", "Refresh"},
                            {"cmdClose", "Close"},
                            {"cmdUpdate", "Update"},
                            {"cmdCancel", "Cancel"}});
  EXPECT_EQ(Status(), "Record: 1");
  Click(*window_, "cmdPrevious");
  EXPECT_EQ(Status(), "Record: 1");
  Click(*window_, "cmdLast");
  Click(*window_, "cmdNext");
  EXPECT_EQ(Status() + " " + Box(0), "Record: 3 region 3");
  QTest::keyClick(window_.get(), Qt::Key_Home, Qt::AltModifier);
  EXPECT_EQ(Status() + " " + Box(0), "Record: 1 region 1");
  QTest::keyClick(&Find(*window_, "txtFields0"), Qt::Key_X);
  EXPECT_EQ(Box(0), "region 1") << "before Edit nothing can be typed";

  Click(*window_, "cmdEdit");
  EXPECT_EQ(Status(), "Edit record");
  for (const char* hidden : {"cmdAdd", "cmdEdit", "cmdDelete", "cmdRefresh", "cmdClose", "cmdNext"})
    EXPECT_FALSE(IsShown(hidden)) << hidden;
  Type(1, "123456");
  QTest::keyClick(&Find(*window_, "txtFields1"), Qt::Key_Return);
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes.back().Text, "Region code has room for 5 characters; these are 6.");
  EXPECT_EQ(Box(1), "123456") << "and stays to be mended";
  Type(1, "12345");
  QTest::keyClick(&Find(*window_, "txtFields1"), Qt::Key_Return);
  EXPECT_EQ(Status(), "Record: 1");
  EXPECT_FALSE(IsShown("cmdUpdate"));
  EXPECT_THAT(Stored("LUT_REGION", "region_code"), ElementsAre("12345", "2", "3"));

  Click(*window_, "cmdEdit");
  Type(0, "lost");
  QTest::keyClick(window_.get(), Qt::Key_Escape);
  EXPECT_EQ(Status() + " " + Box(0), "Record: 1 region 1");

  Click(*window_, "cmdAdd");
  EXPECT_EQ(Status() + Box(0), "Add record");
  Click(*window_, "cmdUpdate");
  EXPECT_EQ(dialogs_.Boxes.back().Text, "Nothing has been entered for the new record.");
  Type(0, "new");
  Click(*window_, "cmdUpdate");
  EXPECT_EQ(Status() + " " + Box(0), "Record: 4 new");
  Click(*window_, "cmdFirst");
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Click(*window_, "cmdDelete");
  EXPECT_EQ(Status() + " " + Box(0), "Record: 1 region 1");
  EXPECT_EQ(dialogs_.Boxes.back().Buttons, BoxButtons::NoUnlessYes);
  Click(*window_, "cmdDelete");
  EXPECT_EQ(Status() + " " + Box(0), "Record: 1 region 2");
  EXPECT_THAT(Stored("LUT_REGION", "region"), ElementsAre("region 2", "region 3", "new"));

  auto& find = Find<QLineEdit>(*window_, "txtFind");
  QTest::keyClicks(&find, "REGION 3");
  ASSERT_TRUE(WaitFor([&] { return Status() == "Record: 2"; }));
  QTest::keyClicks(&find, "x");
  QTest::keyClick(&find, Qt::Key_Return);
  EXPECT_EQ(Find<QLabel>(*window_, "labDoing").text(), "No record begins so");
  EXPECT_EQ(Status(), "Record: 2");
  window_->close();
  EXPECT_EQ(desk_.Opened, std::vector{WindowId::SelectTable});
  EXPECT_EQ(desk_.ClosedWindows, std::vector{WindowId::TableEditor});
  EXPECT_NE(Remembered("frmEdit_LUT_Region-Top"), "");
}

TEST_F(TableWindow, IsForLookingOnlyBelowTheLevel) {
  AddRegions(2);
  for (const std::int16_t level : {std::int16_t{6}, std::int16_t{10}}) {
    level_ = level;
    dialogs_.Boxes.clear();
    Open("LUT REGION");
    EXPECT_FALSE(Find(*window_, "txtFields0").isEnabled());
    Click(*window_, "cmdNext");
    EXPECT_EQ(Status() + " " + Box(0), "Record: 2 region 2");
    for (const char* button : {"cmdAdd", "cmdEdit", "cmdDelete"}) Click(*window_, button);
    const ShownBox refusal =
        Warning("Authorization Limitation", "You are not authorized to perform that action.");
    EXPECT_THAT(dialogs_.Boxes, ElementsAre(refusal, refusal, refusal));
    EXPECT_EQ(Status(), "Record: 2");
    EXPECT_EQ(Stored("LUT_REGION", "region").size(), 2U);
  }
}

TEST_F(TableWindow, TellsWhatSomebodyElseHasDoneToTheRow) {
  AddRegions(2);
  Open("LUT REGION");
  Click(*window_, "cmdEdit");
  Type(0, "mine");
  Run("UPDATE LUT_REGION SET region_code = '9' WHERE region = 'region 1'");
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Click(*window_, "cmdUpdate");
  EXPECT_EQ(
      dialogs_.Boxes.back(),
      (ShownBox{"Edit Regions",
                "Somebody else has changed this record since it was read here. Nothing was stored. Do you "
                "want to load it anew ? What was entered here is lost then.",
                BoxButtons::NoUnlessYes, BoxIcon::Warning}));
  EXPECT_EQ(Status() + " " + Box(0), "Edit record mine");
  Click(*window_, "cmdUpdate");
  EXPECT_EQ(Status() + " " + Box(0) + " " + Box(1), "Record: 1 region 1 9");
  // What the database refuses stays to be mended.
  Run("CREATE TRIGGER t BEFORE UPDATE ON LUT_REGION BEGIN SELECT RAISE(ABORT, 'not today'); END");
  Click(*window_, "cmdEdit");
  Type(0, "mine");
  Click(*window_, "cmdUpdate");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("The record was not stored. What was entered is still "));
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("not today"));
  EXPECT_EQ(Status() + " " + Box(0), "Edit record mine");
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::No};
  window_->close();
  EXPECT_TRUE(desk_.ClosedWindows.empty());
  window_->close();
  EXPECT_FALSE(desk_.ClosedWindows.empty());
  EXPECT_THAT(Stored("LUT_REGION", "region"), ElementsAre("region 1", "region 2"));
}

TEST_F(TableWindow, LoadsShowsSavesAndClearsAPicture) {
  QImage image(60, 40, QImage::Format_RGB32);
  image.fill(Qt::darkGreen);
  const std::string file = folder_ / "area.png", copy = folder_ / "copy.png";
  ASSERT_TRUE(image.save(QString::fromStdString(file)));
  Open("AREA DESCRIPTION");
  EXPECT_EQ(Status(), "Record: 0");
  Click(*window_, "cmdAdd");
  Type(0, "7");
  Type(2, "5.3.1998");
  Type(3, "A wide slope");
  dialogs_.Opened = {folder_ / "missing.png", file};
  Click(*window_, "cmdLoadPicture");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("missing.png"));
  Click(*window_, "cmdLoadPicture");
  Click(*window_, "cmdUpdate");
  EXPECT_EQ(Status(), "Record: 1");
  auto& kind = Find<QLabel>(*window_, "labPictureKind");
  ASSERT_TRUE(WaitFor([&] { return kind.text().startsWith("60 by 40 pixels"); }));
  EXPECT_EQ(Box(2), "05/03/1998");
  EXPECT_FALSE(Find(*window_, "cmdLoadPicture").isEnabled());
  dialogs_.Files = {copy};
  Click(*window_, "cmdSavePicture");
  EXPECT_EQ(ReadFile(copy), ReadFile(file));
  Click(*window_, "cmdEdit");
  Type(0, "7,5");
  Click(*window_, "cmdUpdate");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("must be a whole number"));
  Type(0, "8");
  Click(*window_, "cmdClearPicture");
  Click(*window_, "cmdUpdate");
  ASSERT_TRUE(WaitFor([&] { return kind.text() == "No picture"; }));
  EXPECT_THAT(Stored("AREA_DESCRIPTION", "area_description"), ElementsAre("A wide slope"));
  EXPECT_THAT(Stored("AREA_DESCRIPTION", "image_file"), ElementsAre(""));
}

TEST_F(TableWindow, KeepsReadingsInStepWithTheirInstrument) {
  for (const char* code : {"NM-Hill-1", "NM-Mill-1"})
    Run(std::string("INSERT INTO INSTRUMENT (instrument_code_id) VALUES ('") + code + "')");
  for (int i = 0; i < 150; ++i)
    Run("INSERT INTO MANUAL_GAGE (instrument_code_id, depth) VALUES ('NM-Hill-1', " + std::to_string(i) +
        ")");
  Open("MANUAL GAGE");
  auto& grid = Find<QTableView>(*window_, "grdRows");
  const auto& master = Find<QLineEdit>(*window_, "txtMaster");
  EXPECT_EQ(master.text(), "NM-Hill-1");
  EXPECT_EQ(Find<QLabel>(*window_, "labCount").text(), "150 records");
  EXPECT_EQ(grid.model()->rowCount(), 100) << "a page";
  grid.verticalScrollBar()->setValue(grid.verticalScrollBar()->maximum());
  EXPECT_EQ(grid.model()->rowCount(), 150);
  QTest::mouseClick(grid.viewport(), Qt::LeftButton, {},
                    grid.visualRect(grid.model()->index(99, 2)).center());
  ASSERT_TRUE(WaitFor([&] { return Box(2) == "99"; }));
  QTest::keyClick(&grid, Qt::Key_Down);
  ASSERT_TRUE(WaitFor([&] { return Box(2) == "100"; }));
  Click(*window_, "cmdEdit");
  EXPECT_FALSE(grid.isEnabled());
  Type(2, "100,5");
  Click(*window_, "cmdUpdate");
  EXPECT_EQ(grid.model()->index(100, 2).data().toString(), "100.5");
  EXPECT_EQ(Status(), "Record: 1") << "which is the instrument's";
  Click(*window_, "cmdNext");
  EXPECT_EQ(master.text(), "NM-Mill-1");
  EXPECT_EQ(grid.model()->rowCount(), 0);
  EXPECT_FALSE(Find(*window_, "cmdDelete").isEnabled());
  Click(*window_, "cmdAdd");
  Type(0, "05/03/1998 07:00");
  Type(2, "3");
  Click(*window_, "cmdUpdate");
  EXPECT_EQ(grid.model()->rowCount(), 1);
  EXPECT_EQ(Stored("MANUAL_GAGE", "instrument_code_id").back(), "NM-Mill-1");
  dialogs_.Answers = {BoxAnswer::Yes};
  Click(*window_, "cmdDelete");
  EXPECT_EQ(grid.model()->rowCount(), 0);
  EXPECT_EQ(Stored("INSTRUMENT", "instrument_code_id").size(), 2U);
}

TEST_F(TableWindow, ComesFromTheListOfTablesAndGoesBackToIt) {
  std::filesystem::copy(Demo("program"), folder_.Path());
  ASSERT_TRUE(settings_.Set(setting::DatabaseName, text_));
  AppDesk desk(StartWords{.Folder = folder_.Path()}, dialogs_);
  desk.Start();
  desk.LoggedIn();
  desk.Open(WindowId::SelectTable);
  QWidget* select = desk.Window(WindowId::SelectTable);
  ASSERT_NE(select, nullptr);
  ExpectCaptions(*select, {{"cmdEdit", "Edit Table"}, {"cmdDone", "Return to Main Menu"}});
  auto& tables = Find<QComboBox>(*select, "cboTables");
  std::vector<std::string> names;
  for (int i = 0; i < tables.count(); ++i) names.push_back(tables.itemText(i).toStdString());
  EXPECT_THAT(names,
              ElementsAre("STATION", "INSTRUMENT", "MANUAL GAGE", "LUT LOCAL BASIN", "INSTRUMENT VISIT",
                          "AREA DESCRIPTION", "DATES OF DATA", "LUT GOVERNORATE", "LUT LOCAL BASIN",
                          "LUT LOCALITy", "LUT REGION", "LUT REGIONAL BASIN", "JORDAN CHARTS By HAND"));
  for (int entry = 0; entry < tables.count(); ++entry) {
    desk.Open(WindowId::SelectTable);
    QWidget* list = desk.Window(WindowId::SelectTable);
    Find<QComboBox>(*list, "cboTables").setCurrentIndex(entry);
    Click(*list, "cmdEdit");
    EXPECT_EQ(desk.Window(WindowId::SelectTable), nullptr);
    QWidget* editor = desk.Window(WindowId::TableEditor);
    ASSERT_NE(editor, nullptr) << names[static_cast<std::size_t>(entry)];
    Click(*editor, "cmdClose");
    ASSERT_NE(desk.Window(WindowId::SelectTable), nullptr);
    EXPECT_EQ(Find<QComboBox>(*desk.Window(WindowId::SelectTable), "cboTables").currentIndex(), entry);
  }
  Run("DROP TABLE STATION");
  QWidget* list = desk.Window(WindowId::SelectTable);
  Find<QComboBox>(*list, "cboTables").setCurrentIndex(0);
  Click(*list, "cmdEdit");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("The database has no table STATION."));
  EXPECT_NE(desk.Window(WindowId::SelectTable), nullptr);
  Click(*list, "cmdDone");
  EXPECT_NE(desk.Window(WindowId::MainMenu), nullptr);
}

}  // namespace
}  // namespace hyetex
