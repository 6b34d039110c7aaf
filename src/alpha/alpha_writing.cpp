#include "alpha/alpha_writing.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "alpha/alpha_review.h"
#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"

namespace hyetex {
namespace {

// Of so few charts each text is asked for by itself; else the texts of all records travel with them.
constexpr std::size_t FewCharts = 32;

class AlphaWriter {
 public:
  AlphaWriter(HyetexPlotDB& database, const std::string& code, std::span<const AlphaChart> charts,
              const SelectedAlpha& alpha, Progress& progress)
      : database_(database),
        code_(code),
        charts_(charts),
        alpha_(alpha),
        progress_(progress),
        fates_(charts.size(), Fate::Removed) {
    for (std::size_t i = 0; i < charts.size(); ++i) at_[SecondsOf(charts[i].ChartDate)].push_back(i);
  }

  AlphaWriting Run() {
    const auto done = Write();
    if (done) {
      Tell();
    } else {
      result_ = {};
      if (done.error().Number == db_error::Cancelled)
        result_.Report.Cancelled = true;
      else
        result_.Report.Stopped = done.error();
    }
    return std::move(result_);
  }

 private:
  enum class Fate { Removed, Changed, Refused, Taken };

  DbResult<void> Write() {
    if (const auto opened = database_.OpenDatabase(); !opened) return opened;
    Connection& connection = database_.DatabaseConnection;
    auto transaction = Transaction::BeginWriting(connection, table_name::ChartAscii, progress_);
    if (!transaction) return tl::unexpected(transaction.error());
    const auto marks = HasLoadedMark(connection);
    if (!marks) return tl::unexpected(marks.error());
    Selection selection = ChartAsciiOf(code_);
    selection.Columns = {column::ChartDate, column::AsciiFile};
    if (*marks) selection.Columns.emplace_back(column::Loaded);
    selection.LongWithRow = charts_.size() > FewCharts;
    if (const auto opened = database_.OpenChartAscii(std::move(selection)); !opened) return opened;
    const auto walked = ForEachRow(database_.ChartAsciiTable, [this] { return TakeRecord(); });
    database_.ChartAsciiTable.Close();
    if (!walked) return walked;
    return transaction->Commit();
  }

  DbResult<bool> TakeRecord() {
    Recordset& table = database_.ChartAsciiTable;
    const auto date = table.Value(column::ChartDate);
    if (!date) return tl::unexpected(date.error());
    const auto listed = at_.find(SecondsOf(DateOf(*date)));
    if (listed == at_.end()) return true;
    if (!progress_.Step(static_cast<std::int64_t>(done_++), static_cast<std::int64_t>(charts_.size()),
                        GeneralDateText(DateOf(*date))))
      return tl::unexpected(DbError{db_error::Cancelled, "the operator stopped it", {}});
    const auto text = ChartAsciiText(table, MostChartBytes);
    if (!text) return tl::unexpected(text.error());
    TextMark mark;
    mark.Take(*text);
    bool isListed = false;
    for (const std::size_t chart : listed->second) {
      const bool isThis = charts_[chart].TextMark == mark.Value();
      isListed |= isThis;
      if (!isThis && fates_[chart] == Fate::Removed) fates_[chart] = Fate::Changed;
    }
    if (!isListed) return true;
    const auto taken = Rewrite(DateOf(*date), *text);
    if (!taken) return tl::unexpected(taken.error());
    for (const std::size_t chart : listed->second)
      if (charts_[chart].TextMark == mark.Value()) fates_[chart] = *taken;
    return true;
  }

  // The current record: its text, and the mark that says it was converted.
  DbResult<Fate> Rewrite(Date date, const std::string& text) {
    Recordset& table = database_.ChartAsciiTable;
    auto rewritten = RewriteSelectedAlpha(text, alpha_);
    if (!rewritten) {
      result_.Report.Refused.push_back(NameOf(date) + ": " + rewritten.error());
      return Fate::Refused;
    }
    if (*rewritten == text) {
      ++result_.Had;
      return Fate::Taken;
    }
    const auto converted = IsLoaded(table);
    if (!converted) return tl::unexpected(converted.error());
    if (const auto set =
            table.SetValue(column::AsciiFile, AsciiFileValue(table.Fields(), *std::move(rewritten)));
        !set)
      return tl::unexpected(set.error());
    if (*converted)
      if (const auto set = table.SetValue(column::Loaded, std::int64_t{0}); !set)
        return tl::unexpected(set.error());
    if (const auto stored = table.Update(); !stored) return tl::unexpected(stored.error());
    ++result_.Written;
    converted_ += *converted;
    return Fate::Taken;
  }

  std::string NameOf(Date date) const {
    return ShownText(code_) + " " + (date == 0 ? std::string("without a date") : GeneralDateText(date));
  }

  void Tell() {
    RunReport& report = result_.Report;
    for (std::size_t i = 0; i < charts_.size(); ++i) {
      if (fates_[i] == Fate::Removed)
        report.Refused.push_back(NameOf(charts_[i].ChartDate) + ": it is no longer in the database");
      if (fates_[i] == Fate::Changed)
        report.Refused.push_back(NameOf(charts_[i].ChartDate) +
                                 ": it has been changed by another program since it was listed");
    }
    if (converted_ > 0)
      report.Notes.push_back(ChartCount(converted_) + (converted_ == 1 ? " was" : " were") +
                             " converted to time-depth data before, and " +
                             (converted_ == 1 ? "needs" : "need") +
                             " converting again: listed as not converted.");
  }

  HyetexPlotDB& database_;
  const std::string& code_;
  const std::span<const AlphaChart> charts_;
  const SelectedAlpha& alpha_;
  Progress& progress_;
  std::map<std::int64_t, std::vector<std::size_t>> at_;  // the charts of a moment; mostly one
  std::vector<Fate> fates_;
  std::size_t done_ = 0, converted_ = 0;
  AlphaWriting result_;
};

}  // namespace

AlphaWriting WriteSelectedAlpha(HyetexPlotDB& database, const std::string& instrumentCode,
                                std::span<const AlphaChart> charts, const SelectedAlpha& alpha,
                                Progress& progress) {
  const ClosedAfter closed(database);
  return AlphaWriter(database, instrumentCode, charts, alpha, progress).Run();
}

std::string AlphaMessage(const AlphaWriting& result, const SelectedAlpha& alpha) {
  std::string outcome = "Nothing was written.";
  if (result.IsDone()) {
    outcome =
        "\"Alpha Value Selected: " + alpha.Text() + "\" was written into " + ChartCount(result.Written) + ".";
    if (result.Had > 0) outcome += " " + ChartCount(result.Had) + " had it before.";
  }
  return ClosingMessage(std::move(outcome), result.Report);
}

}  // namespace hyetex
