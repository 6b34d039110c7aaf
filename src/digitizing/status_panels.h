// The texts by which the operator follows a session: the panels of the status bar, the captions of the
// Definitions menu, and the read-out on the tool board.
#pragma once

#include <string>
#include <tuple>

#include "core/session.h"
#include "digitizing/desk_state.h"
#include "digitizing/shell_commands.h"

namespace hyetex {

/// Depth and time of the last point, and the button that is down. Asked after every report, so the texts are
/// made only when what they say has changed.
class StatusPanels {
 public:
  struct Texts {
    std::string Depth;   ///< "12.34 cm"
    std::string Time;    ///< to the nearest quarter of an hour
    std::string Button;  ///< hexadecimal; empty for none
  };

  /// The texts, if any of them has changed since they were last handed out. Before the first point there are
  /// none, and after the last has been erased the old ones stay.
  const Texts* Update(const Session& session, const DeskState& state);

 private:
  std::tuple<float, Date, std::int16_t> shown_;
  bool isShown_ = false;
  Texts texts_;
};

ScaleCaptions CaptionsOf(const ChartTypeRecord& paper, const DeskState& state);

/// Time and depth under the cursor, always of about the same width.
std::string CursorText(const DeskState& state);

}  // namespace hyetex
