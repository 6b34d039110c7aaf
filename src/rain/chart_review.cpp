#include "rain/chart_review.h"

#include <algorithm>
#include <cmath>

#include "chartfiles/chart_text.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "database/access/names.h"
#include "database/conversion/conversion_book.h"
#include "database/store/chart_ascii.h"
#include "database/store/light_reader.h"

namespace hyetex {
namespace {

constexpr int Unreliable = 3;  // of ReliabilityText

std::string Counted(std::int64_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// "3 days", "1 day 5 h", "5 h 10 min", "20 s".
std::string LengthText(std::int64_t seconds) {
  const std::int64_t days = seconds / SecondsPerDay, hours = seconds / 3600 % 24, minutes = seconds / 60 % 60;
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : " ") + part; };
  if (days > 0) add(Counted(days, "day", "days"));
  if (hours > 0) add(std::to_string(hours) + " h");
  if (days == 0 && minutes > 0) add(std::to_string(minutes) + " min");
  return text.empty() ? std::to_string(seconds) + " s" : text;
}

std::string DepthText(float depth) { return RoundedText(static_cast<double>(depth), 2) + " mm"; }

// What one chart says of itself, whatever stands beside it.
void LookAt(const ReviewedChart& chart, std::vector<ReviewLine>& lines) {
  const auto add = [&](ChartTrouble trouble, std::string detail) {
    lines.push_back({trouble, chart.ChartDate, chart.Start, chart.End, std::move(detail)});
  };
  if (SecondsOf(chart.End) <= SecondsOf(chart.Start))
    add(ChartTrouble::Damaged, "its text has no end behind its start");
  if (chart.Converted && !*chart.Converted)
    add(ChartTrouble::NotConverted,
        chart.ConvertedOn == 0 ? "no rain of it in CHART yet"
                               : "changed since it was converted on " + GeneralDateText(chart.ConvertedOn));
  if (!chart.Defective && chart.Depth >= 0 && chart.Gage >= 0) {
    const double apart = static_cast<double>(chart.Depth) - static_cast<double>(chart.Gage);
    constexpr double sliver = 1e-6;  // of 32-bit floats
    if (std::abs(apart) > DepthTolerance * static_cast<double>(chart.Gage) + sliver) {
      std::string detail = DepthText(chart.Depth) + ", manual gage " + DepthText(chart.Gage);
      if (chart.Gage > 0) {
        const double percent = apart / static_cast<double>(chart.Gage) * 100;
        detail += std::string(" (") + (percent > 0 ? "+" : "") + RoundedText(percent, 1) + "%)";
      }
      add(ChartTrouble::DepthDiffers, std::move(detail));
    }
  }
  if (chart.Reliability == Unreliable) add(ChartTrouble::Unreliable, "rated unreliable");
}

}  // namespace

MendedIn WhereMended(ChartTrouble trouble) {
  switch (trouble) {
    case ChartTrouble::Missing:
      return MendedIn::Staging;
    case ChartTrouble::NotConverted:
      return MendedIn::Populating;
    default:
      return MendedIn::Editor;
  }
}

const char* TroubleName(ChartTrouble trouble) {
  switch (trouble) {
    case ChartTrouble::Missing:
      return "No chart";
    case ChartTrouble::Overlap:
      return "Overlap";
    case ChartTrouble::Damaged:
      return "Damaged";
    case ChartTrouble::NotConverted:
      return "Not converted";
    case ChartTrouble::DepthDiffers:
      return "Depth and gage differ";
    case ChartTrouble::Unreliable:
      return "Unreliable";
  }
  return "";
}

const char* MendingName(MendedIn place) {
  switch (place) {
    case MendedIn::Staging:
      return "Stage a Chart";
    case MendedIn::Editor:
      return "Open in Quality Control";
    case MendedIn::Populating:
      return "Convert";
  }
  return "";
}

