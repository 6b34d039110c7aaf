// What stands beside the chart view where the mouse is the cursor, so that nothing covers what is traced: the
// tool board, the magnifier, and what belongs to a scan.
#pragma once

#include <QScrollArea>
#include <QVBoxLayout>

namespace hyetex {

class DeskPanel : public QScrollArea {
  Q_OBJECT

 public:
  explicit DeskPanel(QWidget* parent);

  /// Puts a part below the others; the first one says how wide the panel is. A hidden one takes no room.
  void Add(QWidget* part);

 private:
  QWidget* inner_;
  QVBoxLayout* parts_;
};

}  // namespace hyetex
