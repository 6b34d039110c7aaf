#include "database/store/loading.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "core/files.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"
#include "database/store/chart_to_store.h"
#include "database/store/instruments.h"

namespace hyetex {
namespace {

// Charts are written in batches, so few that the windows do not wait, and committed in groups, so many that
// what a commit costs does not count.
constexpr std::size_t BatchBytes = 512U << 10, GroupBytes = 8U << 20, BatchCharts = 100, GroupCharts = 1000;

// By then it is not the charts: the table is gone, or another program holds it.
constexpr int MostRefusedInARow = 3;

class Loader {
 public:
  Loader(HyetexPlotDB& database, const std::vector<StationRecord>& stations, LoadResult& result,
         Progress& progress)
      : database_(database), stations_(stations), result_(result), progress_(progress) {}

  DbResult<void> Open() {
    auto known = ReadInstrumentCodes(database_);
    if (!known) return tl::unexpected(known.error());
    instruments_ = *std::move(known);
    if (!database_.DatabaseConnection.IsOpen())
      if (const auto opened = database_.OpenDatabase(); !opened) return opened;
    const auto writer = RowWriter::Open(database_.DatabaseConnection, table_name::ChartAscii, ChartColumns());
    if (!writer) return tl::unexpected(writer.error());
    columns_ = writer->Columns();
    return {};
  }

  /// Takes the next file. Returns false when the run has ended.
  bool Add(const std::string& path) {
    auto chart = Make(path);
    if (!chart) return true;
    if (const auto same = seen_.find(chart->Key); same != seen_.end()) {
      chart->Notes.push_back(ShownName(path) + " holds the same chart as " + same->second +
                             ", and took its place.");
      if (!Commit()) return false;
    }
    seen_.insert_or_assign(chart->Key, ShownName(path));
    groupBytes_ += chart->Bytes;
    batchBytes_ += chart->Bytes;
    group_.push_back(*std::move(chart));
    if (groupBytes_ >= GroupBytes || group_.size() >= GroupCharts) return Commit();
    if (batchBytes_ < BatchBytes && group_.size() - written_ < BatchCharts) return true;
    const auto written = WriteBatch();
    return written || Recover(written.error());
  }

  /// Makes what has come together a part of the database. Returns false when the run has ended.
  bool Commit() {
    if (group_.empty()) return true;
    auto done = WriteBatch();
    writer_.reset();
    if (done) done = transaction_->Commit();
    if (!done) return Recover(done.error());
    for (const ChartToStore& chart : group_) {
      result_.Loaded.push_back(chart.Path);
      result_.Report.Notes.insert(result_.Report.Notes.end(), chart.Notes.begin(), chart.Notes.end());
    }
    refusedInARow_ = 0;
    Forget();
    return true;
  }

 private:
  void Refuse(const std::string& path, const std::string& why) {
    result_.Report.Refused.push_back(ShownName(path) + ": " + ShownText(why));
  }

  // Nothing for a file that is refused.
  std::optional<ChartToStore> Make(const std::string& path) {
    auto chart = MakeChartToStore(path, stations_, columns_);
    if (chart && !instruments_.contains(chart->Key.Code))
      chart = Failure("its instrument " + CodeOf(*chart) + " is not in the database");
    if (chart) return *std::move(chart);
    Refuse(path, chart.error());
    return std::nullopt;
  }

  static const std::string& CodeOf(const ChartToStore& chart) {
    return std::get<std::string>(chart.Row[chart_column::Code]);
  }

  void Forget() {
    database_.ChartAsciiTable.Close();
    writer_.reset();
    transaction_.reset();
    group_.clear();
    stored_.clear();
    written_ = groupBytes_ = batchBytes_ = 0;
  }

  // After an error nothing of the group is in the database. One of its charts may be at fault, and is to be
  // the only one left out.
  bool Recover(const DbError& error) {
    const std::vector<ChartToStore> group = std::exchange(group_, {});
    Forget();
    if (error.Number == db_error::Cancelled) {
      result_.Report.Cancelled = true;
    } else if (IsLocked(error) || database_.DatabaseConnection.IsLost(error)) {
      result_.Report.Stopped = error;
    } else if (group.size() == 1) {
      Refuse(group[0].Path, NumberAndDescription(error));
      if (error.Number != db_error::ConstraintViolation && ++refusedInARow_ == MostRefusedInARow)
        result_.Report.Stopped = error;
    } else {
      for (const ChartToStore& chart : group) {
        auto again = Make(chart.Path);  // its text has gone to the database
        if (!again) continue;
        again->Notes = chart.Notes;
        group_.push_back(*std::move(again));
        if (!Commit()) break;
      }
    }
    return !result_.Report.Stopped && !result_.Report.Cancelled;
  }

