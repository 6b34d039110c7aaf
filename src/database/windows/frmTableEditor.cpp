#include "database/windows/frmTableEditor.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <optional>
#include <utility>

#include "database/windows/picture_box.h"
#include "platform/controls.h"
#include "platform/qt_text.h"
#include "platform/shown_progress.h"
#include "staging/lists/login.h"

namespace hyetex {
namespace {

constexpr int PictureAfterMs = 150, FindAfterMs = 250, DrawEveryMs = 40;

// Shows nothing as long as nobody has to be waited for.
class WhileWaiting : public Progress {
 public:
  WhileWaiting(QProgressBar& bar, QPushButton& stop, QLabel& doing) : bar_(bar), stop_(stop), doing_(doing) {}
  ~WhileWaiting() override { doing_.clear(); }
  bool Step(std::int64_t done, std::int64_t total, std::string_view what) override {
    if (!shown_) shown_.emplace(bar_, stop_, [this](const std::string& text) { doing_.setText(ToQt(text)); });
    return shown_->Step(done, total, what);
  }

 private:
  QProgressBar& bar_;
  QPushButton& stop_;
  QLabel& doing_;
  std::optional<ShownProgress> shown_;
};

// Lets windows be drawn during a search; what is typed meanwhile is taken behind it.
class WhileFinding : public Progress {
 public:
  WhileFinding() { since_.start(); }
  bool Step(std::int64_t, std::int64_t, std::string_view) override {
    if (since_.elapsed() >= DrawEveryMs) {
      QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
      since_.restart();
    }
    return true;
  }

 private:
  QElapsedTimer since_;
};

}  // namespace

frmTableEditor::frmTableEditor(Desk& desk, Dialogs& dialogs, Settings& settings,
                               std::unique_ptr<TableEditor> editor, std::function<std::int16_t()> level,
                               QWidget* parent)
    : FormWindow(editor->Table().Window.data(), WindowId::TableEditor, desk, settings, parent),
      dialogs_(dialogs),
      editor_(std::move(editor)),
      level_(std::move(level)),
      model_(*editor_) {
  setWindowTitle(ToQt(editor_->Table().Title));
  MakeControls();
  MakeLayout();
  for (QTimer* timer : {&pictures_, &find_}) timer->setSingleShot(true);
  pictures_.setInterval(PictureAfterMs);
  find_.setInterval(FindAfterMs);
  connect(&pictures_, &QTimer::timeout, this, &frmTableEditor::ShowPictures);
  connect(&find_, &QTimer::timeout, this, &frmTableEditor::FindNow);
  connect(txtFind, &QLineEdit::textEdited, this, [this] { find_.start(); });
  connect(txtFind, &QLineEdit::returnPressed, this, &frmTableEditor::FindNow);
  connect(cmdFirst, &QPushButton::clicked, this, [this] { Move(&TableCursor::MoveFirst); });
  connect(cmdPrevious, &QPushButton::clicked, this, [this] { Move(&TableCursor::MovePrevious); });
  connect(cmdNext, &QPushButton::clicked, this, [this] { Move(&TableCursor::MoveNext); });
  connect(cmdLast, &QPushButton::clicked, this, [this] { Move(&TableCursor::MoveLast); });
  connect(cmdAdd, &QPushButton::clicked, this, &frmTableEditor::Add);
  connect(cmdEdit, &QPushButton::clicked, this, &frmTableEditor::Edit);
  connect(cmdDelete, &QPushButton::clicked, this, &frmTableEditor::Delete);
  connect(cmdRefresh, &QPushButton::clicked, this, &frmTableEditor::Refresh);
  connect(cmdUpdate, &QPushButton::clicked, this, &frmTableEditor::Update);
  connect(cmdCancel, &QPushButton::clicked, this, &frmTableEditor::Cancel);
  connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
  if (grdRows != nullptr) {
    connect(grdRows->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& now) { TakeFromGrid(now.row()); });
    connect(grdRows->verticalScrollBar(), &QScrollBar::valueChanged, this, &frmTableEditor::LoadAtEnd);
  }
  ShowRow();
  if (grdRows != nullptr) grdRows->resizeColumnsToContents();
  txtFind->setFocus();
}

void frmTableEditor::Tell(const DbError& error, const std::string& ahead) {
  dialogs_.MessageBox(FromQt(windowTitle()), ahead + error.Description, BoxButtons::Ok, BoxIcon::Warning);
}

// In the box for finding, Return means that.
void frmTableEditor::keyPressEvent(QKeyEvent* event) {
  if (IsReturn(*event) && txtFind->hasFocus()) return;
  FormWindow::keyPressEvent(event);
}

// ---- Moving

void frmTableEditor::Move(DbResult<void> (TableCursor::*go)()) {
  auto moved = (editor_->Moved().*go)();
  if (moved) moved = editor_->FollowMaster();
  if (!moved) Tell(moved.error());
  ShowRow();
}

