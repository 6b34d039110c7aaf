// How the shell's menus and status bar and the digitizing window meet. Neither includes the other: the window
// registers its commands with the shell while it has the focus, and writes its texts there.
//
// The shell owns the shortcuts of its menu entries (Ctrl+N, Ctrl+S, Delete, F1 and so on); what has no menu
// entry (Escape, Ctrl++, Ctrl+-, the wheel) belongs to the digitizing window.
#pragma once

#include <string>
#include <string_view>

namespace hyetex {

/// What the menus ask of the digitizing window.
class SessionCommands {
 public:
  virtual ~SessionCommands() = default;

  virtual void NewFile() = 0;
  virtual void SaveFile() = 0;
  virtual void RunTool(int tool) = 0;  ///< a tool of the board by index
  virtual void AutoZoom() = 0;
  virtual void ShowBoard() = 0;
  virtual void SetPageAgain() = 0;  ///< waits for the two corners of the paper in use
  /// The mark of "Digitation Points" has changed: draws the graph again.
  virtual void PointsToggled() = 0;
  virtual void Undo() = 0;
  virtual void Redo() = 0;
  /// Whether any point has been traced: a new segment and a further paper need one.
  virtual bool HasPoints() const = 0;
  /// Whether the mouse is the cursor, and not a tablet's: what serves only that is shown.
  virtual bool HasMouse() const = 0;
  virtual void ToggleMagnifier() = 0;
  virtual void MagnifyMore() = 0;
  virtual void ToggleOverlay() = 0;     ///< the chart's own hours and depths
  virtual void ToggleCorrecting() = 0;  ///< presses of the mouse correct points instead of tracing them
  virtual void InsertPoint() = 0;       ///< beside the one that is being corrected
  virtual void TraceScan() = 0;         ///< the program traces the scan by itself
};

/// The Definitions menu's texts.
struct ScaleCaptions {
  std::string Angle, Horizontal, Vertical;
};

/// What is switched on, for the marks of the menu entries.
struct DeskModes {
  bool Magnifier = false, Overlay = false, Correcting = false;
};

/// The first two entries of the Edit menu.
struct UndoCaptions {
  std::string Undo, Redo;  ///< "Undo point": what would be taken back, or made again
  bool CanUndo = false, CanRedo = false;
};

/// The panels of the status bar, by the numbers that operators know them by.
namespace panel {
enum Number : int { Depth = 1, Time = 2, Button = 3, Instruction = 4 };
}

/// What the digitizing window asks of the shell. Texts are UTF-8.
class Shell {
 public:
  virtual ~Shell() = default;

  /// The digitizing window has the focus: its menus are shown and act on `commands`, which must stay until
  /// NotDigitizing().
  virtual void Digitizing(SessionCommands& commands) = 0;
  /// It has lost the focus or is gone. Its menus are hidden, `commands` is forgotten.
  virtual void NotDigitizing() = 0;

  virtual bool PointsAreShown() const = 0;  ///< the mark of "Digitation Points"
  virtual void ShowScales(const ScaleCaptions& captions) = 0;
  virtual void ShowModes(const DeskModes& modes) = 0;
  virtual void ShowUndo(const UndoCaptions& captions) = 0;
  /// Written only when it differs from what is shown.
  virtual void ShowPanel(int panel, std::string_view text) = 0;
  virtual std::string PanelText(int panel) const = 0;
  /// Of the area in which the windows stand, in pixels.
  virtual int ClientHeight() const = 0;
};

}  // namespace hyetex
