#include "database/conversion/population.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <utility>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/conversion/data_log.h"
#include "database/conversion/record_reader.h"
#include "database/conversion/record_store.h"
#include "database/store/chart_ascii.h"

namespace hyetex {
namespace {

// Charts go in groups, each a transaction. Charts of a group lie close together, since their old rows are
// looked for all at once.
constexpr double MostDaysBetween = 31;

// Errors that cost no more than the chart at hand: a constraint of the table, and two of a row that is not
// there to be changed.
bool IsPassedOver(const DbError& error) {
  return error.Number == db_error::ConstraintViolation || error.Number == db_error::NotNow ||
         error.Number == db_error::NotUpdatable;
}

// How many of the charts make a group of at most `most`.
std::size_t GroupSize(std::span<const ChartToConvert> charts, std::size_t most) {
  most = std::min(most, charts.size());
  for (std::size_t i = 1; i < most; ++i)
    if (std::abs(charts[i].ChartDate - charts[i - 1].ChartDate) > MostDaysBetween) return i;
  return most;
}

bool SameInstrument(const RecordToConvert& a, const RecordToConvert& b) {
  return EqualIgnoringCase(a.Station->InstrumentCode, b.Station->InstrumentCode);
}

class Conversion {
 public:
  Conversion(HyetexPlotDB& database, const ReferenceLists& lists, const std::string& instrumentCode,
             const ConversionOptions& options, Dialogs& dialogs, Progress& progress)
      : database_(database),
        options_(options),
        dialogs_(dialogs),
        progress_(progress),
        log_(options.LogFolder, options.Log),
        reader_(database, instrumentCode, lists.Stations, options.Variables),
        store_(database, instrumentCode, options, log_) {}

  ConversionResult Run(std::span<const ChartToConvert> charts) {
    // In 32 bits a whole number of hours is not quite one.
    if (!(std::abs(options_.Variables.GmtShift * 24) < MostGmtHours + 0.001F)) {
      result_.Problems.push_back("hours to GMT are " + std::to_string(-MostGmtHours) + " to " +
                                 std::to_string(MostGmtHours) + "; nothing was converted");
      result_.Failed = true;
      return std::move(result_);
    }
    log_.StartLog();
    std::vector<ChartToConvert> missing;
    const auto chosen = reader_.InOrder(charts, missing);
    for (const ChartToConvert& chart : missing)
      store_.Unconvertible(chart.ChartDate, "it is no longer in the database", result_);
    if (!chosen) {
      Show(chosen.error());
      result_.Problems.push_back("the charts cannot be listed: " + chosen.error().Description);
      result_.Failed = true;
    } else {
      SayIfRowsMayRemain();
      ConvertAll(*chosen);
    }
    store_.Release();
    database_.Close();
    if (!log_.Trouble().empty()) {
      result_.Problems.push_back(log_.Trouble());
      result_.Failed = true;
    }
    return std::move(result_);
  }

 private:
  // ---- Groups of charts

  void ConvertAll(std::span<const ChartToConvert> charts) {
    const std::size_t total = charts.size();
    const auto step = [&](std::size_t at) {
      return progress_.Step(static_cast<std::int64_t>(at), static_cast<std::int64_t>(total),
                            "ProcespFilesing record number " + std::to_string(at + 1));
    };
    ChartGroup group;
    std::size_t done = 0;
    while (done < total && !gone_ && !result_.Cancelled) {
      const std::size_t wanted = GroupSize(charts.subspan(done), group.Size());
      std::size_t taken = 0;
      while (taken < wanted && step(done + taken)) ++taken;
      result_.Cancelled = taken < wanted;
      if (taken > 0) Convert(charts.subspan(done, taken));
      done += taken;
      group.Took(reader_.TextBytes());
    }
    if (done == total) progress_.Step(static_cast<std::int64_t>(total), static_cast<std::int64_t>(total), "");
    if (!gone_ || done == total) return;
    result_.ChartsFailed += static_cast<int>(total - done);
    result_.Problems.push_back(std::to_string(total - done) + " more charts were not tried");
  }

  // Does the work, and once more on a new connection where the old one was lost meanwhile.
  template <typename Work>
  auto Tried(Work&& work) {
    auto done = work();
    if (!done) transaction_.reset();
    if (!done && IsLocked(done.error())) gone_ = true;
    if (!done && done.error().Number == db_error::Cancelled) result_.Cancelled = gaveUp_ = true;
    if (done || gone_ || gaveUp_ || !database_.DatabaseConnection.IsLost(done.error())) return done;
    store_.Release();
    database_.Close();
    gone_ = !database_.OpenDatabase();
    return gone_ ? done : work();
  }