void frmTableEditor::FindNow() {
  find_.stop();
  if (txtFind->text().isEmpty() || editor_->Rows().EditingRecord()) return;
  WhileFinding progress;
  const auto found = editor_->Find(FromQt(txtFind->text()), progress);
  if (!found) return Tell(found.error());
  labDoing->setText(*found ? QString() : tr("No record begins so"));
  if (*found) ShowRow();
}

void frmTableEditor::TakeFromGrid(int row) {
  if (fills_ || row < 0) return;
  if (const auto moved = editor_->Rows().MoveTo(row); !moved) Tell(moved.error());
  // The grid is in the middle of its own move.
  QMetaObject::invokeMethod(this, &frmTableEditor::ShowRow, Qt::QueuedConnection);
}

// Who comes near either end of what has been read gets more, without that the rows in sight move.
void frmTableEditor::LoadAtEnd() {
  if (fills_) return;
  QScrollBar& bar = *grdRows->verticalScrollBar();
  const bool behind = bar.value() >= bar.maximum();
  if (!behind && bar.value() > bar.minimum()) return;
  TableCursor& rows = editor_->Rows();
  const std::int64_t first = rows.FirstLoaded();
  const auto more = rows.LoadMore(behind);
  if (!more) return Tell(more.error());
  if (!*more) return;
  const int value = bar.value() + static_cast<int>(first - rows.FirstLoaded());
  ShowGrid();
  fills_ = true;
  bar.setValue(value);
  fills_ = false;
}

// ---- Changing

bool frmTableEditor::MayChange() {
  const auto refusal = CheckRight(Right::Database, level_());
  if (refusal)
    dialogs_.MessageBox(std::string(refusal->Title), std::string(refusal->Text), BoxButtons::Ok,
                        BoxIcon::Warning);
  return !refusal;
}

void frmTableEditor::Add() {
  if (!MayChange()) return;
  if (editor_->Master() != nullptr && !editor_->Master()->HasRow()) {
    dialogs_.MessageBox(FromQt(windowTitle()), "There is no instrument that a record could be added to.",
                        BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  editor_->Rows().AddNew();
  ShowValues();
  ShowState();
  boxes_.front()->Entry().setFocus();
}

void frmTableEditor::Edit() {
  if (!MayChange() || !editor_->Rows().HasRow()) return;
  if (pictures_.isActive()) ShowPictures();
  editor_->Rows().Edit();
  ShowState();
  boxes_.front()->Entry().setFocus();
}

void frmTableEditor::Delete() {
  if (!MayChange() || !editor_->Rows().HasRow()) return;
  const std::string question = "Record " + std::to_string(editor_->Rows().AbsolutePosition()) +
                               " will be deleted. Are you sure you want to continue ?";
  if (dialogs_.MessageBox(FromQt(windowTitle()), question, BoxButtons::NoUnlessYes, BoxIcon::Question) !=
      BoxAnswer::Yes)
    return;
  const auto fate = [&] {
    WhileWaiting progress(*prbWaiting, *cmdStop, *labDoing);
    return editor_->Rows().Delete(progress);
  }();
  if (!fate) Tell(fate.error(), "The record was not deleted. ");
  if (fate && *fate != RowFate::Same) return TellFate(*fate, true);
  ShowRow();
}

void frmTableEditor::Refresh() {
  if (const auto read = editor_->Requery(); !read)
    dialogs_.MessageBox(FromQt(windowTitle()), read.error(), BoxButtons::Ok, BoxIcon::Warning);
  ShowRow();
}

void frmTableEditor::Cancel() {
  editor_->Rows().Cancel();
  ShowRow();
}

bool frmTableEditor::HasChanges() const {
  return editor_->Rows().EditingRecord() &&
         std::ranges::any_of(boxes_, [](const auto& box) { return box->IsChanged(); });
}

bool frmTableEditor::Update() {
  TableCursor::Changes changes;
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    if (const auto refusal = boxes_[i]->Refusal()) {
      boxes_[i]->Entry().setFocus();
      scrFields->ensureWidgetVisible(&boxes_[i]->Widget());
      dialogs_.MessageBox(FromQt(windowTitle()), *refusal, BoxButtons::Ok, BoxIcon::Warning);
      return false;
    }
    if (boxes_[i]->IsChanged()) changes[editor_->Fields()[i].Column] = boxes_[i]->Entered();
  }
  if (changes.empty() && editor_->Rows().IsNew()) {
    dialogs_.MessageBox(FromQt(windowTitle()), "Nothing has been entered for the new record.", BoxButtons::Ok,
                        BoxIcon::Warning);
    return false;
  }
  const auto fate = [&] {
    WhileWaiting progress(*prbWaiting, *cmdStop, *labDoing);
    return editor_->Rows().Update(changes, progress);
  }();
  if (!fate) {
    Tell(fate.error(), "The record was not stored. What was entered is still there. ");
    return false;
  }
  if (*fate != RowFate::Same) {
    TellFate(*fate, false);
    return false;
  }
  ShowRow();
  return true;
}

void frmTableEditor::TellFate(RowFate fate, bool deletes) {
  const std::string title = FromQt(windowTitle()), text = FateText(fate, deletes);
  const bool isTyped = HasChanges();
  const std::string question =
      fate == RowFate::Gone ? " Do you want to go on to the next record ?" : " Do you want to load it anew ?";
  const BoxAnswer answer =
      dialogs_.MessageBox(title, text + question + (isTyped ? " What was entered here is lost then." : ""),
                          isTyped ? BoxButtons::NoUnlessYes : BoxButtons::YesNo, BoxIcon::Warning);
  if (answer == BoxAnswer::Yes)
    if (const auto loaded = editor_->Rows().Reload(); !loaded) Tell(loaded.error());
  if (answer == BoxAnswer::Yes || !isTyped) ShowRow();
}

bool frmTableEditor::MayLeave() {
  return !HasChanges() || MayCloseAfter(dialogs_, FromQt(windowTitle()),
                                        "The record has changes that are not stored. Do you want to store "
                                        "them ?",
                                        [this] { return Update(); });
}

void frmTableEditor::Closing() {
  if (!desk_.IsEnding()) desk_.Open(WindowId::SelectTable);
}

// ---- Showing

void frmTableEditor::ShowRow() {
  ShowValues();
  ShowGrid();
  ShowState();
}

void frmTableEditor::ShowValues() {
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    const Field& field = editor_->Fields()[i];
    if (field.Kind == FieldKind::Picture && editor_->Rows().HasRow() && !editor_->Rows().IsNew()) {
      // Not for every row that one pages past.
      if (auto* box = qobject_cast<PictureBox*>(&boxes_[i]->Widget())) box->ShowComing();
      pictures_.start();
      continue;
    }
    const auto value = editor_->Value(field);
    boxes_[i]->Show(value ? *value : DbValue());
  }
  if (txtMaster != nullptr)
    txtMaster->setText(editor_->Master()->HasRow() ? ToQt(TextOf(editor_->Master()->Values().front())) : "");
}

