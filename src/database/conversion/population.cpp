#include "database/conversion/population.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/conversion/chart_rows.h"
#include "database/conversion/chart_writer.h"
#include "database/conversion/data_log.h"
#include "database/conversion/old_rows.h"
#include "database/store/chart_ascii.h"

namespace hyetex {
namespace {

// Errors that cost no more than the chart at hand: a constraint of the table, and two of a row that is not
// there to be changed.
bool IsPassedOver(const DbError& error) {
  return error.Number == db_error::ConstraintViolation || error.Number == db_error::NotNow ||
         error.Number == db_error::NotUpdatable;
}

class Conversion {
 public:
  Conversion(HyetexPlotDB& database, const ReferenceLists& lists, const std::string& instrumentCode,
             const ConversionOptions& options, Dialogs& dialogs)
      : database_(database),
        stations_(lists.Stations),
        code_(instrumentCode),
        options_(options),
        dialogs_(dialogs),
        log_(options.LogFolder, options.Log) {}

  ConversionResult Run(std::span<const ChartToConvert> charts, Progress& progress) {
    log_.StartLog();
    const auto chosen = InTableOrder(charts);
    if (!chosen) {
      Show(chosen.error());
      result_.Problems.push_back("the charts cannot be listed: " + chosen.error().Description);
      result_.Failed = true;
    } else {
      ConvertAll(*chosen, progress);
    }
    writer_.reset();
    database_.Close();
    if (!log_.Trouble().empty()) {
      result_.Problems.push_back(log_.Trouble());
      result_.Failed = true;
    }
    return std::move(result_);
  }

 private:
  // ---- Which charts

  // Without their texts, so that a run over any number of charts needs no more memory than one over few.
  DbResult<std::vector<ChartToConvert>> InTableOrder(std::span<const ChartToConvert> charts) {
    std::vector<ChartToConvert> found;
    Selection selection = ChartAsciiOf(code_);
    selection.Columns = {column::ChartDate};
    if (const auto opened = database_.OpenChartAscii(std::move(selection)); !opened)
      return tl::unexpected(opened.error());
    std::map<std::int64_t, const ChartToConvert*> open;
    for (const ChartToConvert& chart : charts) open.emplace(SecondsOf(chart.ChartDate), &chart);
    Recordset& table = database_.ChartAsciiTable;
    const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
      const auto date = table.Value(0);
      if (!date) return tl::unexpected(date.error());
      if (const auto wanted = open.extract(SecondsOf(DateOf(*date)))) found.push_back(*wanted.mapped());
      return !open.empty();
    });
    table.Close();
    if (!walked) return tl::unexpected(walked.error());
    for (const auto& [seconds, chart] : open) Unconvertible(*chart, "it is no longer in the database");
    return found;
  }

  void ConvertAll(const std::vector<ChartToConvert>& charts, Progress& progress) {
    const auto total = static_cast<std::int64_t>(charts.size());
    for (std::int64_t i = 0; i < total; ++i) {
      if (!progress.Step(i, total, "ProcespFilesing record number " + std::to_string(i + 1))) {
        result_.Cancelled = true;
        return;
      }
      if (ConvertWithRetry(charts[static_cast<std::size_t>(i)])) continue;
      result_.ChartsFailed += static_cast<int>(total - i - 1);
      if (i + 1 < total)
        result_.Problems.push_back(std::to_string(total - i - 1) + " more charts were not tried");
      return;
    }
    progress.Step(total, total, "");
  }

  // False when the database is gone and the run ends.
  bool ConvertWithRetry(const ChartToConvert& chart) {
    auto done = ConvertRecords(chart);
    if (!done && database_.DatabaseConnection.IsLost(done.error())) {  // once more, on a new connection
      database_.Close();
      writer_.reset();
      if (const auto opened = database_.OpenDatabase(); !opened) {
        Fail(chart.ChartDate, done.error());
        return false;
      }
      done = ConvertRecords(chart);
    }
    if (!done) Fail(chart.ChartDate, done.error());
    return true;
  }

  // ---- One chart

  // All records of the chart, which are more than one where a table holds it twice.
  DbResult<void> ConvertRecords(const ChartToConvert& chart) {
    if (auto opened = database_.OpenChartAscii(ChartAsciiOf(code_, chart.ChartDate)); !opened) return opened;
    Recordset& table = database_.ChartAsciiTable;
    auto converted = ForEachRow(table, [&]() -> DbResult<bool> {
      if (const auto done = ConvertRecord(chart, table); !done) return tl::unexpected(done.error());
      return true;
    });
    table.Close();
    return converted;
  }

  DbResult<void> ConvertRecord(const ChartToConvert& chart, Recordset& table) {
    if (!writer_) {
      auto writer = ChartWriter::Open(database_.DatabaseConnection);
      if (!writer) return tl::unexpected(writer.error());
      writer_.emplace(*std::move(writer));
    }
    const auto text = ChartAsciiText(table, MostChartBytes);
    if (!text) return tl::unexpected(text.error());
    log_.LogLine(std::string(60, '*'));
    if (const auto why = Read(*text)) {
      Unconvertible(chart, *why);
      return {};
    }
    const StationRecord& station = stations_[static_cast<std::size_t>(reading_.Chart.InstrumentIndex)];

    const ChartRows rows = MakeChartRows(reading_, chart.Manual, options_.Variables.GmtShift);
    const auto old = OldRows::Find(database_, station.InstrumentCode, rows);
    if (!old) return tl::unexpected(old.error());
    if (!options_.Overwrite && old->WantQuestion() && !MayReplace(rows)) {
      ++result_.ChartsSkipped;
      return {};
    }
    if (auto stored = Store(chart, rows, *old, station, table); !stored) return stored;
    for (const std::string& note : rows.Notes) Problem(chart.ChartDate, note);
    result_.RowsWritten += static_cast<std::int64_t>(rows.Rows.size());
    ++result_.ChartsConverted;
    return {};
  }

