// Boxes that tell, where something is typed, that it cannot be taken. What was typed stays in them.
#pragma once

#include <QLineEdit>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/number_entry.h"
#include "platform/dialogs.h"

namespace hyetex {

class EntryBox : public QLineEdit {
  Q_OBJECT

 public:
  /// Why a text cannot be taken; nothing if it can.
  using Rule = std::function<std::optional<std::string>(std::string_view text)>;
  explicit EntryBox(Rule rule);
  /// For a number.
  explicit EntryBox(const NumberEntry& entry);

  std::optional<std::string> Refusal() const;

 protected:
  bool event(QEvent* event) override;

 private:
  /// Whoever leaves the box is told beside it, and it stays marked until it is mended.
  void Mark(bool refused);
  void TellRefusal();

  Rule rule_;
  bool isMarked_ = false;
};

/// Whether the window's boxes hold something that cannot be taken. Tells why, and leads to the box. Boxes
/// that are hidden or disabled do not count.
bool RefusesEntries(QWidget& window, Dialogs& dialogs, const std::string& title);

/// The wheel and the boxes of all windows: over a box without the focus it changes nothing, and does not give
/// it the focus, but moves what is around the box. Lasts as long as what is returned.
[[nodiscard]] std::unique_ptr<QObject> KeepWheelFromBoxes();

}  // namespace hyetex