void frmTableEditor::ShowPictures() {
  pictures_.stop();
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    const Field& field = editor_->Fields()[i];
    if (field.Kind != FieldKind::Picture || boxes_[i]->IsChanged()) continue;
    const auto value = editor_->Value(field);
    if (!value) return Tell(value.error());
    boxes_[i]->Show(*value);
  }
}

void frmTableEditor::ShowGrid() {
  if (grdRows == nullptr) return;
  fills_ = true;
  const int top = grdRows->verticalScrollBar()->value();
  if (model_.Refresh()) grdRows->verticalScrollBar()->setValue(top);
  const int row = static_cast<int>(editor_->Rows().LoadedIndex());
  if (row >= 0 && row != grdRows->currentIndex().row()) {
    const int column = std::max(grdRows->currentIndex().column(), 0);
    grdRows->setCurrentIndex(model_.index(row, column));
  }
  if (row < 0) grdRows->clearSelection();
  fills_ = false;
  const auto count = editor_->Rows().Count();
  if (!count) return labCount->setText(ToQt(count.error().Description));
  labCount->setText(editor_->Rows().IsCut() ? tr("The first %1 records").arg(*count)
                    : *count == 1           ? tr("1 record")
                                            : tr("%1 records").arg(*count));
}

void frmTableEditor::ShowState() {
  TableCursor& rows = editor_->Rows();
  const bool edits = rows.EditingRecord();
  const bool hadFocus = isAncestorOf(QApplication::focusWidget());
  const bool mayChange = IsAllowed(Right::Database, level_());
  for (QPushButton* button : {cmdAdd, cmdEdit, cmdDelete, cmdRefresh, cmdClose}) button->setVisible(!edits);
  for (QPushButton* button : {cmdUpdate, cmdCancel}) button->setVisible(edits);
  for (QPushButton* button : {cmdFirst, cmdPrevious, cmdNext, cmdLast}) {
    button->setVisible(!edits);
    button->setEnabled(editor_->Moved().HasRow());
  }
  for (QPushButton* button : {cmdEdit, cmdDelete}) button->setEnabled(rows.HasRow());
  txtFind->setEnabled(!edits);
  if (grdRows != nullptr) grdRows->setEnabled(!edits);
  for (const auto& box : boxes_) {
    box->SetEditable(edits);
    box->Widget().setEnabled(mayChange);
  }
  lblStatus->setText(rows.IsNew() ? tr("Add record")
                     : edits      ? tr("Edit record")
                                  : tr("Record: %1").arg(editor_->Moved().AbsolutePosition()));
  SetKeyButtons(edits ? cmdUpdate : nullptr, edits ? cmdCancel : cmdClose);
  // The button that had the focus may be hidden now.
  if (hadFocus && !edits && (focusWidget() == nullptr || !focusWidget()->isVisibleTo(this)))
    cmdNext->setFocus();
}

}  // namespace hyetex