  // Why the chart gives no rows; nothing when it stands in reading_.
  std::optional<std::string> Read(const std::string& text) {
    if (text.size() > MostChartBytes) return "its text is too long to be a chart";
    const auto read = ReadChartToConvert(text, options_.Variables, stations_, reading_);
    if (!read) return read.error();
    return writer_->CheckStation(stations_[static_cast<std::size_t>(reading_.Chart.InstrumentIndex)]);
  }

  bool MayReplace(const ChartRows& rows) {
    const auto local = [&](Date gmt) {
      return GeneralDateText(gmt + static_cast<double>(options_.Variables.GmtShift));
    };
    return dialogs_.MessageBox("Populating CHART table",
                               "This operation will overwrite pre-existing records in the CHART table for " +
                                   local(rows.Start) + " to " + local(rows.End) +
                                   ".\r\nAre you sure you want to continue ?",
                               BoxButtons::NoUnlessYes, BoxIcon::Question) == BoxAnswer::Yes;
  }

  // The old rows make way, the new ones come, the chart is marked: all of it, or nothing.
  DbResult<void> Store(const ChartToConvert& chart, const ChartRows& rows, const OldRows& old,
                       const StationRecord& station, Recordset& table) {
    Connection& connection = database_.DatabaseConnection;
    if (auto told = LogDeletion(); !told) return told;

    auto transaction = Transaction::Begin(connection);
    if (!transaction) return tl::unexpected(transaction.error());
    for (const ChartRow& row : old.Rows()) log_.LogLine(DateText(row.Start) + " to " + DateText(row.End));
    const auto deleted = old.Delete(connection);
    if (!deleted) return tl::unexpected(deleted.error());
    log_.LogLine(std::to_string(*deleted) + " records deleted from DB");

    LogRows(rows);
    if (auto written = writer_->Write(rows, station, reading_.Chart.Reliability,
                                      [&](const std::string& line) { Problem(chart.ChartDate, line); });
        !written)
      return written;
    log_.LogLine(std::string(88, '-'));
    log_.LogLine(std::to_string(rows.Rows.size()) + " records added to DB");

    if (table.HasField(column::Loaded)) {
      if (auto set = table.SetValue(column::Loaded, std::int64_t{1}); !set) return set;
      if (auto updated = table.Update(); !updated) return updated;
    }
    return transaction->Commit();
  }

  void LogRows(const ChartRows& rows) {
    if (!options_.Log) return;
    for (const ChartRow& row : rows.Rows)
      log_.LogLine(DateText(row.Start) + "  " + DateText(row.End) + "  " +
                   (row.Depth ? RoundedText(*row.Depth, 2) : ""));
  }

  // The heading of what is deleted, which an empty table does without.
  DbResult<void> LogDeletion() {
    if (!options_.Log) return {};
    if (!hasRows_) {
      if (auto opened = database_.OpenChart({.Columns = {column::Depth}}); !opened) return opened;
      hasRows_ = !database_.ChartTable.Eof();
      database_.ChartTable.Close();
    }
    if (hasRows_) log_.LogLine("Deleted records for ");
    return {};
  }

  // ---- What the operator is told

  void Problem(Date chartDate, const std::string& what) {
    const std::string line = ShownText(code_) + " " + GeneralDateText(chartDate) + ": " + ShownText(what);
    log_.LogLine(line);
    result_.Problems.push_back(line);
  }

  void Unconvertible(const ChartToConvert& chart, const std::string& why) {
    Problem(chart.ChartDate, "not converted: " + why);
    ++result_.ChartsFailed;
  }

  // The chart is as it was before; what a driver holds of the failed statements is let go.
  void Fail(Date chartDate, const DbError& error) {
    writer_.reset();
    database_.ChartAsciiTable.Close();
    database_.ChartTable.Close();
    Problem(chartDate, "not converted, nothing of it was changed: " + error.Description);
    ++result_.ChartsFailed;
    if (!IsPassedOver(error)) Show(error);
  }

  // Once for each error, since what ails one chart often ails all that follow.
  void Show(const DbError& error) {
    if (shown_.emplace(error.Number, error.Description).second) database_.Show(error);
  }

  HyetexPlotDB& database_;
  std::span<const StationRecord> stations_;
  const std::string& code_;
  const ConversionOptions& options_;
  Dialogs& dialogs_;
  DataLog log_;
  std::optional<ChartWriter> writer_;
  ChartReading reading_;
  bool hasRows_ = false;
  std::set<std::pair<std::int32_t, std::string>> shown_;
  ConversionResult result_;
};

}  // namespace

ConversionResult WriteChartRecords(HyetexPlotDB& database, const ReferenceLists& lists,
                                   const std::string& instrumentCode, std::span<const ChartToConvert> charts,
                                   const ConversionOptions& options, Dialogs& dialogs, Progress& progress) {
  return Conversion(database, lists, instrumentCode, options, dialogs).Run(charts, progress);
}

std::string ConversionMessage(const ConversionResult& result, bool logged) {
  std::string text =
      result.Cancelled ? "The conversion was stopped, " : "The procespFiles has been completed succesfully ";
  text += std::to_string(result.RowsWritten) + " records written";
  if (logged) text += ", would you like to see the data log?";
  return text;
}

}  // namespace hyetex
