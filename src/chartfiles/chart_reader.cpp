#include "chartfiles/chart_reader.h"

#include <algorithm>

#include "chartfiles/chart_lines.h"
#include "chartfiles/chart_scan.h"
#include "chartfiles/chart_text.h"
#include "chartfiles/series.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "staging/lists/lists.h"

namespace hyetex {
namespace {

constexpr std::size_t MostNotes = 20;

// Takes the lines of one file into a reading.
class LineReader {
 public:
  LineReader(ChartReading& reading, const ReadingOptions& options) : reading_(reading), options_(options) {}

  void Take(std::string_view line) {
    ++number_;
    const ChartLineKind kind = KindOfChartLine(line);
    if (kind.Kind == ChartLine::Point) {
      ++pointLines_;
      TakePoint(line);
    } else if (BeginsAsPoint(line)) {
      ++pointLines_;
      // One number and words: half a point, which never passes for what the chart's head says.
      Note("the point is left out, since it has no second number, but holds \"" +
           std::string(kind.Word.empty() ? ":" : kind.Word) + "\"");
    } else {
      TakeValue(kind.Kind, ValueOfChartLine(line));
    }
  }

  void Finish(std::string_view fileName) {
    ChartRecord& chart = reading_.Chart;
    chart.RawCount = static_cast<std::int16_t>(static_cast<int>(reading_.RawPoints.size()) - 1);
    GiveCentury(fileName);
    LookForTheEnd();
    Left(leftPoints_, "point line", MaxPoint);
    Left(leftAlphas_, "alpha line", MaxAlpha);
    if (notes_ > MostNotes) reading_.Notes.push_back(AndMore(notes_ - MostNotes) + " such lines");
  }

 private:
  void TakePoint(std::string_view line) {
    if (static_cast<int>(reading_.RawPoints.size()) > MaxPoint) {
      ++leftPoints_;
      return;
    }
    RawPoint& point = reading_.RawPoints.emplace_back();
    const auto first = std::find(line.begin(), line.end(), ',');
    const auto second = std::find(first + 1, line.end(), ',');
    point.X = LeadingNumber({line.begin(), first});
    point.Y = LeadingNumber({first + 1, second});
    if (second != line.end()) point.Comment.assign(second + 1, line.end());
  }

  void TakeValue(ChartLine kind, std::string_view value) {
    ChartRecord& chart = reading_.Chart;
    switch (kind) {
      case ChartLine::Start:
        TakeDate(value, chart.StartTime, startHasTwoDigits_, "start");
        break;
      case ChartLine::End:
        TakeDate(value, chart.EndTime, endHasTwoDigits_, "end");
        break;
      case ChartLine::Instrument:
        chart.InstrumentCode = value;
        chart.InstrumentIndex = FindStationIgnoringCase(options_.Stations, value);
        break;
      case ChartLine::Alpha:
        if (chart.AlphaCount >= MaxAlpha)
          ++leftAlphas_;
        else
          chart.AlphaValues[static_cast<std::size_t>(++chart.AlphaCount)] = LeadingFloat(value);
        break;
      case ChartLine::NoAlphaSelected:
        hasLastLine_ = true;
        chart.SelectedAlpha = NoAlpha;
        break;
      case ChartLine::AlphaSelected:
        hasLastLine_ = true;
        chart.SelectedAlpha = LeadingFloat(value);
        break;
      case ChartLine::GeneralComment:
        chart.GeneralComment = value;
        break;
      case ChartLine::DigitizerComment:
        chart.DigitizerComment = value;
        break;
      case ChartLine::Method:
        chart.ChartMethod = LeadingInt16(value);
        break;
      case ChartLine::DigitizedDepth:
        chart.DigitizedDepth = LeadingFloat(value);
        break;
      case ChartLine::DigitizedTime:
        chart.DigitizedTime = LeadingFloat(value);
        break;
      case ChartLine::ManualDepth:
        chart.ManualDepth = LeadingFloat(value);
        break;
      case ChartLine::EyedDepth:
        chart.EyedDepth = LeadingFloat(value);
        break;
      case ChartLine::SelectedDepth:
        chart.SelectedDepth = LeadingFloat(value);
        break;
      case ChartLine::Reliability:
        chart.Reliability = LeadingInt16(value);
        break;
      case ChartLine::PointCount:
        counted_ = static_cast<int>(LeadingInt16(value));
        break;
      case ChartLine::Scan:
        reading_.Scan = ParseScanLine(value);
        break;
      case ChartLine::Core:
      case ChartLine::Agency:
      case ChartLine::Station:
      case ChartLine::User:
      case ChartLine::PointsHeading:
      case ChartLine::Point:
      case ChartLine::Other:
        break;
    }
  }

