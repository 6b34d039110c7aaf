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
  /// Why events are not on disk; nothing as long as all are.
  const std::optional<std::string>& Trouble() const { return file_ ? file_->Trouble() : trouble_; }
  /// Takes the journal away: the chart is saved or given up.
  void Remove();

 private:
  void TryToOpen();

  std::string path_, collected_;
  std::optional<JournalFile> file_;
  std::optional<std::string> trouble_;
};

struct UnfinishedChart {
  std::string Name;  ///< ChartName; empty when the journal names none
  Journal Steps;
  int Presses = 0;
};

/// What a session left behind; nothing if there is no journal, or no step in it. A line that was cut off in
/// the middle does not count.
std::optional<UnfinishedChart> FindUnfinishedChart(const std::string& programFolder);

/// The question whether to go on with an unfinished chart, before a session for `chart` begins.
struct ResumeOffer {
  /// Yes replays it, No begins anew. If not, the journal is of another chart or tablet, or unreadable: then
  /// Yes gives it up and begins, No keeps it and ends this session.
  bool CanResume = false;
  std::string Text;
};
inline constexpr std::string_view ResumeTitle = "Unfinished digitization";
ResumeOffer MakeResumeOffer(const UnfinishedChart& unfinished, const ChartRecord& chart, int tablet);

}  // namespace hyetex
