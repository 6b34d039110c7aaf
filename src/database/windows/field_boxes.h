// The boxes of a table editor, one kind for each kind of column.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "database/tables/field.h"
#include "platform/dialogs.h"

namespace hyetex {

class FieldBox {
 public:
  virtual ~FieldBox() = default;

  /// What stands in the window; its owner deletes it.
  virtual QWidget& Widget() = 0;
  /// What takes the focus.
  virtual QWidget& Entry() { return Widget(); }
  /// Shows a value, which counts as unchanged from now on.
  virtual void Show(const DbValue& value) = 0;
  virtual bool IsChanged() const = 0;
  /// Why what was entered cannot be stored; nothing if it can.
  virtual std::optional<std::string> Refusal() const { return std::nullopt; }
  virtual DbValue Entered() const = 0;
  /// Whether something can be entered; else it can be looked at and copied.
  virtual void SetEditable(bool editable) = 0;
};

/// `name` is that of the box that takes the focus.
std::unique_ptr<FieldBox> MakeFieldBox(const Field& field, const QString& name, Dialogs& dialogs);

}  // namespace hyetex
