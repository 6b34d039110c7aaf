// What stands beside the chart view where the mouse is the cursor, so that nothing covers what is traced: the
// tool board, and what belongs to a scan.
#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace hyetex {

class DeskPanel : public QWidget {
  Q_OBJECT

 public:
  explicit DeskPanel(QWidget* parent);

  /// Puts a part below the others. A hidden one takes no room.
  void Add(QWidget* part);

 private:
  QVBoxLayout* parts_;
};

}  // namespace hyetex
