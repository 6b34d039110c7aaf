#include "exchange/windows/exchange_form.h"

#include "core/files.h"
#include "database/access/report_error.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {

ExchangeForm::ExchangeForm(const char* name, WindowId id, Desk& desk, Dialogs& dialogs, Settings& settings,
                           HyetexPlotDB& database)
    : FormWindow(name, id, desk, settings),
      dialogs_(dialogs),
      database_(database),
      txtFolder(Named(new QLineEdit, "txtFolder")),
      cmdFolder(Named(new QPushButton(tr("&Browse...")), "cmdFolder")),
      cmdStop(Named(new QPushButton(tr("&Stop")), "cmdStop")),
      prbExchange(Named(new QProgressBar, "prbExchange")),
      labDoing(Named(new QLabel, "labDoing")) {
  const std::string stored = settings.Get(setting::ExchangeFolder);
  SetFolder(stored.empty() ? JoinPath(settings.Folder(), "Data") : stored);
  connect(cmdFolder, &QPushButton::clicked, this, [this] {
    if (const auto folder = dialogs_.ChooseFolder(FromQt(windowTitle()), Folder())) SetFolder(*folder);
  });
}

QLayout* ExchangeForm::FolderRow() {
  txtFolder->setMinimumWidth(50 * txtFolder->fontMetrics().averageCharWidth());
  auto* row = new QHBoxLayout;
  row->addWidget(LabelOf("XML fo&lder:", txtFolder));
  row->addWidget(txtFolder, 1);
  row->addWidget(cmdFolder);
  return row;
}

QLayout* ExchangeForm::ProgressRow() {
  labDoing->setTextFormat(Qt::PlainText);
  prbExchange->hide();
  cmdStop->hide();
  auto* row = new QHBoxLayout;
  row->addWidget(labDoing);
  row->addWidget(prbExchange, 1);
  row->addWidget(cmdStop);
  return row;
}

std::string ExchangeForm::Folder() const { return FromQt(txtFolder->text().trimmed()); }

void ExchangeForm::SetFolder(const std::string& folder) {
  txtFolder->setText(ToQt(folder));
  txtFolder->setCursorPosition(0);
  txtFolder->setToolTip(ToQt(folder));
}

std::optional<std::string> ExchangeForm::ChooseXml(const std::string& title) {
  const auto file = dialogs_.ChooseFile(title, Folder(), "xML files (*.xml)");
  if (!file) return file;
  std::string folder = file->substr(0, file->size() - BaseName(*file).size());
  if (folder.size() > 1) folder.pop_back();
  SetFolder(folder);
  return file;
}

bool ExchangeForm::OpenDatabase(const std::string& source) {
  const auto opened = database_.OpenDatabase();
  if (!opened) ReportError(dialogs_, settings_.Folder(), opened.error(), source);
  return opened.has_value();
}

std::unique_ptr<ShownProgress> ExchangeForm::Shown() {
  return std::make_unique<ShownProgress>(*prbExchange, *cmdStop,
                                         [this](const std::string& what) { labDoing->setText(ToQt(what)); });
}

std::optional<Markup> ExchangeForm::AskMarkup(const std::string& title,
                                              const std::vector<const ExportedTable*>& marked) {
  if (marked.empty()) return Markup::Escaped;
  switch (dialogs_.MessageBox(title, MarkupQuestion(marked), BoxButtons::YesNoCancel, BoxIcon::Question)) {
    case BoxAnswer::Yes:
      return Markup::Escaped;
    case BoxAnswer::No:
      return Markup::Unchanged;
    default:
      return std::nullopt;
  }
}

// In the folder's line Return means the folder, which is taken as it is typed.
void ExchangeForm::keyPressEvent(QKeyEvent* event) {
  if (IsReturn(*event) && txtFolder->hasFocus()) return;
  FormWindow::keyPressEvent(event);
}

void ExchangeForm::Closing() {
  // What cannot be kept is not worth a message.
  if (!Folder().empty()) (void)settings_.Set(setting::ExchangeFolder, Folder());
}

}  // namespace hyetex
