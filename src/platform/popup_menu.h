// The shell's popup menu, as a window shows it over one of its entries.
#pragma once

#include <QPoint>
#include <QWidget>
#include <functional>
#include <string>

namespace hyetex {

struct PopupCommand {
  std::string Caption;  ///< its first letter is its key
  std::function<void()> Run;
};

struct PopupCommands {
  PopupCommand Add, Change, Delete;
};

class PopupMenu {
 public:
  virtual ~PopupMenu() = default;

  /// Shows the three commands at a place of the screen and returns at once. What is chosen runs only while
  /// `owner` lives.
  virtual void ShowPopup(QWidget& owner, const QPoint& at, PopupCommands commands) = 0;
};

}  // namespace hyetex
