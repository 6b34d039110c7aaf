// hyetex-trace: makes what a tablet would send while an operator traces a chart that is known, as a stream of
// bytes and as a session journal.
#include <algorithm>
#include <utility>
#include <vector>

#include "commandline/parser.h"
#include "core/files.h"
#include "tracing/operator.h"
#include "tracing/rain.h"
#include "tracing/readings.h"
#include "tracing/stream.h"

namespace hyetex {
namespace {

using namespace commandline;

constexpr double MostHours = 1e5;
constexpr std::size_t MostBytes = 16 << 20;

const std::vector<std::string> MethodNames{"linear", "nonlinear", "tipping"};  // by their numbers

struct Order {
  int Tablet = 0;
  std::string Readings, RainFell;  ///< files, of which one is given
  double TimeScale = 1 / ReadingScales().MmPerHour, DepthScale = 1 / ReadingScales().MmPerRain;
  ReadingScales Scales;
  std::string Method = MethodNames.front();
  RainChart Rain;
  std::optional<std::pair<double, double>> Gap, Level;
  PageLaid Laid;
  std::optional<double> AttachAtFileHour;
  std::string Journal, Stream;  ///< files to write, at least one
};

class CommandLine : public Description {
 public:
  explicit CommandLine(Order& order)
      : Description("hyetex-trace", "Makes the steps of an operator who traces a known chart on a tablet.") {
    AddTablet(*this, order.Tablet)->required();
    CLI::App& inputs = *add_option_group("The chart, one of");
    CLI::Option* readings = AddName(inputs, "--readings", order.Readings, "FILE",
                                    "a chart read by eye: rows \"hour,reading_mm,kind\"");
    CLI::Option* rain = AddName(inputs, "--rain", order.RainFell, "FILE",
                                "rain that fell: rows \"hour,mm\", the rain counted from the start");
    inputs.require_option(1);
    AddPaper(*add_option_group("The paper"), order);
    AddPaperOfReadings(*add_option_group("The paper, with --readings"), order, readings);
    AddPaperOfRain(*add_option_group("The paper and the pen, with --rain"), order, rain);
    AddOperator(*add_option_group("The operator"), order);
    CLI::App& results = *add_option_group("The results, one or both");
    AddName(results, "--journal", order.Journal, "OUT", "write the session journal");
    AddName(results, "--stream", order.Stream, "OUT", "write the tablet's bytes");
    results.require_option(1, 0);
    final_callback([&order] {
      if (order.Scales.FirstHour >= order.Scales.LastHour)
        throw CLI::ValidationError("--from", "the hour is not before that of --to");
    });
  }

