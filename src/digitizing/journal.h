// The session journal: every step of a digitizing session as a line of text, so that a session can be resumed
// after a crash, replayed, tested and shown.
//
// - HYETEX88 JOURNAL 1
// - tablet 1: tablet type, 0 to 4
// - press 1200 850: a press that had a meaning, X and Y in report units
// - tool 8: a tool of the board
// - select 3 4 5: the points inside a lasso when it was released
// - comment 205|Text: the comment window's Add, for the selected points; code and text, either may be empty
// - general |Text: Add, for the whole chart
// - clear: the comment window's Clear all comments
// - escape: the Escape key
// - page: the corners of the paper in use are set again
// - scan SHA256 PAGE X0 Y0 UNITS_PER_PX ANGLE PATH: the image under the trace and where it lies
//   (scan_placement.h); the path goes to the end of the line and may hold blanks. The last one counts.
// - move 12 1840 772: point 12 dragged or nudged to X and Y
// - delete 12: a point taken out; those behind it move down
// - insert 12 1840 772: a point put in before point 12
// - corner left 500 510: an end of the bottom line of the paper in use put to X and Y; "left" or "right"
// - undo: what a tool waits for, or else the last change that is not undone
// - redo: the last change that is undone
//
// A line that starts with "#" is a comment. Lines end in a line feed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/descriptor.h"
#include "core/result.h"
#include "core/scan_placement.h"

namespace hyetex {

class ActionMachine;

struct JournalEvent {
  enum class Kind {
    Press,
    Tool,
    Select,
    Comment,
    General,
    Clear,
    Escape,
    Page,
    Scan,
    Move,
    Delete,
    Insert,
    Corner,
    Undo,
    Redo
  };

  Kind What = Kind::Press;
  double X = 0, Y = 0;               ///< Press, Move, Insert, Corner
  int Tool = -1;                     ///< Tool
  std::vector<int> Points = {};      ///< Select
  std::string Code = {}, Text = {};  ///< Comment, General
  int Point = -1;                    ///< Move, Delete, Insert
  bool Right = false;                ///< Corner: the right one
  ScanPlacement Scan = {};           ///< Scan
};

/// Far more than the steps of any chart; a longer file is something else under its name.
inline constexpr std::size_t MostJournalBytes = 4U << 20;

/// One line of the journal, without its line end.
std::string JournalLine(const JournalEvent& event);
/// The first two lines of a journal for a tablet type.
std::string JournalHead(int tablet);

/// Takes the events of a session as they happen.
class JournalSink {
 public:
  virtual ~JournalSink() = default;
  virtual void Record(const JournalEvent& event) = 0;
};

struct Journal {
  int Tablet = -1;
  std::vector<JournalEvent> Events;
  std::vector<int> Lines;  ///< the line, from 1, that each event stands on
  /// Why reading stopped, with the line's number; the events before it have been read.
  std::optional<std::string> Error;
};

/// Whether a journal holds more than the placing of a scan.
bool HoldsSteps(const Journal& journal);

/// Reads a journal to its end or to its first line that is none.
Journal ReadJournal(std::string_view text);

/// Does to the machine what the journal says, up to the first event that cannot be; then says which line that
/// is.
Result<void> Replay(const Journal& journal, ActionMachine& machine);

/// The journal of the session that is running: each event is on disk when Record() returns. One that could
/// not be written (a full disk) is written in front of the next, so that no event is missing between two
/// others.
class JournalFile : public JournalSink {
 public:
  /// Starts a journal at `path`. Fails on a file that is there, unless it is empty or a journal without a
  /// step, and on one that another session is writing.
  static Result<JournalFile> Start(const std::string& path, int tablet);
  /// Goes on with the journal at `path`.
  static Result<JournalFile> Continue(const std::string& path);
  void Record(const JournalEvent& event) override;
  /// A comment line, for whoever reads the journal; without a line end.
  void Note(std::string_view text);
  /// Why events could not be written; nothing as long as all are on disk.
  const std::optional<std::string>& Trouble() const { return trouble_; }
  /// Takes the journal away: the chart is saved or given up.
  void Remove();

 private:
  JournalFile(std::string path, Descriptor fd);
  static Result<JournalFile> Open(const std::string& path);
  void Append(std::string_view bytes);

  std::string path_;
  Descriptor fd_;
  std::string pending_;  // what is not on disk yet
  std::optional<std::string> trouble_;
};

}  // namespace hyetex
