#include "platform/folder_box.h"

#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include "core/files.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr int SortedAfterMs = 250;

}  // namespace

FolderBox::FolderBox(Dialogs& dialogs, const char* drvName, const char* dirName, std::string title)
    : dialogs_(dialogs), title_(std::move(title)) {
  drv_ = Named(new QLineEdit, drvName);
  drv_->setAccessibleName(tr("Folder"));
  cmdBrowse_ = Named(new QPushButton(tr("&Browse...")), "cmdBrowse");
  folders_ = new QFileSystemModel(this);
  folders_->setFilter(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Drives);
  folders_->setRootPath(QDir::rootPath());
  dir_ = Named(new QTreeView, dirName);
  dir_->setAccessibleName(tr("Folders"));
  dir_->setModel(folders_);
  dir_->setHeaderHidden(true);
  for (int column = 1; column < folders_->columnCount(); ++column) dir_->hideColumn(column);
  dir_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  dir_->header()->setStretchLastSection(false);

  auto* line = new QHBoxLayout;
  line->addWidget(drv_);
  line->addWidget(cmdBrowse_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(line);
  layout->addWidget(dir_, 1);

  connect(drv_, &QLineEdit::returnPressed, this, [this] { Choose(FromQt(drv_->text())); });
  connect(cmdBrowse_, &QPushButton::clicked, this, [this] {
    if (const auto folder = dialogs_.ChooseFolder(title_, folder_)) Choose(*folder);
  });
  const auto take = [this](const QModelIndex& index) { Choose(FromQt(folders_->filePath(index))); };
  connect(dir_, &QTreeView::clicked, this, take);
  connect(dir_, &QTreeView::activated, this, take);
  // The model reads folders in the background, and sorts them a while after it has told so.
  connect(folders_, &QFileSystemModel::directoryLoaded, this, [this](const QString& read) {
    if (ToQt(folder_).startsWith(read)) QTimer::singleShot(SortedAfterMs, this, &FolderBox::ShowInTree);
  });
}

void FolderBox::ShowFolder(const std::string& folder) {
  folder_ = folder;
  drv_->setText(ToQt(folder));
  drv_->setCursorPosition(0);
  drv_->setToolTip(ToQt(folder));
  ShowInTree();
}

void FolderBox::Choose(const std::string& folder) {
  if (folder.empty() || folder == folder_) return;
  if (!FolderExists(folder)) {
    dialogs_.MessageBox(title_, "There is no folder " + ShownText(folder), BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  ShowFolder(folder);
  emit FolderChosen();
}

void FolderBox::ShowInTree() {
  const QModelIndex index = folders_->index(QDir::cleanPath(ToQt(folder_)));
  dir_->setCurrentIndex(index);
  dir_->scrollTo(index, QAbstractItemView::PositionAtCenter);
  // A folder's name counts more than how deep it stands.
  QScrollBar& across = *dir_->horizontalScrollBar();
  across.setValue(across.value() + dir_->visualRect(index).left() - 2 * dir_->indentation());
}

}  // namespace hyetex