 private:
  static void AddPaper(CLI::App& group, Order& order) {
    AddNumber(group, "--time-scale", order.TimeScale, 1e-4, 1e4, "H", "hours for each mm of paper")
        ->capture_default_str();
    AddNumber(group, "--depth-scale", order.DepthScale, 1e-4, 1e4, "MM", "mm of rain for each mm of paper")
        ->capture_default_str();
  }
  static void AddPaperOfReadings(CLI::App& group, Order& order, CLI::Option* readings) {
    ReadingScales& scales = order.Scales;
    AddNumber(group, "--bottom", scales.BottomReading, -1000, 1000, "READING",
              "what the bottom edge of the band reads");
    AddNumber(group, "--from", scales.FirstHour, 0, MostHours, "H", "the hour of the page's left end");
    AddNumber(group, "--to", scales.LastHour, 0, MostHours, "H", "the hour of the page's right end");
    for (CLI::Option* option : group.get_options()) option->needs(readings)->capture_default_str();
  }
  static void AddPaperOfRain(CLI::App& group, Order& order, CLI::Option* rain) {
    RainChart& chart = order.Rain;
    chart.Paper.MiddleToBottomMm = 10;
    group.add_option("--method", order.Method, "how the pen moves")
        ->type_name("NAME")
        ->check(CLI::IsMember(MethodNames));
    AddNumber(group, "--full", chart.FullMm, 1, 100, "MM", "pen height at which the instrument empties");
    AddNumber(group, "--arc", chart.Paper.MiddleToBottomMm, 0.1, 50, "MM",
              "nonlinear: from the bottom of the pen's arc to its middle, along the paper");
    AddNumber(group, "--tip", chart.TipMm, 0.01, 100, "MM", "tipping: mm of rain that tip the bucket");
    for (CLI::Option* option : group.get_options()) option->capture_default_str();
    AddNumber(group, "--gap", order.Gap, 0, MostHours, "FROM TO", "hours without ink");
    group.add_option("--level", order.Level, "the pen is moved up by hand at this hour")
        ->type_name("HOUR MM")
        ->transform(Number(0, MostHours).application_index(0))
        ->transform(Number(-100, 100).application_index(1));
    for (CLI::Option* option : group.get_options()) option->needs(rain);
  }
  static void AddOperator(CLI::App& group, Order& order) {
    PageLaid& laid = order.Laid;
    AddNumber(group, "--angle", laid.AngleDegrees, -1, 1, "DEG", "how askew the page lies")
        ->capture_default_str();
    AddNumber(group, "--strip-angle", laid.StripAngleDegrees, -1, 1, "DEG",
              "the same of the strips attached");
    AddNumber(group, "--attach-at", order.AttachAtFileHour, 0, MostHours, "HOUR",
              "slide the paper at this hour of the file and go on on a strip");
    group.add_option("--general", laid.GeneralComment, "a comment for the whole chart (in the journal only)")
        ->type_name("TEXT")
        ->check([](const std::string& text) {
          return std::string(text.find_first_of("\r\n") == std::string::npos ? ""
                                                                             : "there is a line break in it");
        });
  }
};

// Carries over what the words give in other units or under other names.
void Complete(Order& order) {
  order.Scales.MmPerHour = 1 / order.TimeScale;
  order.Scales.MmPerRain = 1 / order.DepthScale;
  RainChart& rain = order.Rain;
  rain.Paper.TimeScale = static_cast<float>(order.TimeScale);
  rain.Paper.DepthScale = static_cast<float>(order.DepthScale);
  const auto method = std::find(MethodNames.begin(), MethodNames.end(), order.Method) - MethodNames.begin();
  rain.Paper.ChartMethod = static_cast<std::int16_t>(method);
  if (order.Gap) rain.Gap = {order.Gap->first, order.Gap->second};
  if (order.Level) rain.Moved = {order.Level->first, order.Level->second};
}

Result<void> Make(Order order) {
  Complete(order);
  const bool fromReadings = !order.Readings.empty();
  const std::string& path = fromReadings ? order.Readings : order.RainFell;
  const auto csv = ReadWholeFile(path, MostBytes);
  if (!csv) return Failure(csv.error());
  double firstHour = order.Scales.FirstHour;
  Result<PenLine> line = Failure("");
  if (fromReadings) {
    line = DrawReadings(*csv, order.Scales);
  } else if (const auto rain = ReadRain(*csv); rain) {
    firstHour = rain->front().Hours;
    line = DrawRain(*rain, order.Rain);
  } else {
    line = Failure(rain.error());
  }
  if (!line) return Failure(path + ": " + line.error());

  if (order.AttachAtFileHour) order.Laid.AttachAtHours = *order.AttachAtFileHour - firstHour;
  const TabletType& tablet = TabletTypes()[static_cast<std::size_t>(order.Tablet)];
  const auto steps = TracePage(*line, tablet, order.Laid);
  if (!steps) return Failure(path + ": " + steps.error());
  if (!order.Journal.empty())
    if (auto written = WriteWholeFile(order.Journal, JournalText(order.Tablet, *steps)); !written)
      return written;
  if (!order.Stream.empty())
    if (auto written = WriteWholeFile(order.Stream, EncodeSteps(tablet, *steps)); !written) return written;
  return {};
}

commandline::Exit Run(const std::vector<std::string>& words) {
  using namespace commandline;
  Order order;
  CommandLine line(order);
  if (const auto answer = Parse(line, words)) return Give(line.get_name(), *answer);
  const auto made = Make(std::move(order));
  return made ? Done : Fail(line.get_name(), made.error());
}

}  // namespace
}  // namespace hyetex

// Only a mistake in the description of the words above throws, and then at every start.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) { return hyetex::Run(std::vector<std::string>(argv + 1, argv + argc)); }
