// A database with all tables, on each engine, and hands to move its tables to files and back.
#pragma once

#include <gmock/gmock.h>

#include "core/files.h"
#include "database/access/create_tables.h"
#include "database/access/new_database.h"
#include "database/engines.h"
#include "exchange/export_table.h"
#include "exchange/import_xml.h"
#include "exchange/table_list.h"
#include "platform/odbc/recordset.h"

namespace hyetex::test {

/// A handle on a database for the exchange.
struct OpenedDatabase {
  explicit OpenedDatabase(const std::string& text) { Database.ConnectionText = text; }

  Connection& Open() {
    if (!Database.DatabaseConnection.IsOpen()) {
      const auto opened = Database.OpenDatabase();
      EXPECT_TRUE(opened) << opened.error().Description;
    }
    return Database.DatabaseConnection;
  }
  void MakeTables() {
    EXPECT_TRUE(CreateTables(Open()));
    Make(Open(), *MissingCompletion(Open()));
  }
  void Run(const std::string& sql, const std::vector<DbValue>& values = {}) {
    const auto done = Open().Execute(sql, values);
    EXPECT_TRUE(done) << sql << ": " << done.error().Description;
  }
  /// The rows, each as its values as texts, NULL as "NULL".
  std::vector<std::string> Rows(const std::string& table) {
    std::vector<std::string> rows;
    auto opened = Recordset::Open(Open(), table, {.AsText = true});
    EXPECT_TRUE(opened) << opened.error().Description;
    for (; !opened->Eof(); Must(opened->MoveNext())) {
      std::string row;
      for (int i = 0; i < opened->FieldCount(); ++i) {
        const DbValue value = Must(opened->Value(i));
        row += (i == 0 ? "" : "|") + (IsNull(value) ? std::string("NULL") : TextOf(value));
      }
      rows.push_back(row);
    }
    return rows;
  }

  UnattendedDialogs Boxes;
  hyetex::Settings Settings{""};
  HyetexPlotDB Database{Settings, Boxes};
};

inline std::optional<Markup> Escaped(const std::vector<const ExportedTable*>&) { return Markup::Escaped; }

/// Stops the work at its nth step.
struct StopsAt : Progress {
  explicit StopsAt(int steps) : Left(steps) {}
  bool Step(std::int64_t, std::int64_t, std::string_view) override { return Left-- > 0; }
  int Left;
};

class ExchangeTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    if (Text().empty()) return;
    here_ = std::make_unique<OpenedDatabase>(Text());
    here_->MakeTables();
  }
  void TearDown() override {
    here_.reset();
    EngineTest::TearDown();
  }

  ExportResult Export(const std::string& table, const ChooseMarkup& choose = Escaped) {
    UnwatchedProgress unwatched;
    return ExportTable(here_->Database, table, Folder / "out", choose, unwatched);
  }
  std::string File(const std::string& table) { return ReadFile(Folder / ("out/" + table + ".xml")); }
  ImportResult Import(const std::string& bytes) {
    WriteFile(Folder / "in.xml", bytes);
    UnwatchedProgress unwatched;
    return ImportFile(here_->Database, Folder.Path(), "in.xml", unwatched);
  }
  /// An XML file of rows of LUT_REGION, each given as the text within its element.
  static std::string Regions(const std::vector<std::string>& rows) {
    std::string text = "<lut_regions>\n";
    for (const std::string& row : rows) text += "<lut_region>" + row + "</lut_region>\n";
    return text + "</lut_regions>\n";
  }
  static std::string Region(const std::string& code) {
    return "<region>R</region><region_code>" + code + "</region_code>";
  }

  std::unique_ptr<OpenedDatabase> here_;
};

}  // namespace hyetex::test
