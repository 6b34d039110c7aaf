// A folder to choose: typed, picked in a tree, or looked for in the system's box.
#pragma once

#include <QFileSystemModel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>
#include <QWidget>
#include <string>

#include "platform/dialogs.h"

namespace hyetex {

class FolderBox : public QWidget {
  Q_OBJECT

 public:
  /// `drvName` and `dirName` are the names of the line and of the tree; `title` is that of its boxes.
  FolderBox(Dialogs& dialogs, const char* drvName, const char* dirName, std::string title);

  const std::string& Folder() const { return folder_; }
  /// Shows a folder, whether it is there or not.
  void ShowFolder(const std::string& folder);
  void SetTitle(std::string title) { title_ = std::move(title); }
  /// Whether Return belongs to the line or the tree.
  bool TakesReturn() const { return drv_->hasFocus() || dir_->hasFocus(); }
  /// In the order of the Tab key.
  QList<QWidget*> Controls() const { return {drv_, cmdBrowse_, dir_}; }

 signals:
  /// Another folder that is there was chosen, and is shown.
  void FolderChosen();

 private:
  void Choose(const std::string& folder);
  void ShowInTree();

  Dialogs& dialogs_;
  std::string title_, folder_;
  QLineEdit* drv_;
  QPushButton* cmdBrowse_;
  QTreeView* dir_;
  QFileSystemModel* folders_;
};

}  // namespace hyetex
