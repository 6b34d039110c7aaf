#include "staging/windows/frmInit.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "core/definitions.h"
#include "core/files.h"
#include "platform/odbc/connection_text.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

QVBoxLayout* AddGroup(QGridLayout& grid, int row, int column, const char* title, const char* name = "") {
  auto* group = new QGroupBox(QObject::tr(title));
  group->setObjectName(name);
  grid.addWidget(group, row, column);
  return new QVBoxLayout(group);
}

}  // namespace

frmInit::frmInit(Desk& desk, Dialogs& dialogs, Settings& settings, std::string& connectionText,
                 MainMenuServices services, QWidget* parent)
    : FormWindow("frmInit", WindowId::MainMenu, desk, settings, parent),
      dialogs_(dialogs),
      connectionText_(connectionText),
      services_(std::move(services)),
      labDataBase(new QLabel),
      cmdViewSettings(new QPushButton(tr("&View and Edit Program Definitions File (definitions.dat)"))),
      cmdHelp(new QPushButton(tr("&HELP"))),
      cmdExit(new QPushButton(tr("E&XIT"))) {
  setWindowTitle(tr("Main Menu"));
  labDataBase->setObjectName("labDataBase");
  labDataBase->setTextFormat(Qt::PlainText);
  labDataBase->setWordWrap(true);
  cmdViewSettings->setObjectName("cmdViewSettings");
  cmdViewSettings->setToolTip(
      tr("Allows user to use notepad to change program initial settings, must restart program for changes to "
         "take "
         "effect."));
  cmdHelp->setObjectName("cmdHelp");
  cmdExit->setObjectName("cmdExit");
  MakeLayout();
  // Return presses the button that has the focus; Escape does nothing, since behind the menu there is only
  // the end.
  for (QPushButton* button : findChildren<QPushButton*>()) {
    button->setAutoDefault(true);
    button->setMinimumWidth(button->sizeHint().width() + 2 * fontMetrics().averageCharWidth());
  }

  connect(cmdViewSettings, &QPushButton::clicked, this, [this] {
    if (!services_.OpenText(JoinPath(settings_.Folder(), DefinitionsFileName)))
      desk_.Open(WindowId::Definitions);
  });
  connect(cmdHelp, &QPushButton::clicked, this, [this] { services_.Help(); });
  connect(cmdExit, &QPushButton::clicked, this, [this] { desk_.EndProgram(); });

  connectionText_ = settings_.Get(setting::DatabaseName);
  ShowConnection();
}

QPushButton* frmInit::MakeButton(const MenuCommand& command) {
  auto* button = new QPushButton(ToQt(command.Caption));
  button->setObjectName(ToQt(command.Name));
  button->setEnabled(desk_.Has(command.Opens));
  if (!button->isEnabled()) button->setToolTip(tr("This window comes with a later version."));
  connect(button, &QPushButton::clicked, this, [this, &command] { Run(command); });
  return button;
}

void frmInit::MakeLayout() {
  auto* grid = new QGridLayout;
  const std::array<QVBoxLayout*, 4> groups{
      // in the order of MenuGroup
      AddGroup(*grid, 0, 0, "Digitize Charts", "frmButton"),
      AddGroup(*grid, 1, 0, "Populate Database with Digitized Data"),
      AddGroup(*grid, 0, 1, "Select Database and Edit as Needed"),
      AddGroup(*grid, 1, 1, "Share Data"),
  };
  for (const MenuCommand& command : MainMenuCommands())
    groups[static_cast<std::size_t>(command.Group)]->addWidget(MakeButton(command));
  groups[2]->addWidget(labDataBase);
  QVBoxLayout* tools = AddGroup(*grid, 2, 0, "Program Utilities", "frmTool");
  tools->addWidget(cmdViewSettings);
  tools->addWidget(cmdHelp);
  grid->addWidget(cmdExit, 2, 1, Qt::AlignRight | Qt::AlignBottom);
  for (QVBoxLayout* group : groups) group->addStretch();
  auto* all = new QVBoxLayout(this);
  all->addLayout(grid);
  all->addStretch();
}

void frmInit::ShowConnection(std::string_view before) {
  labDataBase->setText(ToQt(std::string(before) + ShownConnection(connectionText_)));
}

void frmInit::Run(const MenuCommand& command) {
  if (const auto refusal = CheckRight(command.Needs, services_.Level())) {
    dialogs_.MessageBox(std::string(refusal->Title), std::string(refusal->Text), BoxButtons::Ok,
                        BoxIcon::Warning);
    return;
  }
  if (command.NeedsDatabase && !services_.DatabaseOpens()) {
    dialogs_.MessageBox("Defining Alpha Values", "Your database is not defined or does not exist",
                        BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  if (command.Opens == WindowId::Editor && !PrepareEditor()) return;
  desk_.Open(command.Opens);
  ShowConnection();
  if (command.LeavesMenu) close();
}

// Without a database the charts can only be on the hard drive.
bool frmInit::PrepareEditor() {
  std::optional<ChartSourceKind> source = ChartSourceKind::HardDrive;
  if (services_.DatabaseOpens()) source = services_.AskForSource();
  if (source) services_.SetSource(*source);
  return source.has_value();
}

}  // namespace hyetex
