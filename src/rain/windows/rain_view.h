// An instrument's rain as a picture: bars of its steps and the sum.
#pragma once

#include <optional>
#include <vector>

#include "graph/windows/graph_view.h"
#include "rain/rain_steps.h"

namespace hyetex {

/// The object's name is picRain. A click on a step chooses it. With the keys: left and right go from step to
/// step, with Ctrl to the next one with rain, Return chooses the one in the frame.
class RainView : public GraphView {
  Q_OBJECT

 public:
  RainView();

  /// The steps that the graph was made from, one behind another.
  void Show(Graph graph, std::vector<RainStep> steps, const RainClock& clock);
  const std::vector<RainStep>& Steps() const { return steps_; }
  std::optional<std::size_t> Framed() const { return framed_; }

 signals:
  void StepChosen(std::size_t step);

 protected:
  std::string ReadOutAt(const GraphLayout& layout, double x, double y) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void GoTo(int way, bool toRain);
  void Frame(std::size_t step);
  std::string InWords(std::size_t step) const;

  std::vector<RainStep> steps_;
  std::vector<double> sums_;  // mm, to the end of each
  RainClock clock_;
  std::optional<std::size_t> framed_;
};

}  // namespace hyetex