  // Of the group what is not yet written.
  DbResult<void> WriteBatch() {
    const std::span<ChartToStore> batch = std::span(group_).subspan(written_);
    if (!transaction_) {
      auto transaction =
          Transaction::BeginWriting(database_.DatabaseConnection, table_name::ChartAscii, progress_);
      if (!transaction) return tl::unexpected(transaction.error());
      transaction_.emplace(*std::move(transaction));
    }
    if (auto deleted = DeleteOld(batch); !deleted) return deleted;
    if (!writer_) {
      auto writer = RowWriter::Open(database_.DatabaseConnection, table_name::ChartAscii, ChartColumns());
      if (!writer) return tl::unexpected(writer.error());
      writer_.emplace(*std::move(writer));
    }
    for (ChartToStore& chart : batch)
      if (auto added = writer_->Add(std::move(chart.Row)); !added) return added;
    if (const auto finished = writer_->Finish(); !finished) return tl::unexpected(finished.error());
    written_ = group_.size();
    batchBytes_ = 0;
    return {};
  }

  // The records of these charts. What an instrument has is looked at once in a transaction, and once more
  // only where there is something to delete.
  DbResult<void> DeleteOld(std::span<const ChartToStore> charts) {
    std::map<std::string, std::set<ChartKey>> ofInstrument;
    for (const ChartToStore& chart : charts) ofInstrument[CodeOf(chart)].insert(chart.Key);
    for (const auto& [code, keys] : ofInstrument) {
      const auto known = stored_.find(code);
      const auto isStored = [&](const ChartKey& key) { return known->second.contains(key); };
      if (known != stored_.end() && std::none_of(keys.begin(), keys.end(), isStored)) continue;
      if (auto deleted = DeleteOld(code, keys); !deleted) return deleted;
    }
    return {};
  }

  DbResult<void> DeleteOld(const std::string& code, const std::set<ChartKey>& keys) {
    Selection selection = ChartAsciiOf(code);
    selection.Columns = {ChartColumns()[chart_column::Code], ChartColumns()[chart_column::Date]};
    if (auto opened = database_.OpenChartAscii(std::move(selection)); !opened) return opened;
    Recordset& table = database_.ChartAsciiTable;
    std::set<ChartKey>& stored = stored_[code];
    const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
      const auto storedCode = table.Value(0), date = table.Value(1);
      if (!storedCode) return tl::unexpected(storedCode.error());
      if (!date) return tl::unexpected(date.error());
      const ChartKey key(TextOf(*storedCode), DateOf(*date));
      stored.insert(key);
      if (keys.contains(key))
        if (const auto deleted = table.Delete(); !deleted) return tl::unexpected(deleted.error());
      return true;
    });
    table.Close();
    return walked;
  }

  HyetexPlotDB& database_;
  const std::vector<StationRecord>& stations_;
  LoadResult& result_;
  Progress& progress_;
  std::set<std::string> instruments_;  // of the database
  std::vector<CatalogColumn> columns_;
  std::vector<ChartToStore> group_;  // of one transaction; what is written of it has given its row away
  std::size_t written_ = 0, groupBytes_ = 0, batchBytes_ = 0;
  std::map<std::string, std::set<ChartKey>>
      stored_;  // of the group's instruments, what is or was in the table
  std::optional<Transaction> transaction_;
  std::optional<RowWriter> writer_;
  int refusedInARow_ = 0;
  std::map<ChartKey, std::string> seen_;  // the file's name
};

}  // namespace

LoadResult LoadFiles(HyetexPlotDB& database, const ReferenceLists& lists, std::span<const std::string> paths,
                     Progress& progress) {
  const ClosedAfter closed(database);
  LoadResult result;
  RunReport& report = result.Report;
  Loader loader(database, lists.Stations, result, progress);
  if (const auto opened = loader.Open(); !opened) {
    report.Stopped = opened.error();
    report.NotReached = paths.size();
    return result;
  }
  std::size_t done = 0;
  for (bool goesOn = true; goesOn && done < paths.size(); ++done) {
    const std::string& path = paths[done];
    report.Cancelled = !progress.Step(static_cast<std::int64_t>(done),
                                      static_cast<std::int64_t>(paths.size()), BaseName(path));
    if (report.Cancelled) break;
    goesOn = loader.Add(path);
  }
  // What was taken before the operator stopped the work is stored as well.
  if (!report.Stopped) loader.Commit();
  if (report.Cancelled || report.Stopped)
    report.NotReached = paths.size() - result.Loaded.size() - report.Refused.size();
  return result;
}

std::string LoadMessage(const LoadResult& result) {
  return ClosingMessage(
      std::to_string(result.Loaded.size()) + " files transferred from file to Database chart_ascii table",
      result.Report);
}

}  // namespace hyetex
