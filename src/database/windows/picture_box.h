// A picture of a long binary column: looked at, loaded from a file, saved into one, and taken away.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include "platform/dialogs.h"
#include "platform/odbc/values.h"

namespace hyetex {

class PictureBox : public QWidget {
  Q_OBJECT

 public:
  explicit PictureBox(Dialogs& dialogs, QWidget* parent = nullptr);

  void Show(const DbValue& value);
  /// Says that it is about to be read.
  void ShowComing();
  bool IsChanged() const { return changed_; }
  const DbValue& Value() const { return value_; }
  void SetEditable(bool editable);

 private:
  void Load();
  void Save();
  void Draw();
  std::string Bytes() const { return TextOf(value_); }

  Dialogs& dialogs_;
  DbValue value_;
  bool changed_ = false, editable_ = false;

  QLabel *labPicture, *labPictureKind;
  QPushButton *cmdLoadPicture, *cmdSavePicture, *cmdClearPicture;
};

}  // namespace hyetex
