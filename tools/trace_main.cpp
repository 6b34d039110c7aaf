// hyetex-trace: makes what a tablet would send while an operator traces a chart that is known, as a stream of
// bytes and as a session journal; and draws the scan of such a chart.
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "commandline/parser.h"
#include "core/files.h"
#include "scans/drawn_scan.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"
#include "tracing/operator.h"
#include "tracing/rain.h"
#include "tracing/readings.h"
#include "tracing/stream.h"

namespace hyetex {
namespace {

using namespace commandline;

constexpr double MostHours = 1e5;
constexpr std::size_t MostBytes = 16 << 20;
// What a form's band shows above the height at which the instrument empties.
constexpr double BeyondFullMm = 2;

const std::vector<std::string> MethodNames{"linear", "nonlinear", "tipping"};  // by their numbers

const std::vector<std::string> ModeNames{"colour", "grey", "bits"};  // by their numbers
const std::map<std::string, Rgb> ColourNames{
    {"black", {40, 38, 40}},    {"blue", {45, 50, 130}}, {"brown", {150, 100, 60}},  {"green", {70, 140, 95}},
    {"orange", {225, 140, 80}}, {"red", {190, 75, 70}},  {"violet", {105, 60, 125}},
};

// A colour by its name, or as six hexadecimal digits.
std::optional<Rgb> ColourOf(const std::string& word) {
  if (const auto named = ColourNames.find(word); named != ColourNames.end()) return named->second;
  if (word.size() != 6 || word.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
    return std::nullopt;
  const int number = std::stoi(word, nullptr, 16);
  return Rgb{number >> 16, number >> 8 & 255, number & 255};
}

// How a scan is drawn.
struct ScanOrder {
  std::string File, Truth;  ///< to write; the first is empty where none is drawn
  ScanStyle Style;
  std::string Mode = ModeNames.front(), Grid = "green", Pen = "blue", Damage;
  std::pair<double, double> Shrink{0, 0};  ///< percent
  std::optional<double> WrittenDpi;
  bool LeaveOutDpi = false;
  int Quality = 92, Seed = 1;
};

struct Order {
  std::optional<int> Tablet;
  std::string Readings, RainFell;  ///< files, of which one is given
  double TimeScale = 1 / ReadingScales().MmPerHour, DepthScale = 1 / ReadingScales().MmPerRain;
  ReadingScales Scales;
  std::string Method = MethodNames.front();
  RainChart Rain;
  std::optional<std::pair<double, double>> Gap, Level;
  PageLaid Laid;
  std::optional<double> AttachAtFileHour;
  std::string Journal, Stream;  ///< files to write; at least one of these and the scan
  ScanOrder Scan;
};

class CommandLine : public Description {
 public:
  explicit CommandLine(Order& order)
      : Description(
            "hyetex-trace",
            "Makes the steps of an operator who traces a known chart on a tablet, or draws the scan of "
            "such a chart.") {
    CLI::Option* tablet = AddTablet(*this, order.Tablet);
    CLI::App& inputs = *add_option_group("The chart, one of");
    CLI::Option* readings = AddName(inputs, "--readings", order.Readings, "FILE",
                                    "a chart read by eye: rows \"hour,reading_mm,kind\"");
    CLI::Option* rain = AddName(inputs, "--rain", order.RainFell, "FILE",
                                "rain that fell: rows \"hour,mm\", the rain counted from the start");
    inputs.require_option(1);
    AddPaper(*add_option_group("The paper"), order);
    AddPaperOfReadings(*add_option_group("The paper, with --readings"), order, readings);
    AddPaperOfRain(*add_option_group("The paper and the pen, with --rain"), order, rain);
    CLI::App& hand = *add_option_group("The operator, with --tablet");
    AddOperator(hand, order);
    CLI::App& results = *add_option_group("The results, one or more");
    AddName(results, "--journal", order.Journal, "OUT",
            "write the session journal; with --scan that of a mouse on the scan");
    CLI::Option* stream = AddName(results, "--stream", order.Stream, "OUT", "write the tablet's bytes");
    CLI::Option* scan = AddName(results, "--scan", order.Scan.File, "OUT",
                                "draw the chart's scan: a .png, .jpg, .tif or .bmp");
    results.require_option(1, 0);
    AddScan(*add_option_group("The scan, with --scan"), order, scan);
    for (CLI::Option* option : hand.get_options()) option->needs(tablet);
    stream->needs(tablet);
    scan->excludes(tablet);
    footer(DamageText());
    final_callback([&order, tablet, scan] {
      if (order.Scales.FirstHour >= order.Scales.LastHour)
        throw CLI::ValidationError("--from", "the hour is not before that of --to");
      if (tablet->empty() && scan->empty())
        throw CLI::ValidationError("--journal", "wants --tablet, or --scan");
      Check(order.Scan);
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
  static void AddScan(CLI::App& group, Order& order, CLI::Option* scan) {
    ScanOrder& wanted = order.Scan;
    ScanStyle& style = wanted.Style;
    SheetShape& shape = style.Shape;
    const auto part = [&group](const char* option, double& number, const char* help) {
      AddNumber(group, option, number, 0, 1, "0..1", help);
    };
    AddNumber(group, "--dpi", style.Dpi, 50, 1200, "DPI", "dots for each inch");
    group.add_option("--mode", wanted.Mode, "colour, grey, or one bit a pixel")
        ->type_name("NAME")
        ->check(CLI::IsMember(ModeNames));
    AddWhole(group, "--seed", wanted.Seed, 0, 1 << 30, "N", "of all that is left to chance");
    AddWhole(group, "--quality", wanted.Quality, 1, 100, "N", "of a JPEG");
    for (const auto& [option, colour, help] :
         {std::tuple("--grid", &wanted.Grid, "what the form is printed in"),
          std::tuple("--ink", &wanted.Pen, "what the pen writes with")})
      group.add_option(option, *colour, help)->type_name("COLOUR")->check(Colour());
    AddNumber(group, "--pen-width", style.PenMm, 0.05, 3, "MM", "of the pen's line");
    part("--pen-ink", style.PenInk, "how dark the pen's line is");
    part("--unsteady", style.Unsteady, "how its width and darkness vary");
    part("--worn", style.Worn, "how patchy the print is");
    AddNumber(group, "--tilt", shape.TiltDegrees, -45, 45, "DEG", "how askew the paper lies");
    AddNumber(group, "--shear", shape.ShearDegrees, -10, 10, "DEG", "how far the hour lines lean");
    AddNumber(group, "--shrink", wanted.Shrink, -10, 10, "ACROSS UP", "percent that the paper has shrunk");
    AddNumber(group, "--warp", shape.WarpMm, 0, 5, "MM", "how far the paper is warped");
    AddWhole(group, "--quarters", shape.Quarters, 0, 3, "N", "quarter turns of the scan, counter-clockwise");
    AddNumber(group, "--border", shape.BorderMm, 0, 100, "MM", "of the scanner's bed around the paper");
    AddName(group, "--title", style.Title, "TEXT", "printed over the hours");
    for (CLI::Option* option : group.get_options()) option->capture_default_str();
    for (const auto& [option, date, help] :
         {std::tuple("--laid-on", &style.LaidOn, "what is written for it; with --damage writing"),
          std::tuple("--taken-off", &style.TakenOff, "the same")})
      group.add_option(option, *date, help)->type_name("DATE")->check(Figures());
    group.add_option("--damage", wanted.Damage, "kinds of damage, below")->type_name("NAME[=0..1],...");
    group.add_flag("--dither", style.Dither, "dots for what is neither black nor white, with --mode bits");
    CLI::Option* told = AddNumber(group, "--false-dpi", wanted.WrittenDpi, 1, 60000, "DPI",
                                  "what the file says of itself, in place of the truth");
    group.add_flag("--no-dpi", wanted.LeaveOutDpi, "the file does not tell its resolution")->excludes(told);
    AddName(group, "--truth", wanted.Truth, "OUT", "write what the line records: rows \"hour,mm,x,y,kind\"");
    for (CLI::Option* option : group.get_options()) option->needs(scan);
  }
  static CLI::Validator Colour() {
    return CLI::Validator(
        [](std::string& text) {
          std::string names;
          for (const auto& [name, colour] : ColourNames) names += name + ", ";
          return ColourOf(text) ? std::string() : "a colour is one of " + names + "or six hexadecimal digits";
        },
        "");
  }
  static CLI::Validator Figures() {
    return CLI::Validator(
        [](std::string& text) {
          return std::string(text.find_first_not_of("0123456789/ ") == std::string::npos
                                 ? ""
                                 : "a date is written with figures, / and blanks");
        },
        "");
  }
  static std::string DamageText() {
    std::string text =
        "Damage to a scan, each kind by itself or followed by its strength, 0 to 1 (else 0.5):\n";
    for (const ScanDamage& damage : ScanDamages())
      text += "  " + std::string(damage.Name) + std::string(11 - damage.Name.size(), ' ') +
              std::string(damage.What) + "\n";
    return text;
  }
  // What can be told of the words before anything is read or drawn.
  static void Check(const ScanOrder& order) {
    ScanStyle tried;
    if (const auto damaged = Damage(tried, order.Damage, 0); !damaged)
      throw CLI::ValidationError("--damage", damaged.error());
    if (order.File.empty()) return;
    if (const auto named = CheckScanName(order.File); !named)
      throw CLI::ValidationError("--scan", named.error());
  }
};

// Carries over what the words give in other units or under other names.
void Complete(ScanOrder& order) {
  ScanStyle& style = order.Style;
  style.Mode = static_cast<ScanMode>(std::ranges::find(ModeNames, order.Mode) - ModeNames.begin());
  style.Grid = ColourOf(order.Grid).value_or(style.Grid);
  style.Pen = ColourOf(order.Pen).value_or(style.Pen);
  style.Shape.ShrunkAcross = order.Shrink.first / 100;
  style.Shape.ShrunkUp = order.Shrink.second / 100;
}
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

Result<void> Draw(const PenLine& line, double firstHour, const Order& order) {
  const ScanOrder& wanted = order.Scan;
  ScanStyle style = wanted.Style;
  style.FirstHour = firstHour;
  const auto seed = static_cast<std::uint64_t>(wanted.Seed);
  if (auto damaged = Damage(style, wanted.Damage, seed); !damaged) return damaged;
  const auto scan = DrawScan(line, style, seed);
  if (!scan) return Failure(scan.error());
  std::optional<double> dpi = wanted.WrittenDpi.value_or(style.Dpi);
  if (wanted.LeaveOutDpi) dpi.reset();
  const auto bytes = EncodeScan(scan->Image, wanted.File, dpi, style.JpegQuality.value_or(wanted.Quality));
  if (!bytes) return Failure(bytes.error());
  if (auto written = WriteWholeFile(wanted.File, *bytes); !written) return written;
  if (!wanted.Truth.empty())
    if (auto written = WriteWholeFile(wanted.Truth, TruthText(*scan, firstHour)); !written) return written;
  if (order.Journal.empty()) return {};
  return WriteWholeFile(order.Journal, JournalText(ScanTablet, MouseSteps(*scan, PlacementOf(*scan))));
}

Result<void> Make(Order order) {
  Complete(order);
  Complete(order.Scan);
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

  if (!order.Scan.File.empty()) {
    const bool arc = line->Paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear);
    ScanStyle& style = order.Scan.Style;
    if (fromReadings) style.ZeroMm = -order.Scales.BottomReading * order.Scales.MmPerRain;
    if (!arc && style.BandMm == 0) style.BandMm = style.ZeroMm + order.Rain.FullMm + BeyondFullMm;
    return Draw(*line, firstHour, order);
  }
  if (order.AttachAtFileHour) order.Laid.AttachAtHours = *order.AttachAtFileHour - firstHour;
  const int type = order.Tablet.value_or(0);
  const TabletType& tablet = TabletTypes()[static_cast<std::size_t>(type)];
  const auto steps = TracePage(*line, tablet, order.Laid);
  if (!steps) return Failure(path + ": " + steps.error());
  if (!order.Journal.empty())
    if (auto written = WriteWholeFile(order.Journal, JournalText(type, *steps)); !written) return written;
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
