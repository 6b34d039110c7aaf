// What the pointer is on: the moment, the depth and the intensity of the nearest place of the trace, the same
// in both views; and the comment of a point that is close.
#pragma once

#include <string>
#include <vector>

#include "chartfiles/chart_reader.h"
#include "editor/chart_views.h"
#include "editor/placed_trace.h"
#include "graph/layout.h"

namespace hyetex {

/// A point's comment with the fixed codes in words: "End of data gap: Clock malfunction (CODE205)".
std::string CommentInWords(std::string_view comment);

/// Made once for a chart and a view, and asked with each move of the pointer.
class ChartReadOut {
 public:
  ChartReadOut() = default;
  ChartReadOut(const ChartReading& reading, ChartViewKind kind);

  /// One line for a position of the surface that the layout was made for; empty outside its plot.
  std::string At(const GraphLayout& layout, double x, double y) const;

 private:
  // From a place of the view to another, with what the series says of both.
  struct Step {
    GraphPoint From, To;
    SeriesPoint Before, After;
    bool IsGap = false;
  };
  struct Note {
    GraphPoint At;
    std::string Text;
  };
  void TakeTrace(const ChartReading& reading);
  void TakeSeries(const ChartReading& reading);

  ChartViewKind kind_ = ChartViewKind::Digitization;
  bool depthKnown_ = false;
  PlacedTrace placed_;
  std::vector<Step> steps_;
  std::vector<Note> notes_;
};

}  // namespace hyetex
