#include "staging/windows/frmLogin.h"

#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QShortcut>
#include <QVBoxLayout>

#include "platform/controls.h"
#include "platform/qt_text.h"
#include "staging/lists/list_recovery.h"
#include "staging/lists/login.h"

namespace hyetex {
namespace {

constexpr const char* Title = "User Login";

}  // namespace

frmLogin::frmLogin(Desk& desk, Dialogs& dialogs, Settings& settings, ReferenceLists& lists,
                   std::int16_t& currentUser, QWidget* parent)
    : QWidget(parent),
      desk_(desk),
      dialogs_(dialogs),
      settings_(settings),
      lists_(lists),
      currentUser_(currentUser),
      txtUserName(new QComboBox),
      txtPassword(new QLineEdit),
      labNotice(new QLabel),
      cmdOK(new QPushButton(tr("&OK"))),
      cmdCancel(new QPushButton(tr("&Cancel"))) {
  setObjectName("frmLogin");
  setWindowTitle(Title);
  MakeLayout();

  // A name is compared as it was typed, never completed to another one.
  txtUserName->setEditable(true);
  txtUserName->setCompleter(nullptr);
  txtUserName->setInsertPolicy(QComboBox::NoInsert);
  txtPassword->setEchoMode(QLineEdit::Password);
  SelectAllOnFocus(txtPassword);

  connect(txtUserName->lineEdit(), &QLineEdit::returnPressed, txtPassword,
          [this] { txtPassword->setFocus(); });
  connect(txtPassword, &QLineEdit::returnPressed, this, [this] {
    cmdOK->setFocus();
    Ok();
  });
  connect(cmdOK, &QPushButton::clicked, this, &frmLogin::Ok);
  connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
  auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(escape, &QShortcut::activated, this, &QWidget::close);

  ReadUsers();
  txtUserName->setCurrentIndex(-1);
  txtUserName->setEditText(ToQt(settings_.Get(setting::UserName)));
  if (!txtUserName->currentText().isEmpty()) txtPassword->setFocus();
}

void frmLogin::MakeLayout() {
  txtUserName->setObjectName("txtUserName");
  txtPassword->setObjectName("txtPassword");
  cmdOK->setObjectName("cmdOK");
  cmdCancel->setObjectName("cmdCancel");
  cmdOK->setDefault(true);
  cmdOK->setAutoDefault(true);
  cmdCancel->setAutoDefault(true);

  auto* fields = new QFormLayout;
  fields->addRow(tr("&User Name:"), txtUserName);
  fields->addRow(tr("&Password:"), txtPassword);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdOK);
  buttons->addWidget(cmdCancel);
  auto* all = new QVBoxLayout(this);
  labNotice->setObjectName("labNotice");
  labNotice->setTextFormat(Qt::PlainText);
  labNotice->setTextInteractionFlags(Qt::TextSelectableByMouse);
  labNotice->setWordWrap(true);
  labNotice->setMinimumWidth(fontMetrics().averageCharWidth() * 64);
  all->addWidget(labNotice);
  all->addLayout(fields);
  all->addStretch();
  all->addSpacing(12);
  all->addLayout(buttons);
  setMinimumWidth(360);
}

bool frmLogin::ReadUsers() {
  auto read = RecoverLists(settings_.Folder());
  trouble_ = read ? read->Notice : read.error();
  nobodyIsKnown_ = read && read->NobodyIsKnown;
  labNotice->setText(ToQt(trouble_));
  labNotice->setVisible(!trouble_.empty());
  if (!read) return false;
  lists_ = std::move(read->Lists);
  const QString typed = txtUserName->currentText();
  txtUserName->clear();
  if (!nobodyIsKnown_)
    for (const UserRecord& user : lists_.Users) txtUserName->addItem(ToQt(user.Name));
  txtUserName->setEditText(typed);
  return true;
}

void frmLogin::Ok() {
  // The file may have been mended since.
  if (!trouble_.empty() && !ReadUsers()) {
    dialogs_.MessageBox(Title, trouble_, BoxButtons::Ok, BoxIcon::Critical);
    return;
  }
  const std::string name = FromQt(txtUserName->currentText()), password = FromQt(txtPassword->text());
  if (nobodyIsKnown_ && !name.empty()) AdmitByName(lists_, name, password);
  const auto user = CheckLogin(lists_.Users, name, password);
  if (!user) {
    dialogs_.MessageBox(Title, std::string(LoginFaultText(user.error())), BoxButtons::Ok, BoxIcon::Warning);
    if (user.error() == LoginFault::WrongPassword)
      txtPassword->setFocus();
    else
      txtUserName->setFocus();
    return;
  }
  currentUser_ = *user;
  loggedIn_ = true;
  close();
  desk_.LoggedIn();
}

void frmLogin::closeEvent(QCloseEvent* event) {
  if (const auto kept = settings_.Set(setting::UserName, FromQt(txtUserName->currentText())); !kept)
    dialogs_.MessageBox(Title, kept.error(), BoxButtons::Ok, BoxIcon::Warning);
  event->accept();
  if (!loggedIn_) desk_.EndProgram();
}

}  // namespace hyetex
