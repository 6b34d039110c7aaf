#include "rain/rain_report.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/dates.h"
#include "core/numbers.h"
#include "graph/draw.h"
#include "rain/rain_graphs.h"
#include "rain/rain_text.h"

namespace hyetex {
namespace {

constexpr std::array<const char*, 12> MonthNames = {"January",   "February", "March",    "April",
                                                    "May",       "June",     "July",     "August",
                                                    "September", "October",  "November", "December"};
constexpr int Months = 12;
constexpr std::size_t MostStorms = 10, MostRemarks = 8;
constexpr Font Heading{16, true}, Strong{9.5, true}, Plain{9.5, false}, Small{8.5, false};

// A part of a page with a graph of its own.
class PartOfPage : public Surface {
 public:
  PartOfPage(Surface& page, const Rect& area) : page_(page), area_(area) {}
  Rect Area() const override { return area_; }
  void Clear() override {}
  void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) override {
    page_.Line(x1, y1, x2, y2, colour, width);
  }
  void Circle(double x, double y, double radius, Rgb colour) override { page_.Circle(x, y, radius, colour); }
  void Polyline(std::span<const SurfacePoint> points, const Stroke& stroke) override {
    page_.Polyline(points, stroke);
  }
  void FillRect(const Rect& rect, Rgb colour, double opacity) override {
    page_.FillRect(rect, colour, opacity);
  }
  void FillShape(std::span<const SurfacePoint> corners, Rgb colour) override {
    page_.FillShape(corners, colour);
  }
  void Text(double x, double y, std::string_view text, const TextStyle& style) override {
    page_.Text(x, y, text, style);
  }
  TextSize Measure(std::string_view text, const Font& font) const override {
    return page_.Measure(text, font);
  }
  void Clip(const Rect& area) override { page_.Clip(area); }
  void Unclip() override { page_.Unclip(); }

 private:
  Surface& page_;
  Rect area_;
};

struct Cell {
  std::string Text;
  Rgb Colour = graph_colour::Black;
};

// Lines and tables from the top of a page down.
class Writer {
 public:
  explicit Writer(Surface& surface) : surface_(surface), area_(surface.Area()), y_(area_.Top) {}

  double Y() const { return y_; }
  double Left() const { return area_.Left; }
  double Width() const { return area_.Width; }
  void Skip(double height) { y_ += height; }
  void MoveTo(double y) { y_ = y; }

  void Line(const std::string& text, const Font& font, Rgb colour = graph_colour::Black) {
    const TextSize size = surface_.Measure(text, font);
    y_ += size.Ascent;
    surface_.Text(area_.Left, y_, Fitted(text, font, area_.Width), {font, colour});
    y_ += size.Descent + font.Size * 0.25;
  }
  // The first column stands at its left, the others end at their right.
  void Row(double left, std::span<const double> widths, const std::vector<Cell>& cells, const Font& font) {
    const TextSize size = surface_.Measure("0", font);
    const double base = y_ + size.Ascent;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const TextPlace place = i == 0 ? TextPlace::Begins : TextPlace::Ends;
      const double at = i == 0 ? left : left + widths[i];
      surface_.Text(at, base, Fitted(cells[i].Text, font, widths[i]), {font, cells[i].Colour, place});
      left += widths[i];
    }
    y_ += size.Height() + font.Size * 0.2;
  }
  void Rule(double left, double width) {
    const SurfacePoint ends[] = {{left, y_}, {left + width, y_}};
    surface_.Polyline(ends, {graph_colour::Grey, 0.5});
    y_ += 3;
  }

 private:
  std::string Fitted(std::string text, const Font& font, double width) const {
    if (surface_.Measure(text, font).Width <= width) return text;
    const std::string dots = "...";
    while (!text.empty() && surface_.Measure(text + dots, font).Width > width) {
      // Whole characters of UTF-8 go.
      while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) text.pop_back();
      if (!text.empty()) text.pop_back();
    }
    return text + dots;
  }

  Surface& surface_;
  Rect area_;
  double y_;
};

std::string ClockText(const RainClock& clock) {
  const std::string begins = TimeText(clock.DayBegins / static_cast<double>(MinutesPerDay)).substr(0, 5);
  return (clock.MinutesFromGmt == 0 ? std::string("GMT")
                                    : "Local time, GMT" + IsoWithZone(0, clock).substr(19)) +
         "; days begin at " + begins + "; depths in mm";
}

std::string Percent(double share) {
  // What is nearly all is not all.
  return RoundedText(share >= 1 ? 100 : std::floor(share * 1000) / 10, 1) + "%";
}

