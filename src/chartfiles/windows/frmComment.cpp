#include "chartfiles/windows/frmComment.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>
#include <utility>

#include "chartfiles/comment_list.h"
#include "chartfiles/saving.h"
#include "platform/controls.h"
#include "platform/entry_box.h"
#include "platform/qt_text.h"
#include "platform/up_down.h"

namespace hyetex {
namespace {

constexpr const char* OwnTitle = "Add a comment";
constexpr const char* ListTitle = "Comments List";

}  // namespace

frmComment::frmComment(Desk& desk, Dialogs& dialogs, Settings& settings,
                       const std::vector<CommentRecord>& userComments, std::unique_ptr<CommentTarget> target,
                       QWidget* parent)
    : FormWindow("frmComment", WindowId::Comment, desk, settings, parent),
      dialogs_(dialogs),
      userComments_(userComments),
      target_(std::move(target)) {
  const std::string title = target_->Title();
  setWindowTitle(title.empty() ? OwnTitle : ToQt(title));

  txtCode = new EntryBox(CodeEntry);
  txtCode->setText(ToQt(target_->Code().value_or(settings_.Get(setting::CommentCode))));
  txtCode->setObjectName("txtCode");
  auto* udnCode = new UpDown(txtCode, [](std::string_view text, int way) { return StepNumber(text, way); });
  udnCode->setObjectName("udnCode");
  txtComment = new QLineEdit;
  txtComment->setObjectName("txtComment");
  lstChoices = new QListWidget;
  lstChoices->setObjectName("lstChoices");
  lstChoices->setAccessibleName("Reasons to pick from");
  for (const std::string& choice : target_->Choices()) lstChoices->addItem(ToQt(choice));
  lstChoices->setVisible(lstChoices->count() > 0);

  const auto button = [this](const char* name, const char* caption, auto pressed) {
    auto* made = new QPushButton(caption);
    made->setObjectName(name);
    connect(made, &QPushButton::clicked, this, pressed);
    return made;
  };
  cmdAdd = button("cmdAdd", "&Add Comment", [this] { Add(); });
  cmdClear = button("cmdClear", "C&lear all comments", [this] { target_->Clear(); });
  cmdClear->setVisible(target_->CanClear());
  cmdList = button("cmdList", "&View Comments List", [this] { ShowList(); });
  cmdCancel = button("cmdCancel", "&Cancel", [this] { Leave(); });

  MakeLayout(udnCode);
  SetKeyButtons(cmdAdd, cmdCancel);
  for (QWidget* control :
       {static_cast<QWidget*>(txtCode), static_cast<QWidget*>(txtComment), static_cast<QWidget*>(lstChoices)})
    control->installEventFilter(this);
  SelectAllOnFocus(txtComment);
  // Not with the current item: the list makes its first one current when it merely gets the focus.
  connect(lstChoices, &QListWidget::itemSelectionChanged, this, [this] {
    for (const QListWidgetItem* item : lstChoices->selectedItems()) txtComment->setText(item->text());
  });
  connect(lstChoices, &QListWidget::itemClicked, this,
          [this](const QListWidgetItem* item) { txtComment->setText(item->text()); });
  connect(lstChoices, &QListWidget::itemDoubleClicked, this, [this] { Add(); });
  desk_.Flags.SetOpen(WindowId::Comment, true);
}

void frmComment::MakeLayout(QWidget* udnCode) {
  const auto label = [](const char* caption, QWidget* buddy) {
    auto* made = new QLabel(caption);
    made->setBuddy(buddy);
    return made;
  };
  auto* layout = new QGridLayout(this);
  layout->addWidget(label("C&omment Code:", txtCode), 0, 0);
  txtCode->setFixedWidth(txtCode->fontMetrics().horizontalAdvance("0000000000"));
  layout->addWidget(txtCode, 0, 1);
  layout->addWidget(udnCode, 0, 2, Qt::AlignLeft);
  layout->addWidget(label("&Description:", txtComment), 1, 0);
  txtComment->setMinimumWidth(txtComment->fontMetrics().averageCharWidth() * 50);
  layout->addWidget(txtComment, 1, 1, 1, 2);
  const int rows = std::clamp(lstChoices->count(), 1, 8);
  lstChoices->setFixedHeight(lstChoices->sizeHintForRow(0) * rows + 2 * lstChoices->frameWidth());
  layout->addWidget(lstChoices, 2, 1, 1, 2);
  layout->setRowStretch(3, 1);
  layout->setColumnStretch(2, 1);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdList);
  buttons->addWidget(cmdClear);
  buttons->addStretch();
  buttons->addWidget(cmdAdd);
  buttons->addWidget(cmdCancel);
  layout->addLayout(buttons, 4, 0, 1, 3);

  LinkTabs({txtCode, txtComment, lstChoices, cmdAdd, cmdCancel, cmdList, cmdClear});
}

void frmComment::showEvent(QShowEvent* event) {
  FormWindow::showEvent(event);
  if (!event->spontaneous()) txtComment->setFocus();
}

bool frmComment::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && IsReturn(*static_cast<QKeyEvent*>(event))) {
    if (watched == txtCode)
      txtComment->setFocus();
    else
      Add();
    return true;
  }
  return FormWindow::eventFilter(watched, event);
}

void frmComment::Add() {
  if (Take()) Leave();
}

bool frmComment::Take() {
  const std::string code = FromQt(txtCode->text()), text = FromQt(txtComment->text());
  if ((code.empty() && text.empty()) || RefusesEntries(*this, dialogs_, OwnTitle)) return false;
  const auto refusal = target_->Add(code, text);
  if (refusal) dialogs_.MessageBox(OwnTitle, *refusal, BoxButtons::Ok, BoxIcon::Warning);
  return !refusal;
}

bool frmComment::MayLeave() {
  return txtComment->text().isEmpty() ||
         MayCloseAfter(dialogs_, OwnTitle, "The comment has not been added. Do you want to add it ?",
                       [this] { return Take(); });
}

void frmComment::ShowList() { desk_.OpenLargeView(ListTitle, CommentListText(userComments_)); }

void frmComment::Closing() {
  if (!CheckNumber(FromQt(txtCode->text()), CodeEntry))
    (void)settings_.Set(setting::CommentCode, FromQt(txtCode->text()));
  desk_.CloseLargeView(ListTitle);
  desk_.Flags.SetOpen(WindowId::Comment, false);
  target_->Closed();
}

}  // namespace hyetex