  // A group that cannot be read whole is read chart by chart.
  void Convert(std::span<const ChartToConvert> charts) {
    auto records = Tried([&]() -> DbResult<std::vector<RecordToConvert>> {
      if (const auto begun = BeginWriting(); !begun) return tl::unexpected(begun.error());
      return reader_.Read(charts);
    });
    if (gaveUp_) return;
    if (records) {
      AskForCutTexts(*records);
      Store(*records);
      transaction_.reset();
    } else if (charts.size() == 1 || gone_) {
      for (const ChartToConvert& chart : charts) Fail(chart.ChartDate, records.error());
    } else {
      for (std::size_t i = 0; i < charts.size(); ++i) Convert(charts.subspan(i, 1));
    }
  }

  // A group that cannot be stored whole is stored record by record.
  void Store(std::span<RecordToConvert> records) {
    while (!records.empty()) {
      std::size_t count = records.size();
      const auto stored = Tried([&] { return StoreSome(records, count); });
      if (gaveUp_) return;
      if (!stored && (count == 1 || gone_)) {
        for (const RecordToConvert& record : records.first(count))
          Fail(record.Chart.ChartDate, stored.error());
      } else if (!stored) {
        store_.Release();
        log_.LogLine(
            "The last " + std::to_string(count) +
            " charts cannot be stored together and follow one by one: " + stored.error().Description);
        for (std::size_t i = 0; i < count; ++i) Store(records.subspan(i, 1));
      }
      records = records.subspan(count);
    }
  }

  // ---- Records

  // What decides the new rows is read while no other program of ours writes.
  DbResult<void> BeginWriting() {
    if (auto opened = store_.Open(); !opened) return opened;
    auto transaction = Transaction::BeginWriting(database_.DatabaseConnection, table_name::Chart, progress_);
    if (!transaction) return tl::unexpected(transaction.error());
    transaction_.emplace(*std::move(transaction));
    return {};
  }

  // Begins again what a commit, an error or a question has ended. Another program may have stored other texts
  // since; a chart that the table holds twice stays as it was read.
  DbResult<void> Resume(std::span<RecordToConvert> records) {
    if (auto begun = BeginWriting(); !begun) return begun;
    std::vector<ChartToConvert> charts;
    for (const RecordToConvert& record : records) charts.push_back(record.Chart);
    auto fresh = reader_.Read(charts);
    if (!fresh) return tl::unexpected(fresh.error());
    if (fresh->size() != records.size()) return {};
    for (std::size_t i = 0; i < records.size(); ++i) {
      (*fresh)[i].MayReplace = records[i].MayReplace;
      (*fresh)[i].CutAllowed = records[i].CutAllowed && (*fresh)[i].CutOff == records[i].CutOff;
      RefuseCutText((*fresh)[i]);
      records[i] = std::move((*fresh)[i]);
    }
    return {};
  }

  // Stores the first records, as many as can be stored together, and tells how many were tried.
  DbResult<void> StoreSome(std::span<RecordToConvert> records, std::size_t& count) {
    count = records.size();
    std::optional<OldRows> askedAbout;
    while (true) {
      if (!transaction_)
        if (auto resumed = Resume(records); !resumed) return resumed;
      for (RecordToConvert& record : records)
        if (!record.Why) record.Why = store_.CheckStation(*record.Station);
      if (auto found = FindOldRows(records); !found) return found;
      RecordToConvert& first = records.front();
      if (askedAbout && first.Old && !first.Old->SameRows(*askedAbout)) first.MayReplace.reset();
      if (!NeedsAnswer(first)) break;
      // Nobody has to wait for an operator who thinks.
      transaction_.reset();
      askedAbout = first.Old;
      first.MayReplace = AskToReplace(first.Rows);
    }
    count = Independent(records);
    auto stored = store_.Store(*transaction_, records.first(count), result_);
    transaction_.reset();
    return stored;
  }

  DbResult<void> FindOldRows(std::span<RecordToConvert> records) {
    std::vector<RecordToConvert*> wanted;
    std::vector<OldRows::Chart> charts;
    for (RecordToConvert& record : records) {
      record.Old.reset();
      if (record.Why || (!wanted.empty() && !SameInstrument(record, *wanted.front()))) continue;
      wanted.push_back(&record);
      charts.push_back({record.Chart.ChartDate, &record.Rows});
    }
    if (wanted.empty()) return {};
    auto old = OldRows::Find(database_, wanted.front()->Station->InstrumentCode, charts, store_.HasBook());
    if (!old) return tl::unexpected(old.error());
    for (std::size_t i = 0; i < wanted.size(); ++i) wanted[i]->Old = std::move((*old)[i]);
    return {};
  }

