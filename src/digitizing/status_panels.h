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

  /// The texts, if any of them has changed since they were last handed out. All are empty where there is no
  /// point, and the depth on charts whose trace gives none.
  const Texts* Update(const Session& session, const DeskState& state);

 private:
  std::tuple<bool, float, Date, std::int16_t> shown_;
  bool isShown_ = false;
  Texts texts_;
};

ScaleCaptions CaptionsOf(const ChartTypeRecord& paper, const DeskState& state);

/// Time and depth under the cursor, always of about the same width; empty where there is no chart.
std::string CursorText(const DeskState& state);

}  // namespace hyetex
