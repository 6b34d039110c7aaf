// A box of scans at the desk: the staged charts and what has become of each, which is traced next, how far
// the work is, and which one a person looks at next. Who traces, and where, it does not know.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/records.h"
#include "scan/box/traced_chart.h"
#include "scan/chosen_scans.h"
#include "staging/lists/lists.h"

namespace hyetex {

class TraceQueue {
 public:
  enum class State {
    NoScan,
    LeftOut,    ///< too defective, or otherwise not to be traced
    AtTheDesk,  ///< a person has begun it, and not ended
    Digitized,
    Waiting,
    BeingTraced,
    Clean,
    ToReview,
    NotTraced,
    Failed
  };
  struct Row {
    ChartRecord Chart;
    std::string Name = {};  ///< of its chart file; empty where it can have none
    ScanPick Scan = {};     ///< its path is empty where there is none
    State Is = State::NoScan;
    std::string Why = {};  ///< doubts, or why it is not traced
    int Doubts = 0;
    std::optional<double> RainMm = {}, Seconds = {};
  };

  /// All staged charts; the folders say what stands of them.
  TraceQueue(std::string programFolder, std::string target, const ReferenceLists& lists,
             const std::vector<ChartRecord>& staged, const ChosenScans& scans);

  const std::vector<Row>& Rows() const { return rows_; }
  const std::string& Target() const { return target_; }

  /// What stands of the charts now, but for those that are being traced.
  void LookAgain();
  /// The next one that waits, which is being traced from now on. What has come to stand of a chart meanwhile
  /// is passed over; `changed` hears of each row that is another now.
  std::optional<std::size_t> Begin(const std::function<void(std::size_t)>& changed);
  void End(std::size_t row, const TracedChart& traced);
  /// It was ended in the middle: it waits again, unless its files stand.
  void GiveUp(std::size_t row);
  /// A person opens it at the desk: it waits no more, until LookAgain().
  void TakeToTheDesk(std::size_t row);
  /// A chart that could not be traced, or whose tracing failed, waits again; false for any other.
  bool WaitAgain(std::size_t row);

  int Count(State state) const;
  /// Behind a row, and then from the beginning; the row itself comes last. Nothing if there is none.
  std::optional<std::size_t> NextToReview(std::optional<std::size_t> behind = {}) const;
  /// Whether a person can open the chart's scan at the desk.
  static bool CanOpen(const Row& row);

  /// "3 clean, 2 to review, 1 not traced, 4 waiting": of all that there are.
  std::string Summary() const;

 private:
  void LookAt(Row& row, const std::string& unfinished) const;
  std::string UnfinishedName() const;

  std::string programFolder_, target_;
  std::vector<Row> rows_;
};

/// "digitized already", "waiting", "to review" and so on.
std::string_view StateText(TraceQueue::State state);

inline constexpr std::array<std::string_view, 9> QueueHeadings{
    "Instrument", "Start", "State", "Rain, mm", "Eyed, mm", "Gage, mm", "Doubts", "Seconds", "Scan"};
inline constexpr std::size_t QueueStateColumn = 2, FirstQueueNumber = 3, LastQueueNumber = 7;
/// What stands in each column.
std::array<std::string, QueueHeadings.size()> QueueCells(const TraceQueue::Row& row);

/// How far a run is that began some time ago: "3 of 8 charts, 5 left, about 2 min".
std::string QueueProgress(int done, int all, double seconds);

}  // namespace hyetex
