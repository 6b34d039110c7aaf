// show, series and report: what chart files say.
#include "chartfiles/chart_reader.h"
#include "cli/commands.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "editor/chart_summary.h"
#include "staging/lists/lists.h"

namespace hyetex::cli {
namespace {

// A bare name is a file here, if there is one; else it is looked for in the program folder.
std::string PathOf(const std::string& name) {
  return !HasSeparator(name) && FileExists(name) ? JoinPath(".", name) : name;
}

std::string AlphaTexts(const ChartRecord& chart) {
  std::string text;
  for (int i = 1; i <= chart.AlphaCount; ++i)
    text += (i == 1 ? "" : " ") + ShortText(chart.AlphaValues[static_cast<std::size_t>(i)]);
  return text;
}

// A field of a CSV line: in quotes where it holds what a line is made of.
std::string CsvField(std::string text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + '"';
}

}  // namespace

bool ReadChart(const std::string& folder, const std::string& name, ReadingOptions options,
               ChartReading& reading) {
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

Exit RunShow(const ShowWords& words) {
  Exit exit = Done;
  ChartReading reading;
  bool first = true;
  for (const std::string& name : words.Files) {
    if (!ReadChart(words.Folder, name, {}, reading)) {
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
    if (const auto& scan = reading.Scan)
      Print("Scan: " + ShownText(scan->Path) + ", page " + ShortText(scan->Page + 1) + ", SHA-256 " +
            scan->Sha256 + "\n");
  }
  return exit;
}

Exit RunReport(const ShowWords& words) {
  Exit exit = Done;
  ChartSummary summary;
  ChartReading reading;
  for (std::size_t i = 0; i < words.Files.size(); ++i) {
    const std::string& name = words.Files[i];
    const auto read = ReadChartFile(PathOf(name), words.Folder, {}, reading);
    const ChartRecord& chart = reading.Chart;
    if (!read) {
      exit = Fail(read.error());
    } else if (chart.InstrumentCode.empty() && chart.StartTime == 0) {
      exit = Fail(name + ": it is no chart file");
    } else if (!summary.Add(chart)) {
      exit = Fail(LeftOutOfSummary(words.Files.size() - i));
      break;
    }
  }
  if (!summary.IsEmpty()) Print(summary.Text());
  return exit;
}

Exit RunSeries(const SeriesWords& words) {
  const ReadingOptions options{.UseAlpha = words.Alpha, .MinimalLapse = static_cast<float>(words.Lapse)};
  ChartReading reading;
  if (!ReadChart(words.Folder, words.File, options, reading)) return Failed;
  if (reading.Chart.SeriesCount == 0)
    return Fail(words.File + ": the chart's points span no time, so it has no series");
  Print("time,depth,comment\n");
  for (const SeriesPoint& point : reading.SeriesPoints)
    Print((words.Exact ? ExactText(point.Time) + "," + ExactText(point.Depth)
                       : IsoText(point.Time) + "," + ShortText(point.Depth)) +
          "," + CsvField(ShownText(point.Comment)) + "\n");
  return Done;
}

}  // namespace hyetex::cli
