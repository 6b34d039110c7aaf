// A box for a day, typed as one likes or chosen in a calendar beside it.
#pragma once

#include <QDate>

#include "platform/entry_box.h"

namespace hyetex {

/// The day is taken with each key that makes a whole date of the text; it is shown in one form when the box
/// is left. Up and Down step the day, month or year at the cursor, Alt with Down opens the calendar. The
/// names are those of the toolkit's own box, which reads keys part by part and so mistakes a date typed in
/// one go.
class DateBox final : public EntryBox {
  Q_OBJECT

 public:
  DateBox();

  /// The day that was set or typed last; a text that is no date leaves it as it was.
  QDate date() const { return date_; }
  void setDate(QDate date);

 signals:
  void dateChanged(QDate date);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Take(QDate date);
  void Step(int way);
  void OpenCalendar();

  QDate date_;
};

}  // namespace hyetex
