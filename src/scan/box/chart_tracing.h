// One chart of a box of scans: from its scan to its journal and its chart file, and what of them stands
// already. It is done by a process of its own, since a scan can be broken in ways that nobody has thought of.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "chartfiles/chart_text.h"
#include "core/settings.h"
#include "scan/box/traced_chart.h"
#include "scan/chosen_scans.h"
#include "scan/scan_trace.h"
#include "staging/lists/lists.h"
#include "staging/tasks/activation.h"

namespace hyetex {

/// A staged chart with what its file names.
struct BoxedChart {
  ActivatedChart Chart;
  ChartOrigin Origin;
  ScanPick Scan = {};

  std::string Name() const;  ///< of its chart file
};
/// Fails, in words, on a chart that is not traced: too defective, without length, of no station.
Result<BoxedChart> MakeBoxedChart(const ReferenceLists& lists, ActivatedChart chart, std::string user);

struct BoxWish {
  std::string Target;                          ///< the folder of journals and chart files
  std::optional<TraceWish::Place> Start = {};  ///< as in TraceWish
  int Line = 0;                                ///< as in TraceWish
  std::shared_ptr<const BlankForm> Form = {};  ///< of the chart type
  bool Doubtful = false;                       ///< charts to review get their chart file as well
  std::string Picture = {};                    ///< the scan with its line goes there; empty for none
};
/// Traces it. A clean chart gets its chart file and its journal, one with doubts its journal alone, and one
/// that cannot be traced neither. Nothing is written of a chart that cannot be saved.
TracedChart TraceChart(const BoxedChart& chart, const BoxWish& wish);

/// Makes the blank form of the charts' type anew and keeps it in the program folder: of what their scans have
/// in common, or, where there is one that is said to be `empty`, of that. Gives what was left out, in words
/// for each.
Result<std::vector<std::string>> MakeKeptForm(std::span<const BoxedChart> charts,
                                              const std::string& programFolder, bool empty);

/// A chart file's name with another ending, such as ".journal".
std::string NameWithEnding(std::string_view chartFile, std::string_view ending);
/// Where the journal of a traced chart stands.
std::string TraceJournalPath(const std::string& target, std::string_view chartFile);

/// What stands of a chart in the target folder.
struct Standing {
  enum class Of {
    Nothing,
    Digitized,    ///< its chart file
    Reviewed,     ///< its chart file has gone on; the journal is one that a person has looked over
    ToReview,     ///< its journal, with doubts in it
    Interrupted,  ///< a journal without a doubt, whose chart file was not written any more
  };
  Of What = Of::Nothing;
  int Doubts = 0;
  std::optional<double> RainMm = {};
  std::string Words = {};  ///< of the doubts
};
Standing FindStanding(const std::string& target, std::string_view chartFile);
/// Whether a journal is that of a trace that a person is still to look over.
bool IsToReview(std::string_view journal);
/// "its chart file stands" and so on; empty where nothing stands, or what was interrupted.
std::string StandingText(Standing::Of what);

/// Whether a person has begun to digitize a chart, and has not ended: then it is not the program's to trace.
bool IsBegunAtTheDesk(const std::string& programFolder, const ChartRecord& chart);
inline constexpr std::string_view BegunAtTheDesk = "it was begun at the desk, and not ended";

/// A chart was saved by a person: the journal of its tracing, if there is one, makes way for that of the
/// session, which says that it was looked over. Nothing happens without such a journal.
Result<void> KeepReview(const std::string& traceJournal, std::string sessionJournal, double rainMm);

}  // namespace hyetex
