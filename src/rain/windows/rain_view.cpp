#include "rain/windows/rain_view.h"

#include <QKeyEvent>
#include <utility>

#include "core/numbers.h"
#include "platform/controls.h"
#include "platform/qt_text.h"
#include "rain/rain_graphs.h"
#include "rain/rain_sheets.h"

namespace hyetex {

RainView::RainView() {
  Named(this, "picRain");
  setAccessibleName(tr("Rain over time"));
  setToolTip(
      tr("A click on a bar opens its chart; with the keys, left and right and Return.\n"
         "The wheel zooms, the right button moves the part in view, Home shows all."));
  connect(this, &GraphView::Clicked, this, [this](GraphPoint at) {
    const auto step = StepAt(steps_, at.X, clock_);
    if (!step) return;
    Frame(*step);
    emit StepChosen(*step);
  });
}

void RainView::Show(Graph graph, std::vector<RainStep> steps, const RainClock& clock) {
  steps_ = std::move(steps);
  clock_ = clock;
  sums_.clear();
  double sum = 0;
  for (const RainStep& step : steps_) sums_.push_back(sum += step.Depth);
  framed_.reset();
  SetFrame(std::nullopt);
  ShowGraph(std::move(graph));
}

std::string RainView::InWords(std::size_t step) const {
  return StepInWords(steps_[step], clock_) + ", " + RoundedText(sums_[step], 2) + " mm until then";
}

std::string RainView::ReadOutAt(const GraphLayout& layout, double x, double y) {
  const Rect& plot = layout.Plot;
  if (!layout.HasPlot || x < plot.Left || x > plot.Right() || y < plot.Top || y > plot.Bottom()) return {};
  const auto step = StepAt(steps_, layout.ToData(x, y).X, clock_);
  return step ? InWords(*step) : std::string();
}

void RainView::Frame(std::size_t step) {
  framed_ = step;
  SetFrame(GraphSpan{ToLocal(steps_[step].Start, clock_), ToLocal(steps_[step].End, clock_)});
  emit ReadOutChanged(hyetex::ToQt(InWords(step)));
}

void RainView::GoTo(int way, bool toRain) {
  const auto count = static_cast<std::ptrdiff_t>(steps_.size());
  std::ptrdiff_t at = framed_ ? static_cast<std::ptrdiff_t>(*framed_) : (way > 0 ? -1 : count);
  toRain = toRain || !framed_;  // the first one is worth a look
  do at += way;
  while (toRain && at >= 0 && at < count && steps_[static_cast<std::size_t>(at)].Depth == 0);
  if (at >= 0 && at < count) Frame(static_cast<std::size_t>(at));
}

void RainView::keyPressEvent(QKeyEvent* event) {
  const bool toRain = event->modifiers() & Qt::ControlModifier;
  const bool ours = !(event->modifiers() & Qt::AltModifier);
  if (ours && event->key() == Qt::Key_Left)
    GoTo(-1, toRain);
  else if (ours && event->key() == Qt::Key_Right)
    GoTo(1, toRain);
  else if (ours && IsReturn(*event) && framed_)
    emit StepChosen(*framed_);
  else
    GraphView::keyPressEvent(event);
}

}  // namespace hyetex
