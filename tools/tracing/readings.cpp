#include "tracing/readings.h"

#include <algorithm>
#include <optional>

#include "core/numbers.h"
#include "tracing/table.h"

namespace hyetex {
namespace {

std::optional<PenStep> StepOf(std::string_view kind) {
  if (kind == "start" || kind == "point") return PenStep::Point;
  if (kind == "drop") return PenStep::Drop;
  if (kind == "segment") return PenStep::Segment;
  return std::nullopt;
}

}  // namespace

Result<PenLine> DrawReadings(std::string_view csv, const ReadingScales& scales) {
  const auto rows = ReadTable(csv, "hour,reading_mm,kind", 2, 1);
  if (!rows) return Failure(rows.error());

  PenLine line;
  line.Paper.Name = "Readings";
  line.Paper.TimeScale = static_cast<float>(1 / scales.MmPerHour);
  line.Paper.DepthScale = static_cast<float>(1 / scales.MmPerRain);
  line.Hours = scales.LastHour - scales.FirstHour;
  for (const TableRow& row : *rows) {
    const auto refuse = [&](std::string_view why) {
      return Failure("line " + ShortText(row.Line) + ": " + std::string(why));
    };
    const std::optional<PenStep> step = StepOf(row.Words[0]);
    if (!step) return refuse("\"" + row.Words[0] + "\" is no kind of reading");
    PenPoint point{*step, row.Numbers[0] - scales.FirstHour,
                   (row.Numbers[1] - scales.BottomReading) * scales.MmPerRain, 0};
    if (point.Hours < 0 || point.Hours > line.Hours) return refuse("the hour is not on the page");
    if (!line.Points.empty()) {
      const PenPoint last = line.Points.back();
      if (point.Hours < last.Hours) return refuse("the hours go back");
      point.Rain = last.Rain;
      if (*step == PenStep::Point)
        point.Rain += std::max(0.0, point.HeightMm - last.HeightMm) / scales.MmPerRain;
      else
        line.Points.push_back({PenStep::Point, point.Hours, last.HeightMm, last.Rain});
    }
    line.Points.push_back(point);  // every reading is a press, also in the middle of a straight line
  }
  return line;
}

}  // namespace hyetex
