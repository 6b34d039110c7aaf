#include "staging/windows/frmTaskDef.h"

#include <QKeyEvent>
#include <utility>

#include "core/comments.h"
#include "core/dates.h"
#include "core/text.h"
#include "platform/controls.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {

frmTaskDef::frmTaskDef(Desk& desk, Dialogs& dialogs, Settings& settings, TaskJob job,
                       std::function<void()> openComment, QWidget* parent)
    : FormWindow("frmTaskDef", WindowId::TaskDef, desk, settings, parent),
      dialogs_(dialogs),
      job_(std::move(job)),
      openComment_(std::move(openComment)) {
  setWindowTitle("Chart Details");
  MakeLayout();
  ShowDetails(job_.What == TaskJob::Mode::Add ? NewTaskDetails(settings, Now()) : DetailsOfTask(job_.Task));
  opened_ = ShownDetails();
  // Only from now on: the details above keep the end that they have.
  connect(dtpBeginDate, &DateBox::dateChanged, this,
          [this](QDate begin) { dtpEndDate->setDate(begin.addDays(1)); });
}

// ---- What it shows

void frmTaskDef::ShowDetails(const TaskDetails& details) {
  dtpBeginDate->setDate(ToQDate(details.BeginDate));
  dtpBeginTime->setTime(ToQTime(details.BeginTime));
  dtpEndDate->setDate(ToQDate(details.EndDate));
  dtpEndTime->setTime(ToQTime(details.EndTime));
  txtEyed->setText(ToQt(details.EyedDepth));
  txtManual->setText(ToQt(details.ManualDepth));
  comChart->setCurrentIndex(details.Reliability);
  comments_ = details.Comments;
  UpdateCommentsList();
}

TaskDetails frmTaskDef::ShownDetails() const {
  return {.BeginDate = FromQDate(dtpBeginDate->date()),
          .BeginTime = FromQTime(dtpBeginTime->time()),
          .EndDate = FromQDate(dtpEndDate->date()),
          .EndTime = FromQTime(dtpEndTime->time()),
          .EyedDepth = FromQt(txtEyed->text()),
          .ManualDepth = FromQt(txtManual->text()),
          .Reliability = comChart->currentIndex(),
          .Comments = comments_};
}

void frmTaskDef::UpdateCommentsList() {
  lstComment->clear();
  for (const std::string& entry : CommentEntries(comments_)) lstComment->addItem(ToQt(entry));
  chkNot->setChecked(HasCode(comments_, CodeDefective));
}

void frmTaskDef::showEvent(QShowEvent* event) {
  FormWindow::showEvent(event);
  if (event->spontaneous()) return;
  dtpBeginDate->setFocus(Qt::TabFocusReason);
  dtpBeginDate->selectAll();  // the focus itself may come later, with the frame's
}

// ---- Keys

// The boxes through which Return leads.
QList<QWidget*> frmTaskDef::EnterOrder() const {
  return {dtpBeginDate, dtpBeginTime, dtpEndDate, dtpEndTime, txtEyed, txtManual, cmdOK};
}

bool frmTaskDef::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && IsReturn(*static_cast<QKeyEvent*>(event))) {
    const QList<QWidget*> order = EnterOrder();
    const qsizetype at = order.indexOf(qobject_cast<QWidget*>(watched));
    if (at >= 0 && at + 1 < order.size()) {
      order[at + 1]->setFocus(Qt::TabFocusReason);
      return true;
    }
  }
  return FormWindow::eventFilter(watched, event);
}

// ---- Comments

std::optional<std::string> frmTaskDef::AddComment(std::string_view code, std::string_view text) {
  const std::string line = OneLine(text);
  if (auto refusal = CheckOneLine(line)) return refusal;
  AddCode(comments_, MakeComment(code, line));
  UpdateCommentsList();
  return std::nullopt;
}

// Clearing the box takes no comment away: the list shows what counts.
void frmTaskDef::MarkDefective() {
  if (chkNot->isChecked()) AddDefectiveCode(comments_);
  UpdateCommentsList();
}

void frmTaskDef::DeleteComment() {
  if (lstComment->selectedItems().isEmpty()) return;
  comments_ = WithoutEntry(comments_, lstComment->currentRow());
  UpdateCommentsList();
}

void frmTaskDef::EnableDetails(bool enabled) {
  setEnabled(enabled);
  if (enabled) cmdAdd->setFocus();
}

// ---- Confirming and closing

QWidget* frmTaskDef::ControlOf(TaskField field) const {
  switch (field) {
    case TaskField::EyedDepth:
      return txtEyed;
    case TaskField::ManualDepth:
      return txtManual;
    case TaskField::Begin:
      break;
  }
  return dtpBeginDate;
}

void frmTaskDef::Confirm() {
  if (Take()) Leave();
}

bool frmTaskDef::Take() {
  const std::string title(TaskDetailsTitle);
  if (RefusesEntries(*this, dialogs_, title)) return false;
  auto checked = CheckTaskDetails(ShownDetails(), job_.Task);
  if (!checked) {
    dialogs_.MessageBox(title, checked.error().Text, BoxButtons::Ok, BoxIcon::Warning);
    ControlOf(checked.error().Field)->setFocus();
    return false;
  }
  if (checked->AsksAboutLapse && dialogs_.MessageBox(title, std::string(LapseQuestion), BoxButtons::YesNo,
                                                     BoxIcon::Question) != BoxAnswer::Yes)
    return false;
  if (const auto refusal = job_.Store(std::move(checked->Task))) {
    dialogs_.MessageBox(title, ShownText(*refusal), BoxButtons::Ok, BoxIcon::Warning);
    return false;
  }
  return true;
}

bool frmTaskDef::MayLeave() {
  if (!isEnabled()) return false;  // the comment window is open
  return ShownDetails() == opened_ ||
         MayCloseAfter(dialogs_, std::string(TaskDetailsTitle),
                       "The details of this chart have not been taken. Do you want to take them ?",
                       [this] { return Take(); });
}

void frmTaskDef::Closing() {
  RememberTaskDetails(settings_, ShownDetails());
  if (job_.Closed) job_.Closed();
}

}  // namespace hyetex
