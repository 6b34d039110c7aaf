// A line, a frame or a mark that stands over another widget and lets the mouse through. Moving it repaints
// only what it uncovers.
#pragma once

#include <QColor>
#include <QWidget>

namespace hyetex {

class Shape : public QWidget {
  Q_OBJECT

 public:
  enum class Kind {
    Filled,
    Outline,
    Dashed,
    Pointer,  ///< a ring with a dot in its middle
  };

  Shape(const char* name, Kind kind, const QColor& colour, QWidget* parent);

  void SetColour(const QColor& colour);
  const QColor& Colour() const { return colour_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Kind kind_;
  QColor colour_;
};

}  // namespace hyetex
