// plot: a chart's views as pictures.
#include <filesystem>

#include "cli/commands.h"
#include "core/files.h"
#include "editor/chart_views.h"
#include "graph/draw.h"
#include "platform/cairo/pictures.h"

namespace hyetex::cli {
namespace {

constexpr double PixelsPerInch = 150, PageMargin = 28;

bool IsSameFile(const std::string& a, const std::string& b) {
  std::error_code none;
  return std::filesystem::equivalent(a, b, none) || std::filesystem::absolute(a, none).lexically_normal() ==
                                                        std::filesystem::absolute(b, none).lexically_normal();
}

}  // namespace

Exit RunPlot(const PlotWords& words) {
  if (words.Pdf.empty() && words.Png.empty() && words.Svg.empty())
    return Off("--pdf, --png or --svg is required");
  struct Output {
    PictureFormat Format;
    const std::string& Path;
    std::string Bytes;
  } outputs[] = {{PictureFormat::Pdf, words.Pdf, {}},
                 {PictureFormat::Png, words.Png, {}},
                 {PictureFormat::Svg, words.Svg, {}}};
  for (const Output& output : outputs) {
    if (output.Path.empty()) continue;
    if (IsSameFile(output.Path, words.File)) return Off(output.Path + " is the chart file itself");
    for (const Output* other = outputs; other != &output; ++other)
      if (!other->Path.empty() && IsSameFile(output.Path, other->Path))
        return Off("two pictures cannot both be " + output.Path);
  }

  ChartReading reading;
  if (!ReadChart(words.Folder, words.File, {.UseAlpha = words.Alpha}, reading)) return Failed;
  const ChartViewOptions options{
      .Kind = words.Series ? ChartViewKind::TimeDepth : ChartViewKind::Digitization,
      .Grid = !words.NoGrid,
      .FontPoints = words.FontSize,
      .HyetographMinutes = words.Step};
  const Graph graph = MakeChartGraph(reading, options);
  if (graph.Layers.empty())
    for (const std::string& note : graph.Notes) Say(words.File + ": " + note);

  // All are made before the first is written.
  const PageSize page = words.Portrait ? A4Portrait : A4Landscape;
  for (Output& output : outputs) {
    if (output.Path.empty()) continue;
    auto made = MakePicture(output.Format, page, PageMargin, PixelsPerInch,
                            [&](Surface& surface) { Draw(graph, surface); });
    if (!made) return Fail(output.Path + ": " + made.error());
    output.Bytes = std::move(*made);
  }
  for (const Output& output : outputs)
    if (!output.Path.empty())
      if (const auto written = WriteWholeFile(output.Path, output.Bytes); !written)
        return Fail(written.error());
  return Done;
}

}  // namespace hyetex::cli
