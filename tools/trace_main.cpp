// hyetex-trace: makes what a tablet would send while an operator traces a chart that is known, as a stream of
// bytes and as a session journal.
#include <cstdio>

#include "core/files.h"
#include "core/numbers.h"
#include "options.h"
#include "tracing/operator.h"
#include "tracing/rain.h"
#include "tracing/readings.h"
#include "tracing/stream.h"

namespace hyetex {
namespace {

constexpr const char* Help =
    R"(usage: hyetex-trace --tablet N (--readings FILE | --rain FILE) [options] [--journal OUT] [--stream OUT]

Makes the steps of an operator who traces a known chart on tablet type N (0 to 4).

  --readings FILE      a chart read by eye: rows "hour,reading_mm,kind"
  --rain FILE          rain that fell: rows "hour,mm", the rain counted from the start

The paper:
  --time-scale H       hours for each mm of paper (default 0.0621118: 16.1 mm an hour)
  --depth-scale MM     mm of rain for each mm of paper (default 0.125)
  --bottom READING     with --readings: what the bottom edge of the band reads (default -0.4)
  --from H --to H      with --readings: the hours of the page's ends (default 7 and 31)
With --rain:
  --method NAME        linear (default), nonlinear or tipping
  --full MM            pen height at which the instrument empties (default 80)
  --arc MM             nonlinear: from the bottom of the pen's arc to its middle, along the paper (default 10)
  --tip MM             tipping: mm of rain that tip the bucket (default 0.5)
  --gap FROM TO        hours without ink
  --level HOUR MM      the pen is moved up by hand at this hour
The operator:
  --angle DEG          how askew the page lies, -1 to 1 (default 0.3)
  --strip-angle DEG    the same of the strips attached
  --attach-at HOUR     slide the paper at this hour of the file and go on on a strip
  --general TEXT       a comment for the whole chart (in the journal only)