  bool NeedsAnswer(const RecordToConvert& record) const {
    return !options_.Overwrite && record.Old && record.Old->WantQuestion() && !record.MayReplace;
  }

  // How many of the first records can be stored at once: of one instrument, none waiting for an answer but
  // the first, and none whose old rows those before it decide.
  std::size_t Independent(std::span<const RecordToConvert> records) const {
    for (std::size_t i = 1; i < records.size(); ++i) {
      if (records[i].Why) continue;
      if (!records[i].Old || NeedsAnswer(records[i])) return i;
      const auto decides = [&](const RecordToConvert& before) {
        return before.Old && records[i].Old->DependsOn(*before.Old);
      };
      if (std::ranges::any_of(records.first(i), decides)) return i;
    }
    return records.size();
  }

  void AskForCutTexts(std::span<RecordToConvert> records) {
    for (RecordToConvert& record : records) {
      if (!record.CutOff) continue;
      transaction_.reset();  // nobody has to wait for an operator who thinks
      record.CutAllowed = AskForCutText(record);
      RefuseCutText(record);
    }
  }

  static void RefuseCutText(RecordToConvert& record) {
    if (record.CutOff && !record.CutAllowed) record.Why = "its stored text is cut off: " + *record.CutOff;
  }

  bool AskForCutText(const RecordToConvert& record) {
    return dialogs_.MessageBox("Populating CHART table",
                               "The stored text of the chart of " + GeneralDateText(record.Chart.ChartDate) +
                                   " is cut off: " + *record.CutOff +
                                   ".\r\nDo you want to convert what is left of it ?",
                               BoxButtons::NoUnlessYes, BoxIcon::Warning) == BoxAnswer::Yes;
  }

  bool AskToReplace(const ChartRows& rows) {
    const auto local = [&](Date gmt) {
      return GeneralDateText(gmt + static_cast<double>(options_.Variables.GmtShift));
    };
    return dialogs_.MessageBox("Populating CHART table",
                               "This operation will overwrite pre-existing records in the CHART table for " +
                                   local(rows.Start) + " to " + local(rows.End) +
                                   ".\r\nAre you sure you want to continue ?",
                               BoxButtons::NoUnlessYes, BoxIcon::Question) == BoxAnswer::Yes;
  }

  // ---- What the operator is told

  void SayIfRowsMayRemain() {
    if (!reader_.AnyIsLoaded()) return;
    const auto hasBook = HasConversionBook(database_.DatabaseConnection);
    if (!hasBook || *hasBook) return;
    const std::string text =
        "The database has no table " + std::string(table_name::Conversion) +
        ", and charts are converted again. Rows that an earlier run wrote with other hours to GMT, lapse, "
        "alpha or depth may remain in CHART.";
    log_.LogLine(text);
    dialogs_.MessageBox("Populating CHART table", text, BoxButtons::Ok, BoxIcon::Warning);
  }

  // The chart is as it was before; what a driver holds of the failed statements is let go.
  void Fail(Date chartDate, const DbError& error) {
    store_.Release();
    database_.ChartAsciiTable.Close();
    database_.ChartTable.Close();
    store_.Problem(chartDate, "not converted, nothing of it was changed: " + error.Description, result_);
    ++result_.ChartsFailed;
    if (!IsPassedOver(error)) Show(error);
  }

  // Once for each error, since what ails one chart often ails all that follow.
  void Show(const DbError& error) {
    if (shown_.emplace(error.Number, error.Description).second) database_.Show(error);
  }

  HyetexPlotDB& database_;
  const ConversionOptions& options_;
  Dialogs& dialogs_;
  Progress& progress_;
  DataLog log_;
  RecordReader reader_;
  RecordStore store_;
  std::optional<Transaction> transaction_;  // that holds the right to write
  bool gone_ = false;                       // the database: the run ends
  bool gaveUp_ = false;                     // the operator, while another program wrote
  std::set<std::pair<std::int32_t, std::string>> shown_;
  ConversionResult result_;
};

}  // namespace

ConversionResult WriteChartRecords(HyetexPlotDB& database, const ReferenceLists& lists,
                                   const std::string& instrumentCode, std::span<const ChartToConvert> charts,
                                   const ConversionOptions& options, Dialogs& dialogs, Progress& progress) {
  return Conversion(database, lists, instrumentCode, options, dialogs, progress).Run(charts);
}

std::string ConversionMessage(const ConversionResult& result, bool logged) {
  std::string text =
      result.Cancelled ? "The conversion was stopped, " : "The procespFiles has been completed succesfully ";
  text += std::to_string(result.RowsWritten) + " records written";
  if (logged) text += ", would you like to see the data log?";
  return text;
}

}  // namespace hyetex
