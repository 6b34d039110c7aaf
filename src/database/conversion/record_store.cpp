#include "database/conversion/record_store.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"

namespace hyetex {
namespace {

void Add(ConversionResult&& done, ConversionResult& result) {
  result.RowsWritten += done.RowsWritten;
  result.ChartsConverted += done.ChartsConverted;
  result.ChartsSkipped += done.ChartsSkipped;
  result.ChartsFailed += done.ChartsFailed;
  std::ranges::move(done.Problems, std::back_inserter(result.Problems));
}

}  // namespace

DbResult<void> RecordStore::Open() {
  if (writer_) return {};
  if (!database_.DatabaseConnection.IsOpen())
    if (auto opened = database_.OpenDatabase(); !opened) return opened;
  const auto hasMark = HasLoadedMark(database_.DatabaseConnection);
  if (!hasMark) return tl::unexpected(hasMark.error());
  hasMark_ = *hasMark;
  const auto hasBook = HasConversionBook(database_.DatabaseConnection);
  if (!hasBook) return tl::unexpected(hasBook.error());
  if (*hasBook) book_.emplace(database_, options_.User);
  auto writer = ChartWriter::Open(database_.DatabaseConnection);
  if (!writer) return tl::unexpected(writer.error());
  writer_.emplace(*std::move(writer));
  return {};
}

DbResult<void> RecordStore::Store(Transaction& transaction, std::span<const RecordToConvert> records,
                                  ConversionResult& result) {
  if (auto looked = LookForRows(); !looked) return looked;
  const bool hadRows = hasRows_;
  ConversionResult done;
  const auto stored = [&]() -> DbResult<void> {
    for (const RecordToConvert& record : records)
      if (auto one = StoreOne(record, done); !one) return one;
    if (auto written = writer_->Finish(); !written) return written;
    if (book_)
      if (auto written = book_->Finish(); !written) return written;
    if (auto marked = Mark(records); !marked) return marked;
    return transaction.Commit();
  }();
  if (stored)
    Add(std::move(done), result);
  else
    hasRows_ = hadRows;
  if (book_) book_->Forget();
  return stored;
}

DbResult<void> RecordStore::StoreOne(const RecordToConvert& record, ConversionResult& result) {
  const Date date = record.Chart.ChartDate;
  log_.LogLine(std::string(60, '*'));
  if (record.Why) {
    Unconvertible(date, *record.Why, result);
    return {};
  }
  if (!record.Writes()) {
    ++result.ChartsSkipped;
    return {};
  }
  if (hasRows_) log_.LogLine("Deleted records for ");
  for (const ChartRow& row : record.Old->Rows())
    log_.LogLine(DateText(row.Start) + " to " + DateText(row.End));
  if (auto deleted = record.Old->Delete(database_.DatabaseConnection); !deleted) return deleted;
  log_.LogLine(std::to_string(record.Old->Rows().size()) + " records deleted from DB");

  const std::vector<ChartRow>& rows = record.Rows.Rows;
  if (log_.IsKept())
    for (const ChartRow& row : rows)
      log_.LogLine(DateText(row.Start) + "  " + DateText(row.End) + "  " +
                   (row.Depth ? RoundedText(*row.Depth, 2) : ""));
  if (auto written = writer_->Write(record.Rows, *record.Station, record.Reliability,
                                    [&](const std::string& line) { Problem(date, line, result); });
      !written)
    return written;
  if (book_)
    book_->Add({.InstrumentCode = record.Station->InstrumentCode,
                .ChartDate = date,
                .First = record.Rows.Start,
                .Last = record.Rows.End,
                .Variables = options_.Variables,
                .Alpha = record.Rows.Alpha,
                .Manual = record.Chart.Manual,
                .ChosenDepth = record.Rows.ChosenDepth,
                .Rows = static_cast<std::int64_t>(rows.size())});
  log_.LogLine(std::string(88, '-'));
  log_.LogLine(std::to_string(rows.size()) + " records added to DB");
  for (const std::string& note : record.Rows.Notes) Problem(date, note, result);
  hasRows_ = true;
  result.RowsWritten += static_cast<std::int64_t>(rows.size());
  ++result.ChartsConverted;
  return {};
}

DbResult<void> RecordStore::Mark(std::span<const RecordToConvert> records) {
  std::vector<RowPlace> places;
  for (const RecordToConvert& record : records)
    if (record.Writes()) places.push_back(record.Place);
  if (!hasMark_ || places.empty()) return {};
  return Recordset::SetInRows(database_.DatabaseConnection, table_name::ChartAscii, column::Loaded,
                              std::int64_t{1}, places);
}

// The log's heading of what is deleted, which an empty table does without.
DbResult<void> RecordStore::LookForRows() {
  if (!log_.IsKept() || hasRows_) return {};
  if (auto opened = database_.OpenChart({.Columns = {column::Depth}}); !opened) return opened;
  hasRows_ = !database_.ChartTable.Eof();
  database_.ChartTable.Close();
  return {};
}

void RecordStore::Problem(Date chartDate, const std::string& what, ConversionResult& result) {
  const std::string line = ShownText(code_) + " " + GeneralDateText(chartDate) + ": " + ShownText(what);
  log_.LogLine(line);
  result.Problems.push_back(line);
}

void RecordStore::Unconvertible(Date chartDate, const std::string& why, ConversionResult& result) {
  Problem(chartDate, "not converted: " + why, result);
  ++result.ChartsFailed;
}

}  // namespace hyetex
