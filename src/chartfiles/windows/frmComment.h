// The comment window: a code, a text, or both, for whatever it was opened for.
#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <memory>
#include <vector>

#include "chartfiles/comment_target.h"
#include "core/records.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

class frmComment : public FormWindow {
  Q_OBJECT

 public:
  /// `userComments` are the reference list's, and must outlive the window.
  frmComment(Desk& desk, Dialogs& dialogs, Settings& settings, const std::vector<CommentRecord>& userComments,
             std::unique_ptr<CommentTarget> target, QWidget* parent = nullptr);

 protected:
  bool MayLeave() override;
  void Closing() override;
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void MakeLayout(QWidget* udnCode);
  void Add();
  /// Hands the comment on; false if there is none or it cannot be taken, which the operator has been told.
  bool Take();
  void ShowList();

  Dialogs& dialogs_;
  const std::vector<CommentRecord>& userComments_;
  std::unique_ptr<CommentTarget> target_;

  QLineEdit *txtCode, *txtComment;
  QListWidget* lstChoices;
  QPushButton *cmdAdd, *cmdClear, *cmdList, *cmdCancel;
};

}  // namespace hyetex