std::vector<ReviewLine> ReviewOf(std::vector<ReviewedChart> charts) {
  std::ranges::stable_sort(charts,
                           [](const ReviewedChart& a, const ReviewedChart& b) { return a.Start < b.Start; });
  std::vector<ReviewLine> lines;
  std::optional<Date> reach;  // up to where there are charts so far
  for (const ReviewedChart& chart : charts) {
    const std::int64_t apart = reach ? SecondsOf(chart.Start) - SecondsOf(*reach) : 0;
    if (static_cast<double>(apart) > PaperChangeMinutes * 60)
      lines.push_back({ChartTrouble::Missing, chart.ChartDate, *reach, chart.Start,
                       LengthText(apart) + " without a chart"});
    if (apart < 0) {
      const Date to = std::min(*reach, std::max(chart.End, chart.Start));
      const std::int64_t common = SecondsOf(to) - SecondsOf(chart.Start);
      lines.push_back({ChartTrouble::Overlap, chart.ChartDate, chart.Start, to,
                       "begins " + LengthText(-apart) + " before the chart before it ends" +
                           (common < -apart ? ", and lies within it" : "")});
    }
    LookAt(chart, lines);
    reach = std::max(reach.value_or(chart.Start), std::max(chart.Start, chart.End));
  }
  return lines;
}

DbResult<ChartReview> ReviewCharts(HyetexPlotDB& database, const std::string& instrumentCode,
                                   std::span<const StationRecord> stations, Progress& progress) {
  ChartReview review;
  if (instrumentCode.empty()) return review;
  const ClosedAfter closed(database);
  if (const auto opened = database.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  const auto hasBook = HasConversionBook(database.DatabaseConnection);
  if (!hasBook) return tl::unexpected(hasBook.error());
  const auto book = ReadConversionBook(database, instrumentCode);
  if (!book) return tl::unexpected(book.error());
  const auto hasMark = HasLoadedMark(database.DatabaseConnection);
  if (!hasMark) return tl::unexpected(hasMark.error());
  review.TellsConverted = *hasMark || *hasBook;

  Selection selection = ChartAsciiOf(instrumentCode);
  selection.LongWithRow = true;
  if (const auto opened = database.OpenChartAscii(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.ChartAsciiTable;
  LightReader reader({.Stations = stations});
  std::vector<ReviewedChart> charts;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto count = static_cast<std::int64_t>(charts.size());
    if (!progress.Step(count, 0, "chart " + std::to_string(count + 1))) {
      review.Stopped = true;
      return false;
    }
    const auto date = table.Value(column::ChartDate);
    if (!date) return tl::unexpected(date.error());
    const auto loaded = IsLoaded(table);
    if (!loaded) return tl::unexpected(loaded.error());
    const auto read =
        table.ReadPieces(column::AsciiFile, [&](std::string_view piece) { return reader.Take(piece); });
    const ChartRecord chart = reader.Finish();
    if (!read) return tl::unexpected(read.error());
    ReviewedChart one;
    one.ChartDate = DateOf(*date);
    one.Start = chart.StartTime == 0 ? one.ChartDate : chart.StartTime;
    one.End = chart.EndTime;
    one.Depth = chart.SelectedDepth == 0 ? chart.DigitizedDepth : chart.SelectedDepth;
    one.Gage = chart.ManualDepth;
    one.Reliability = chart.Reliability;
    one.Defective = HasCode(chart.GeneralComment, CodeDefective);
    const auto written = book->find(SecondsOf(one.ChartDate));
    if (written != book->end()) one.ConvertedOn = written->second.When;
    if (review.TellsConverted) one.Converted = *hasMark ? *loaded : written != book->end();
    charts.push_back(one);
    return true;
  });
  table.Close();
  if (!walked) return tl::unexpected(walked.error());
  review.Charts = static_cast<int>(charts.size());
  review.Lines = ReviewOf(std::move(charts));
  return review;
}

}  // namespace hyetex
