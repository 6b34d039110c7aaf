// show and series: what a chart file says.
#include <charconv>
#include <cmath>

#include "chartfiles/chart_reader.h"
#include "cli/commands.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "staging/lists/lists.h"

namespace hyetex::cli {
namespace {

// A bare name is a file here, if there is one; else it is looked for in the program folder.
std::string PathOf(const std::string& name) {
  return !HasSeparator(name) && FileExists(name) ? JoinPath(".", name) : name;
}

bool Read(const Words& words, const std::string& name, ReadingOptions options, ChartReading& reading) {
  const std::string folder = ProgramFolder(words);
  ReferenceLists lists;
  if (FileExists(JoinPath(folder, ListsFileName))) {
    auto read = ReadLists(folder);
    if (read)
      lists = std::move(*read);
    else
      Say(read.error());
  }
  options.Stations = lists.Stations;
  if (const auto done = ReadChartFile(PathOf(name), folder, options, reading); !done)
    return Fail(done.error()), false;
  for (const std::string& note : reading.Notes) Say(name + ": " + note);
  return true;
}

std::string AlphaTexts(const ChartRecord& chart) {
  std::string text;
  for (int i = 1; i <= chart.AlphaCount; ++i)
    text += (i == 1 ? "" : " ") + ShortText(chart.AlphaValues[static_cast<std::size_t>(i)]);
  return text;
}

Exit Show(const Words& words) {
  if (words.Rest().empty()) return Off("the chart file is missing");
  Exit exit = Done;
  ChartReading reading;
  bool first = true;
  for (const std::string& name : words.Rest()) {
    if (!Read(words, name, {}, reading)) {
      exit = Failed;
      continue;
    }
    const ChartRecord& chart = reading.Chart;
    const std::pair<std::string_view, std::string> fields[] = {
        {"FileName", chart.FileName},
        {"InstrumentIndex", ShortText(chart.InstrumentIndex)},
        {"InstrumentCode", chart.InstrumentCode},
        {"ChartMethod", ShortText(chart.ChartMethod)},
        {"PaperIndex", ShortText(chart.PaperIndex)},
        {"StartTime", GeneralDateText(chart.StartTime)},
        {"EndTime", GeneralDateText(chart.EndTime)},
        {"DigitizedTime", ShortText(chart.DigitizedTime)},
        {"EyedDepth", ShortText(chart.EyedDepth)},
        {"DigitizedDepth", ShortText(chart.DigitizedDepth)},
        {"ManualDepth", ShortText(chart.ManualDepth)},
        {"SelectedDepth", ShortText(chart.SelectedDepth)},
        {"GeneralComment", chart.GeneralComment},
        {"DigitizerComment", chart.DigitizerComment},
        {"SeriesCount", ShortText(chart.SeriesCount)},
        {"AlphaCount", ShortText(chart.AlphaCount)},
        {"AlphaValues", AlphaTexts(chart)},
        {"SelectedAlpha", ShortText(chart.SelectedAlpha)},
        {"Reliability", ShortText(chart.Reliability)},
        {"RawCount", ShortText(chart.RawCount)},
    };
    if (!first) Print("\n");
    first = false;
    for (const auto& [field, value] : fields) Print(std::string(field) + ": " + ShownText(value) + "\n");
  }
  return exit;
}

// A field of a CSV line: in quotes where it holds what a line is made of.
std::string CsvField(std::string text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + '"';
}

Exit Series(const Words& words) {
  if (words.Rest().size() != 1) return Off("one chart file is wanted");
  ReadingOptions options{.UseAlpha = words.Has("--alpha")};
  if (const auto lapse = words.Value("--lapse")) {
    const auto [end, error] =
        std::from_chars(lapse->data(), lapse->data() + lapse->size(), options.MinimalLapse);
    if (error != std::errc{} || end != lapse->data() + lapse->size() ||
        !std::isfinite(options.MinimalLapse) || options.MinimalLapse < 0)
      return Off("--lapse wants a number of minutes, not \"" + *lapse + "\"");
  }
  ChartReading reading;
  if (!Read(words, words.Rest()[0], options, reading)) return Failed;
  if (reading.Chart.SeriesCount == 0)
    return Fail(words.Rest()[0] + ": the chart's points span no time, so it has no series");
  const bool exact = words.Has("--exact");
  Print("time,depth,comment\n");
  for (const SeriesPoint& point : reading.SeriesPoints)
    Print((exact ? ExactText(point.Time) + "," + ExactText(point.Depth)
                 : IsoText(point.Time) + "," + ShortText(point.Depth)) +
          "," + CsvField(ShownText(point.Comment)) + "\n");
  return Done;
}

constexpr Option ShowOptions[] = {FolderOption};
constexpr Option SeriesOptions[] = {
    FolderOption,
    {"--alpha", "", "take the pen's skew out with the selected alpha"},
    {"--lapse", "MINUTES", "join steps that are shorter"},
    {"--exact", "", "days and depths in the shortest form that reads back the same"},
};

}  // namespace

constinit const Command ShowCommand{
    "show", "FILE...",
    "Prints the chart record of chart files, one \"Field: value\" a line.\n"
    "A bare name that is no file here is looked for in the folder Data of the program folder.",
    ShowOptions, Show};

constinit const Command SeriesCommand{
    "series", "FILE",
    "Prints a chart's time-depth series as CSV: time,depth,comment.\n"
    "Depths are mm of water since the chart's start; times are ISO 8601, without a zone.",
    SeriesOptions, Series};

}  // namespace hyetex::cli
