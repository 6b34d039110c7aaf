// The journal of the session that is running (`Journal.txt` in the program folder), and what becomes of it
// when a session ends without its chart having been saved: at the next start its chart is offered again.
//
// Its head names its chart, as a comment: "# task RG12 05/03/1998 07:00:00", instrument code and start.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/records.h"
#include "core/result.h"
#include "digitizing/journal.h"

namespace hyetex {

inline constexpr std::string_view JournalFileName = "Journal.txt";

/// Instrument code and start: what tells one chart from another.
std::string ChartName(const ChartRecord& chart);

/// Keeps a session's journal on disk. Before Start() the events are only collected, so that a journal that is
/// replayed is not written anew while it is read.
class SessionJournal : public JournalSink {
 public:
  /// Puts a journal with all that has been collected in the place of the old one, whole, and goes on with it.
  /// When that fails, it is tried again with each event.
  void Start(const std::string& programFolder, int tablet, const ChartRecord& chart);
  void Record(const JournalEvent& event) override;
  void Note(std::string_view text);  ///< as JournalFile's
  /// Why events are not on disk; nothing as long as all are.
  const std::optional<std::string>& Trouble() const { return file_ ? file_->Trouble() : trouble_; }
  /// Takes the journal away: the chart is saved.
  void Remove();
  /// The chart is given up: its journal is set aside (SetJournalAside).
  Result<void> SetAside();

 private:
  void TryToOpen();

  std::string path_, collected_;
  std::optional<JournalFile> file_;
  std::optional<std::string> trouble_;
};

/// The journals of the last ten charts that were given up are kept beside the journal, as
/// "Journal.txt.bak-YYYYMMDD-HHMMSS".
inline constexpr std::size_t JournalsKept = 10;
/// Gives the journal such a name, and lets go of the eleventh. One without a step is removed. When it fails,
/// the journal is where it was.
Result<void> SetJournalAside(const std::string& programFolder);

struct UnfinishedChart {
  std::string Name;  ///< ChartName; empty when the journal names none
  Journal Steps;
  int Presses = 0;
  std::optional<ScanPlacement> Scan = {};  ///< the scan under it, where it last lay
};

/// What a session left behind; nothing if there is no journal, or no step in it but the placing of a scan. A
/// line that was cut off in the middle does not count.
std::optional<UnfinishedChart> FindUnfinishedChart(const std::string& programFolder);

/// The question whether to go on with an unfinished chart, before a session for `chart` begins.
struct ResumeOffer {
  /// Yes replays it, No sets it aside and begins anew, Cancel keeps it and ends this session. If not, the
  /// journal is of another chart or tablet, or unreadable: then Yes sets it aside and begins, No keeps it and
  /// ends this session.
  bool CanResume = false;
  std::string Title, Text;
};
inline constexpr std::string_view ResumeTitle = "Unfinished digitization";
/// `onScan`: this session has a scan, which takes the tablet's place.
ResumeOffer MakeResumeOffer(const UnfinishedChart& unfinished, const ChartRecord& chart, int tablet,
                            bool onScan = false);

}  // namespace hyetex