// With two decimals, so that points stand below each other.
std::string Mm(double depth) {
  std::string text = RoundedText(depth, 2);
  std::size_t point = text.find('.');
  if (point == std::string::npos) point = text.size(), text += '.';
  text.resize(point + 3, '0');
  return text;
}

std::string TimeOf(RainTime time, const RainClock& clock) {
  const CalendarTime at = ToCalendar(ToLocal(time, clock));
  const auto two = [](int number) { return PadNumber(number, 2); };
  return two(at.Day) + "/" + two(at.Month) + "/" + std::to_string(at.Year) + " " + two(at.Hour) + ":" +
         two(at.Minute);
}

class ReportPage {
 public:
  ReportPage(const RainReport& report, Surface& surface)
      : report_(report), surface_(surface), writer_(surface) {}

  void DrawMonth(int month) {
    Head(MonthNames[static_cast<std::size_t>(month - 1)] + std::string(" ") + std::to_string(report_.Year));
    const auto isIn = [&](const RainStep& step) {
      const RainTime begin = StepBegin(step.Start, RainMonths, report_.Clock);
      const CalendarTime at = ToCalendar(ToLocal(begin, report_.Clock));
      return at.Year == report_.Year && at.Month == month;
    };
    std::vector<RainStep> hours, days;
    std::ranges::copy_if(report_.Hours, std::back_inserter(hours), isIn);
    std::ranges::copy_if(report_.Days, std::back_inserter(days), isIn);
    constexpr double graphHeight = 330;
    PartOfPage part(surface_, {writer_.Left(), writer_.Y(), writer_.Width(), graphHeight});
    Draw(MakeRainGraph(hours, {.Title = {}, .Clock = report_.Clock, .FontPoints = 9}), part);
    writer_.Skip(graphHeight + 10);
    for (const RainPeriod& period : report_.Months)
      if (period.Month == month && period.Year == report_.Year)
        writer_.Line("Sum " + Mm(period.Depth) + " mm; " + std::to_string(period.WetDays) +
                         " days with rain; " + std::to_string(period.WholeDays) + " of " +
                         std::to_string(period.Days) + " days have data throughout, " +
                         Percent(period.Covered) + " of the time",
                     Strong);
    DrawDays(days);
  }

  void DrawMaxima() {
    Head("Maxima and storms of " + std::to_string(report_.Year));
    const double maximaWidths[] = {110, 70, 120, 90};
    writer_.Line("Greatest depth in", Strong);
    writer_.Row(writer_.Left(), maximaWidths, {{"Time"}, {"mm"}, {"Begins"}, {"Data in it"}}, Strong);
    writer_.Rule(writer_.Left(), 390);
    for (const RainMaximum& maximum : report_.Maxima)
      writer_.Row(
          writer_.Left(), maximaWidths,
          {{maximum.Minutes % 60 == 0 && maximum.Minutes > 60
                ? std::to_string(maximum.Minutes / 60) + " hours"
                : std::to_string(maximum.Minutes) + " minutes"},
           {Mm(maximum.Depth)},
           {maximum.Start ? TimeOf(*maximum.Start, report_.Clock) : ""},
           {Percent(maximum.Covered), maximum.Covered < 1 ? graph_colour::Vermilion : graph_colour::Black}},
          Plain);
    writer_.Skip(16);
    const double stormWidths[] = {110, 110, 70, 70, 90};
    writer_.Line("The greatest storms", Strong);
    writer_.Row(writer_.Left(), stormWidths, {{"Begins"}, {"Ends"}, {"mm"}, {"Hours"}, {"Peak, mm/h"}},
                Strong);
    writer_.Rule(writer_.Left(), 450);
    for (const RainStorm& storm : report_.Storms)
      writer_.Row(writer_.Left(), stormWidths,
                  {{TimeOf(storm.Start, report_.Clock)},
                   {TimeOf(storm.End, report_.Clock)},
                   {Mm(storm.Depth)},
                   {RoundedText(storm.Hours(), 1)},
                   {RoundedText(storm.Peak, 1)}},
                  Plain);
    writer_.Skip(16);
    for (const RainPeriod& year : report_.Years)
      if (year.Year == report_.Year)
        writer_.Line("Sum of the year " + Mm(year.Depth) + " mm; " + std::to_string(year.WholeDays) + " of " +
                         std::to_string(year.Days) + " days have data throughout, " + Percent(year.Covered) +
                         " of the time",
                     Strong);
    std::vector<std::string> remarks = report_.Remarks.Lines();
    remarks.insert(remarks.end(), report_.Gage.Notes.begin(), report_.Gage.Notes.end());
    if (remarks.size() > MostRemarks) remarks.resize(MostRemarks);
    for (const std::string& remark : remarks) writer_.Line(remark, Small);
    writer_.Skip(6);
    writer_.Line("Maxima are over every moment, of what is known; peaks are those of " +
                     std::to_string(PeakMinutes) + " minutes.",
                 Small, graph_colour::Grey);
  }

