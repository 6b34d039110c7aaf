#include "database/windows/field_boxes.h"

#include <QAction>
#include <QCalendarWidget>
#include <QPlainTextEdit>
#include <QStyle>
#include <algorithm>
#include <utility>

#include "database/windows/picture_box.h"
#include "platform/controls.h"
#include "platform/entry_box.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr std::int64_t NarrowestBox = 8, WidestBox = 26;  // characters

QString WidthTip(const Field& field) {
  return field.Width > 0 ? QObject::tr("At most %1 characters").arg(field.Width) : QString();
}

// An empty text looks like none at all, and is one of its own.
QString EmptyTip(const DbValue& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr && text->empty() ? QObject::tr("(empty text)") : QString();
}

class LineBox : public FieldBox {
 public:
  LineBox(const Field& field, const QString& name)
      : field_(field),
        // What the database holds is not refused, whatever it is.
        box_(new EntryBox([field, shown = shown_](std::string_view text) {
          return ToQt(text) == *shown ? std::nullopt : CheckEntry(field, text);
        })) {
    box_->setObjectName(name);
    const std::int64_t wide = field.Kind == FieldKind::Text     ? field.Width
                              : field.Kind == FieldKind::Moment ? 19
                                                                : 8;
    box_->setMinimumWidth(static_cast<int>(std::clamp(wide, NarrowestBox, WidestBox)) *
                              box_->fontMetrics().averageCharWidth() +
                          2 * box_->fontMetrics().height());
    box_->setToolTip(WidthTip(field));
    if (field.Kind != FieldKind::Moment) return;
    calendar_ =
        box_->addAction(box_->style()->standardIcon(QStyle::SP_ArrowDown), QLineEdit::TrailingPosition);
    calendar_->setObjectName("actCalendar");
    calendar_->setToolTip(QObject::tr("Calendar"));
    calendar_->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Down));
    calendar_->setShortcutContext(Qt::WidgetShortcut);
    QObject::connect(calendar_, &QAction::triggered, box_, [this] { OpenCalendar(); });
  }

  QWidget& Widget() override { return *box_; }
  void Show(const DbValue& value) override {
    box_->setText(ToQt(ShownValue(field_, value)));
    box_->setCursorPosition(0);
    box_->setPlaceholderText(EmptyTip(value));
    *shown_ = box_->text();
  }
  bool IsChanged() const override { return box_->text() != *shown_; }
  std::optional<std::string> Refusal() const override { return box_->Refusal(); }
  DbValue Entered() const override { return EnteredValue(field_, FromQt(box_->text())); }
  void SetEditable(bool editable) override {
    box_->setReadOnly(!editable);
    if (calendar_ != nullptr) calendar_->setVisible(editable);
  }

 private:
  // The day is taken; a time that stands behind it stays.
  void OpenCalendar() {
    const auto typed = TypedMoment(FromQt(box_->text()));
    auto* calendar = new QCalendarWidget(box_);
    calendar->setWindowFlag(Qt::Popup);
    calendar->setAttribute(Qt::WA_DeleteOnClose);
    calendar->setDateRange(QDate(FirstTypedYear, 1, 1), QDate(LastTypedYear, 12, 31));
    if (typed) calendar->setSelectedDate(ToQDate(*typed));
    QObject::connect(calendar, &QCalendarWidget::activated, box_, [this, calendar, typed](QDate day) {
      QString text = day.toString(DateBoxForm);
      if (typed && *typed != FromQDate(ToQDate(*typed))) text += ' ' + ToQt(TimeText(*typed));
      box_->setText(text);
      calendar->close();
    });
    QObject::connect(calendar, &QCalendarWidget::clicked, calendar, &QCalendarWidget::activated);
    calendar->move(box_->mapToGlobal(box_->rect().bottomLeft()));
    calendar->show();
    calendar->setFocus();
  }

  const Field field_;
  const std::shared_ptr<QString> shown_ = std::make_shared<QString>();
  EntryBox* box_;
  QAction* calendar_ = nullptr;
};

class TextBox : public FieldBox {
 public:
  TextBox(const Field& field, const QString& name) : field_(field), box_(new QPlainTextEdit) {
    box_->setObjectName(name);
    box_->setTabChangesFocus(true);
    box_->setToolTip(WidthTip(field));
    box_->setMinimumWidth(26 * box_->fontMetrics().averageCharWidth());
    box_->setFixedHeight(3 * box_->fontMetrics().lineSpacing() + 12);
  }

  QWidget& Widget() override { return *box_; }
  void Show(const DbValue& value) override {
    box_->setPlainText(ToQt(ShownValue(field_, value)));
    box_->setPlaceholderText(EmptyTip(value));
    shown_ = box_->toPlainText();
  }
  bool IsChanged() const override { return box_->toPlainText() != shown_; }
  std::optional<std::string> Refusal() const override {
    return IsChanged() ? CheckEntry(field_, FromQt(box_->toPlainText())) : std::nullopt;
  }
  DbValue Entered() const override { return EnteredValue(field_, FromQt(box_->toPlainText())); }
  void SetEditable(bool editable) override { box_->setReadOnly(!editable); }

 private:
  const Field field_;
  QPlainTextEdit* box_;
  QString shown_;
};

class PictureField : public FieldBox {
 public:
  PictureField(const QString& name, Dialogs& dialogs) : box_(new PictureBox(dialogs)) {
    box_->setObjectName(name);
  }

  QWidget& Widget() override { return *box_; }
  void Show(const DbValue& value) override { box_->Show(value); }
  bool IsChanged() const override { return box_->IsChanged(); }
  DbValue Entered() const override { return box_->Value(); }
  void SetEditable(bool editable) override { box_->SetEditable(editable); }

 private:
  PictureBox* box_;
};

}  // namespace

std::unique_ptr<FieldBox> MakeFieldBox(const Field& field, const QString& name, Dialogs& dialogs) {
  switch (field.Kind) {
    case FieldKind::LongText:
      return std::make_unique<TextBox>(field, name);
    case FieldKind::Picture:
      return std::make_unique<PictureField>(name, dialogs);
    default:
      return std::make_unique<LineBox>(field, name);
  }
}

}  // namespace hyetex
