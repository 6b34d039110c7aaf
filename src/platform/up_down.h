// Two small arrows beside a text box that step what it holds. The box's own Up and Down keys do the same.
#pragma once

#include <QLineEdit>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

namespace hyetex {

class UpDown : public QWidget {
  Q_OBJECT

 public:
  /// `step` makes the box's next text from its present one; its direction is 1 or -1.
  UpDown(QLineEdit* box, std::function<std::string(std::string_view text, int direction)> step,
         QWidget* parent = nullptr);

  void Step(int direction);

 signals:
  void Stepped();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QLineEdit* box_;
  std::function<std::string(std::string_view, int)> step_;
};

}  // namespace hyetex
