#include "platform/date_box.h"

#include <QAction>
#include <QCalendarWidget>
#include <QKeyEvent>
#include <QStyle>
#include <utility>

#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

std::optional<std::string> CheckDate(std::string_view text) {
  return TypedDate(text) ? std::nullopt : std::optional(NoDateText(text));
}

}  // namespace

DateBox::DateBox() : EntryBox(CheckDate) {
  setMinimumWidth(fontMetrics().horizontalAdvance("00/00/0000") + 3 * fontMetrics().height());
  QAction* open = addAction(style()->standardIcon(QStyle::SP_ArrowDown), QLineEdit::TrailingPosition);
  open->setObjectName("actCalendar");
  open->setToolTip(tr("Calendar"));
  connect(open, &QAction::triggered, this, &DateBox::OpenCalendar);
  connect(this, &QLineEdit::textEdited, this, [this](const QString& typed) {
    if (const auto day = TypedDate(FromQt(typed))) Take(ToQDate(*day));
  });
  connect(this, &QLineEdit::editingFinished, this, [this] {
    if (!Refusal()) setDate(date_);
  });
}

void DateBox::setDate(QDate date) {
  setText(date.toString(DateBoxForm));
  Take(date);
}

void DateBox::Take(QDate date) {
  if (std::exchange(date_, date) != date) emit dateChanged(date);
}

void DateBox::Step(int way) {
  if (Refusal()) return;
  constexpr std::pair<int, int> Parts[] = {{0, 2}, {3, 2}, {6, 4}};  // where each stands in the shown form
  const bool isShownForm = text() == date_.toString(DateBoxForm);
  const int at = hasSelectedText() ? selectionStart() : cursorPosition();
  const int part = !isShownForm || at < 3 ? 0 : at < 6 ? 1 : 2;
  const QDate next = part == 0 ? date_.addDays(way) : part == 1 ? date_.addMonths(way) : date_.addYears(way);
  if (next.year() >= FirstTypedYear && next.year() <= LastTypedYear) setDate(next);
  setSelection(Parts[part].first, Parts[part].second);
}

void DateBox::keyPressEvent(QKeyEvent* event) {
  const bool down = event->key() == Qt::Key_Down;
  if (!down && event->key() != Qt::Key_Up) return EntryBox::keyPressEvent(event);
  if (down && event->modifiers().testFlag(Qt::AltModifier))
    OpenCalendar();
  else
    Step(down ? -1 : 1);
}

void DateBox::OpenCalendar() {
  auto* calendar = new QCalendarWidget(this);
  calendar->setWindowFlag(Qt::Popup);
  calendar->setAttribute(Qt::WA_DeleteOnClose);
  calendar->setDateRange(QDate(FirstTypedYear, 1, 1), QDate(LastTypedYear, 12, 31));
  calendar->setSelectedDate(date_);
  connect(calendar, &QCalendarWidget::activated, this, [this, calendar](QDate day) {
    setDate(day);
    calendar->close();
  });
  connect(calendar, &QCalendarWidget::clicked, calendar, &QCalendarWidget::activated);
  calendar->move(mapToGlobal(rect().bottomLeft()));
  calendar->show();
  calendar->setFocus();
}

}  // namespace hyetex
