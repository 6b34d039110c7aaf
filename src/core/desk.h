// How windows reach each other: none includes another, each asks the desk. The program's main owns the one
// that there is.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace hyetex {

/// A window's id is its index in OpenFlags.
enum class WindowId : int {
  Comment = 1,  ///< while its flag is set, all that the tablet sends is thrown away
  Save = 2,
  Editor = 3,
  LargeView = 4,
  MainMenu = 5,
  Lists = 6,
  Load = 7,
  PrePop = 8,
  Populate = 9,
  TaskDef = 10,
  Digitizing = 11,
  CreateTable = 12,
  ProgramDefaults = 13,
  Tasks = 14,
  Alpha = 15,
  Connection = 16,
  SelectTable = 17,
  Exchange = 18,
  Logon = 19,
  Definitions = 20,
  TableEditor = 21,
  TableExchange = 22,
  Rainfall = 23,
  ChartReview = 24,
  ScanChoice = 25,
  ScanLook = 26,
  TraceScans = 27,
};

/// One flag for each window: -1 when it gets or loses the focus, 0 when it closes.
class OpenFlags {
 public:
  bool IsOpen(WindowId id) const { return flags_[static_cast<std::size_t>(id)] != 0; }
  void SetOpen(WindowId id, bool open) {
    flags_[static_cast<std::size_t>(id)] = open ? std::int16_t{-1} : std::int16_t{0};
  }

 private:
  std::array<std::int16_t, 28> flags_{};
};

/// A window that acts on gaining and losing the focus among the windows of the shell. A box that is shown
/// over them takes no focus in this sense.
class FocusListener {
 public:
  virtual ~FocusListener() = default;
  virtual void FocusChanged(bool focused) = 0;
};

class Desk {
 public:
  virtual ~Desk() = default;

  OpenFlags Flags;

  /// Whether the program has this window; commands whose window is not there are shown disabled.
  virtual bool Has(WindowId id) const = 0;
  /// Opens a window, or brings it to the front.
  virtual void Open(WindowId id) = 0;
  /// A window has closed: its flag is cleared, and the Main Menu comes back unless another main window is
  /// open.
  virtual void Closed(WindowId id) = 0;
  virtual void OpenLargeView(const std::string& caption, const std::string& text) = 0;
  /// Closes the large view if it is the one with this caption.
  virtual void CloseLargeView(const std::string& /*caption*/) {}
  /// The login succeeded: the shell and the Main Menu open.
  virtual void LoggedIn() = 0;
  /// Closes all windows that hold something, each with its question, and ends; a window that stays open keeps
  /// the program open.
  virtual void EndProgram() = 0;
  /// Whether windows close because the program ends.
  virtual bool IsEnding() const { return false; }
};

}  // namespace hyetex