  void TakeDate(std::string_view value, Date& date, bool& hasTwoDigits, std::string_view what) {
    const auto parsed = ParseDateText(value);
    if (!parsed) {
      Note("\"" + ShownText(value.substr(0, 60)) + "\" is no date; the " + std::string(what) +
           " stays as it is");
      return;
    }
    date = parsed->Value;
    hasTwoDigits = parsed->TwoDigitYear;
  }

  // A file's own name knows the century that its two-digit years leave open. Charts from before 1930 exist.
  void GiveCentury(std::string_view fileName) {
    const auto name = ParseChartFileName(fileName);
    if (!name || !startHasTwoDigits_) return;
    ChartRecord& chart = reading_.Chart;
    const CalendarTime named = ToCalendar(name->Start), start = ToCalendar(chart.StartTime);
    if (named.Day != start.Day || named.Month != start.Month || named.Year % 100 != start.Year % 100) return;
    chart.StartTime = InYear(chart.StartTime, named.Year);
    if (!endHasTwoDigits_) return;
    const int endYear = ToCalendar(chart.EndTime).Year % 100;
    const bool nextCentury = named.Year % 100 == 99 && endYear == 0;
    chart.EndTime = InYear(chart.EndTime, named.Year - named.Year % 100 + (nextCentury ? 100 : 0) + endYear);
  }

  static Date InYear(Date date, int year) {
    const CalendarTime t = ToCalendar(date);
    return MakeDate(year, t.Month, t.Day, t.Hour, t.Minute, t.Second);
  }

  // Every writer counts the points in the head and ends with the selected alpha; a text without a count is
  // somebody else's.
  void LookForTheEnd() {
    std::string& lacks = reading_.CutOff;
    lacks.clear();
    if (!counted_) return;
    if (pointLines_ < *counted_)
      lacks = "its head counts " + ShortText(*counted_) + " points, and it holds " + ShortText(pointLines_);
    else if (!hasLastLine_)
      lacks = "its last lines are missing";
  }

  void Note(std::string_view what) {
    if (++notes_ <= MostNotes)
      reading_.Notes.push_back("line " + ShortText(number_) + ": " + std::string(what));
  }

  void Left(int left, std::string_view what, int most) {
    if (left > 0)
      reading_.Notes.push_back(ShortText(left) + " " + std::string(what) + (left == 1 ? "" : "s") +
                               " left out: a chart holds " + ShortText(most));
  }

  ChartReading& reading_;
  const ReadingOptions& options_;
  int number_ = 0, leftPoints_ = 0, leftAlphas_ = 0, pointLines_ = 0;
  std::optional<int> counted_;
  bool hasLastLine_ = false;
  std::size_t notes_ = 0;
  bool startHasTwoDigits_ = false, endHasTwoDigits_ = false;
};

}  // namespace

void ReadChartText(std::string_view text, std::string_view fileName, const ReadingOptions& options,
                   ChartReading& reading) {
  reading.Chart = {};
  reading.Chart.FileName = fileName;
  reading.RawPoints.assign(1, {});
  reading.RawPoints.reserve(MaxPoint + 1);
  reading.Notes.clear();
  reading.Scan.reset();
  LineReader lines(reading, options);
  ForEachLine(text, [&](std::string_view line) { lines.Take(line); });
  lines.Finish(fileName);
  BuildSeries(options.UseAlpha, options.MinimalLapse, reading);
}

void ReadStoredChart(std::string_view text, const ReadingOptions& options, ChartReading& reading) {
  if (text.empty()) return;
  const std::size_t end = std::min(text.find('\n'), text.size());
  std::string_view name = text.substr(0, end);
  if (name.ends_with('\r')) name.remove_suffix(1);
  ReadChartText(text.substr(std::min(end + 1, text.size())), name, options, reading);
  reading.Chart.FileName = ChartFileName(reading.Chart.InstrumentCode, reading.Chart.StartTime);
}

Result<void> ReadChartFile(const std::string& path, const std::string& programFolder,
                           const ReadingOptions& options, ChartReading& reading) {
  const auto bytes = ReadWholeFile(
      HasSeparator(path) ? path : JoinPath(JoinPath(programFolder, "Data"), path), MostChartBytes);
  if (!bytes) return Failure(bytes.error());
  ReadChartText(*bytes, BaseName(path), options, reading);
  return {};
}

}  // namespace hyetex
