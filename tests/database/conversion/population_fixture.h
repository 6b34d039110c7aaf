// A database with stored charts, on each engine, and what a conversion makes of them.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "core/numbers.h"
#include "database/access/create_tables.h"
#include "database/conversion/population.h"
#include "database/engines.h"
#include "database/stored_charts.h"
#include "scripted_dialogs.h"

namespace hyetex::test {

class PopulationFixture : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    if (HasFatalFailure()) return;
    auto opened = Connection::Open(Text());
    ASSERT_TRUE(opened) << opened.error().Description;
    Db = *std::move(opened);
    ASSERT_TRUE(CreateTables(Db));
    ASSERT_THAT(Make(Db, *MissingCompletion(Db)).Failed, ::testing::IsEmpty());
    Lists.Stations = {{"Hill", "RG7", 0, 0}, {"North", "rg12", 0, 0}};
    Database.ConnectionText = Text();
  }
  void TearDown() override {
    Database.Close();
    Db.Close();
    EngineTest::TearDown();
  }

  void StoreText(const std::string& instrument, Date date, const std::string& text) {
    auto table = Recordset::Open(Db, "chart_ascii");
    ASSERT_TRUE(table) << table.error().Description;
    ASSERT_TRUE(table->AddNew());
    ASSERT_TRUE(table->SetValue("instrument_code_id", instrument));
    ASSERT_TRUE(table->SetValue("chart_date", DbDate{date}));
    ASSERT_TRUE(table->SetValue("ascii_file", DbBinary{text}));
    const auto stored = table->Update();
    ASSERT_TRUE(stored) << stored.error().Description;
  }
  void Store(const StoredChart& chart) { StoreText("RG12", chart.Start, chart.Text()); }

  /// The columns of a table's rows joined by " | ", sorted.
  std::vector<std::string> Read(const char* name, std::vector<std::string> columns) {
    std::vector<std::string> lines;
    auto table = Recordset::Open(Db, name, {.Columns = columns});
    EXPECT_TRUE(table) << table.error().Description;
    for (; table && !table->Eof(); (void)table->MoveNext()) {
      std::string line;
      for (int i = 0; i < table->FieldCount(); ++i) {
        const DbValue value = table->Value(i).value();
        const auto* date = std::get_if<DbDate>(&value);
        line += (i == 0 ? "" : " | ") + (IsNull(value)     ? "null"
                                         : date != nullptr ? IsoText(date->Value)
                                                           : TextOf(value));
      }
      lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }
  std::vector<std::string> Rows() { return Read("chart", {"start_time", "end_time", "depth", "comments"}); }
  std::vector<std::string> Loaded() { return Read("chart_ascii", {"chart_date", "loaded"}); }

  void Run(const std::string& sql) {
    const auto done = Db.Execute(sql);
    ASSERT_TRUE(done) << done.error().Description;
  }

  ConversionResult Convert(const std::vector<Date>& dates, Progress& progress) {
    std::vector<ChartToConvert> charts;
    for (const Date date : dates) charts.push_back({date, Manual});
    return WriteChartRecords(Database, Lists, "Rg12", charts, Options, Boxes, progress);
  }
  ConversionResult Convert(const std::vector<Date>& dates) {
    UnwatchedProgress progress;
    return Convert(dates, progress);
  }

  Connection Db;  ///< beside the conversion's own
  ScriptedDialogs Boxes;
  hyetex::Settings Settings{Folder.Path()};
  HyetexPlotDB Database{Settings, Boxes};
  ReferenceLists Lists;
  bool Manual = false;
  ConversionOptions Options{.Variables = {.GmtShift = 2.0F / 24}, .LogFolder = Folder.Path()};
};

}  // namespace hyetex::test
