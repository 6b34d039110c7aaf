// A chart that is traced by the simulated operator and taken all the way: tablet bytes, session, chart file,
// series.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "chartfiles/chart_reader.h"
#include "chartfiles/chart_text.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/files.h"
#include "digitizing/action_machine.h"
#include "paths.h"
#include "tracing/operator.h"
#include "tracing/rain.h"
#include "tracing/readings.h"
#include "tracing/stream.h"

namespace hyetex::test {

inline const TabletType& TabletOf(int type) { return TabletTypes()[static_cast<std::size_t>(type)]; }

inline PenLine RealChart() {
  const auto csv = ReadWholeFile(test::Demo("charts/siphon-chart.csv"), 1 << 20);
  return DrawReadings(csv.value()).value();
}

struct TracedChart {
  Session State;
  ChartReading Reading;
};

inline ChartRecord ChartFor(const PenLine& line) {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 7);
  chart.EndTime = chart.StartTime + line.Hours / 24;
  chart.EyedDepth = static_cast<float>(line.Points.back().Rain);
  chart.ManualDepth = chart.EyedDepth;
  return chart;
}

/// Plays `stream` to a session, in the small pieces in which a serial port hands bytes on.
inline Session PlayStream(const PenLine& line, const TabletType& tablet, std::string_view stream) {
  Session session(tablet.Extents, line.Paper, ChartFor(line));
  SilentView view;
  ActionMachine machine(session, tablet, view);
  machine.Start();
  for (; !stream.empty(); stream.remove_prefix(std::min<std::size_t>(stream.size(), 37))) {
    const std::string_view piece = stream.substr(0, 37);
    machine.Receive({reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size()});
    if (!machine.CommentIsOpen()) continue;
    machine.AddComment(machine.OpenCommentRequest()->Code, "");
    machine.CommentClosed();
  }
  return session;
}

inline TracedChart TraceChart(const PenLine& line, int tablet, const PageLaid& laid = {}) {
  const auto steps = TracePage(line, TabletOf(tablet), laid);
  EXPECT_TRUE(steps.has_value()) << steps.error();
  TracedChart traced{PlayStream(line, TabletOf(tablet), EncodeSteps(TabletOf(tablet), *steps)), {}};
  const auto text = MakeChartText(traced.State, {"Core", "Agency", "Station", "RG12", "Operator"}, "");
  EXPECT_TRUE(text.has_value()) << text.error();
  ReadChartText(text->Text, ChartFileName("RG12", traced.State.ChartStart()), {}, traced.Reading);
  return traced;
}

/// The pressed points that have a place in the series.
inline std::vector<PenPoint> ExpectedSeries(const PenLine& line, int tablet) {
  std::vector<PenPoint> points = PressedPoints(line, TabletOf(tablet)).Points;
  std::erase_if(points,
                [](const PenPoint& p) { return p.Step == PenStep::Drop || p.Step == PenStep::Segment; });
  return points;
}

}  // namespace hyetex::test