 private:
  void Head(const std::string& title) {
    const RainSite& site = report_.Site;
    writer_.Line((site.Station.empty() ? site.Instrument : site.Station) + ": " + title, Heading);
    std::string place = site.Instrument;
    if (site.Latitude && site.Longitude)
      place += "; " + RoundedText(*site.Latitude, 4) + ", " + RoundedText(*site.Longitude, 4);
    if (site.Altitude) place += "; " + RoundedText(*site.Altitude, 0) + " m above the sea";
    writer_.Line(place, Plain);
    writer_.Line(ClockText(report_.Clock), Small, graph_colour::Grey);
    writer_.Skip(8);
  }

  // In two columns.
  void DrawDays(const std::vector<RainStep>& days) {
    const double widths[] = {30, 52, 52, 52, 62};
    const double between = 30, width = 248;
    const double top = writer_.Y();
    const std::size_t half = (days.size() + 1) / 2;
    for (std::size_t column = 0; column < 2; ++column) {
      const double left = writer_.Left() + static_cast<double>(column) * (width + between);
      writer_.MoveTo(top);
      writer_.Row(left, widths, {{"Day"}, {"mm"}, {"Data"}, {"Gage"}, {"Difference"}}, Strong);
      writer_.Rule(left, width);
      for (std::size_t i = column * half; i < std::min(days.size(), (column + 1) * half); ++i)
        DrawDay(left, widths, days[i]);
    }
  }
  void DrawDay(double left, std::span<const double> widths, const RainStep& day) {
    const auto gage = CompareDay(day, report_.Gage);
    const int number = ToCalendar(ToLocal(day.Start, report_.Clock)).Day;
    std::vector<Cell> cells = {
        {std::to_string(number)}, {day.IsGap() ? "no data" : Mm(day.Depth)}, {Percent(day.Covered)}};
    if (day.Covered < 1) cells[1].Colour = cells[2].Colour = graph_colour::Grey;
    if (gage) {
      cells.push_back({Mm(gage->Gage)});
      if (gage->Percent && !day.IsGap())
        cells.push_back({(*gage->Percent > 0 ? "+" : "") + RoundedText(*gage->Percent, 1) + "%",
                         gage->IsOff() ? graph_colour::Vermilion : graph_colour::Black});
    }
    writer_.Row(left, widths, cells, Plain);
  }

  const RainReport& report_;
  Surface& surface_;
  Writer writer_;
};

}  // namespace

DbResult<RainReport> ReadRainReport(HyetexPlotDB& database, const std::string& instrument, int year,
                                    const RainClock& clock, double dryHours, Progress& progress) {
  RainReport report;
  report.Clock = clock;
  report.Year = year;
  auto site = ReadRainSite(database, instrument);
  if (!site) return tl::unexpected(site.error());
  report.Site = *std::move(site);
  const RainTime noon = FromLocal(MakeDate(year, 7, 1, 12), clock);
  const RainTime begin = StepBegin(noon, RainYears, clock);
  const RainSpan span{begin, NextStep(begin, RainYears, clock)};
  auto gage = ReadManualGage(database, instrument, span, clock);
  if (!gage) return tl::unexpected(gage.error());
  report.Gage = *std::move(gage);

  RainPeriods months(RainMonths, clock), years(RainYears, clock);
  RainSteps hours({RainStepKind::Unit::Minutes, 60}, clock, span,
                  [&](const RainStep& hour) { report.Hours.push_back(hour); });
  RainSteps days(RainDays, clock, span, [&](const RainStep& day) {
    report.Days.push_back(day);
    months.Add(day);
    years.Add(day);
  });
  RainMaxima maxima;
  RainStorms storms(dryHours, [&](const RainStorm& storm) {
    report.Storms.push_back(storm);
    std::ranges::stable_sort(report.Storms, std::ranges::greater(), &RainStorm::Depth);
    if (report.Storms.size() > MostStorms) report.Storms.pop_back();
  });
  const auto remarks = ReadRain(database, {.Instrument = instrument, .Span = span},
                                {&hours, &days, &maxima, &storms}, progress);
  if (!remarks) return tl::unexpected(remarks.error());
  report.Remarks = *remarks;
  report.Months = months.Periods();
  report.Years = years.Periods();
  report.Maxima = maxima.Maxima();
  return report;
}

void DrawRainPage(const RainReport& report, int page, Surface& surface) {
  surface.Clear();
  ReportPage drawn(report, surface);
  if (page < Months)
    drawn.DrawMonth(page + 1);
  else
    drawn.DrawMaxima();
}

}  // namespace hyetex
