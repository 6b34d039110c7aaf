// Controls beside each other, on as many lines as the width asks for.
#pragma once

#include <QLayout>
#include <QList>

namespace hyetex {

class FlowLayout : public QLayout {
 public:
  explicit FlowLayout(QWidget* parent) : QLayout(parent) { setContentsMargins(0, 0, 0, 0); }
  ~FlowLayout() override { qDeleteAll(items_); }

  void addItem(QLayoutItem* item) override { items_ << item; }
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override { return items_.value(index); }
  QLayoutItem* takeAt(int index) override {
    return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
  }
  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override { return Place({0, 0, width, 0}, false); }
  QSize sizeHint() const override { return minimumSize(); }
  QSize minimumSize() const override;
  void setGeometry(const QRect& area) override;

 private:
  /// The height that the lines take; moves the controls there if `moves`.
  int Place(const QRect& area, bool moves) const;

  QList<QLayoutItem*> items_;
};

}  // namespace hyetex