  --journal OUT        write the session journal
  --stream OUT         write the tablet's bytes
)";

constexpr OptionRule Rules[] = {
    {"--help"},           {"--tablet", 1},      {"--readings", 1},  {"--rain", 1},    {"--time-scale", 1},
    {"--depth-scale", 1}, {"--bottom", 1},      {"--from", 1},      {"--to", 1},      {"--method", 1},
    {"--full", 1},        {"--arc", 1},         {"--tip", 1},       {"--gap", 2},     {"--level", 2},
    {"--angle", 1},       {"--strip-angle", 1}, {"--attach-at", 1}, {"--general", 1}, {"--journal", 1},
    {"--stream", 1},
};
constexpr std::string_view ForReadings[] = {"--bottom", "--from", "--to"};
constexpr std::string_view ForRain[] = {"--method", "--full", "--arc", "--tip", "--gap", "--level"};
constexpr double MostHours = 1e5;
constexpr std::size_t MostBytes = 16 << 20;

struct Order {
  int Tablet = 0;
  bool Readings = false;
  ReadingScales Scales;
  RainChart Rain;
  PageLaid Laid;
  std::optional<double> AttachAtFileHour;
};

Result<std::int16_t> MethodOf(const std::string& name) {
  constexpr std::string_view Names[] = {"linear", "nonlinear", "tipping"};
  for (std::size_t i = 0; i < std::size(Names); ++i)
    if (Names[i] == name) return static_cast<std::int16_t>(i);
  return Failure("\"" + name + "\" is no chart method; linear, nonlinear and tipping are");
}

Result<Order> Understand(const Options& options) {
  Order order;
  std::string trouble;
  // Takes an option's number over its default; the first trouble stays.
  const auto take = [&](auto& value, std::string_view name, double least, double most,
                        std::size_t index = 0) {
    const auto number = options.Number(name, least, most, index);
    if (!number && trouble.empty()) trouble = number.error();
    if (number && *number) value = static_cast<std::remove_reference_t<decltype(value)>>(**number);
  };
  const auto refuse = [&](std::string why) {
    if (trouble.empty()) trouble = std::move(why);
  };

  order.Readings = options.Has("--readings");
  if (!options.Has("--tablet")) refuse("--tablet is missing");
  if (order.Readings == options.Has("--rain")) refuse("one of --readings and --rain is needed");
  if (!options.Has("--journal") && !options.Has("--stream"))
    refuse("neither --journal nor --stream is given");
  for (std::string_view name : ForReadings)
    if (options.Has(name) && !order.Readings) refuse(std::string(name) + " goes with --readings");
  for (std::string_view name : ForRain)
    if (options.Has(name) && order.Readings) refuse(std::string(name) + " goes with --rain");

  double timeScale = 1 / order.Scales.MmPerHour, depthScale = 1 / order.Scales.MmPerRain;
  double tablet = 0;
  take(tablet, "--tablet", 0, TabletTypeCount - 1);
  order.Tablet = static_cast<int>(tablet);
  if (order.Tablet != tablet) refuse("--tablet takes a whole number");
  take(timeScale, "--time-scale", 1e-4, 1e4);
  take(depthScale, "--depth-scale", 1e-4, 1e4);
  order.Scales.MmPerHour = 1 / timeScale;
  order.Scales.MmPerRain = 1 / depthScale;
  take(order.Scales.BottomReading, "--bottom", -1000, 1000);
  take(order.Scales.FirstHour, "--from", 0, MostHours);
  take(order.Scales.LastHour, "--to", 0, MostHours);
  if (order.Scales.FirstHour >= order.Scales.LastHour) refuse("--from is not before --to");

  ChartTypeRecord& paper = order.Rain.Paper;
  paper.TimeScale = static_cast<float>(timeScale);
  paper.DepthScale = static_cast<float>(depthScale);
  if (const auto method = MethodOf(options.Text("--method").value_or("linear")); method)
    paper.ChartMethod = *method;
  else
    refuse(method.error());
  paper.MiddleToBottomMm = 10;
  take(paper.MiddleToBottomMm, "--arc", 0.1, 50);
  take(order.Rain.FullMm, "--full", 1, 100);
  take(order.Rain.TipMm, "--tip", 0.01, 100);
  if (options.Has("--gap")) {
    order.Rain.Gap.emplace();
    take(order.Rain.Gap->From, "--gap", 0, MostHours, 0);
    take(order.Rain.Gap->To, "--gap", 0, MostHours, 1);
  }
  if (options.Has("--level")) {
    order.Rain.Moved.emplace();
    take(order.Rain.Moved->At, "--level", 0, MostHours, 0);
    take(order.Rain.Moved->Mm, "--level", -100, 100, 1);
  }

  take(order.Laid.AngleDegrees, "--angle", -1, 1);
  take(order.Laid.StripAngleDegrees, "--strip-angle", -1, 1);
  take(order.AttachAtFileHour, "--attach-at", 0, MostHours);
  order.Laid.GeneralComment = options.Text("--general").value_or("");
  if (order.Laid.GeneralComment.find_first_of("\r\n") != std::string::npos)
    refuse("--general holds a line break");
  if (!trouble.empty()) return Failure(trouble);
  return order;
}

Result<void> Make(Order order, const Options& options) {
  const std::string path = options.Text(order.Readings ? "--readings" : "--rain").value();
  const auto csv = ReadWholeFile(path, MostBytes);
  if (!csv) return Failure(csv.error());
  double firstHour = order.Scales.FirstHour;
  Result<PenLine> line = Failure("");
  if (order.Readings) {
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
  if (const auto out = options.Text("--journal"))
    if (auto written = WriteWholeFile(*out, JournalText(order.Tablet, *steps)); !written) return written;
  if (const auto out = options.Text("--stream"))
    if (auto written = WriteWholeFile(*out, EncodeSteps(tablet, *steps)); !written) return written;
  return {};
}

int Main(int argc, char** argv) {
  const auto complain = [](const std::string& why, int code) {
    std::fprintf(stderr, "hyetex-trace: %s\n", why.c_str());
    return code;
  };
  const auto options = Options::Parse(argc, argv, Rules);
  if (!options) return complain(options.error(), 2);
  if (options->Has("--help")) return std::fputs(Help, stdout), 0;
  auto order = Understand(*options);
  if (!order) return complain(order.error(), 2);
  if (auto made = Make(*std::move(order), *options); !made) return complain(made.error(), 1);
  return 0;
}

}  // namespace
}  // namespace hyetex

int main(int argc, char** argv) { return hyetex::Main(argc, argv); }
