#include "scans/form.h"

#include <cmath>

#include "core/numbers.h"
#include "scans/chance.h"

namespace hyetex {
namespace {

struct Step {
  double Minor, Major;
};

// The finest lines that paper holds apart.
Step HourSteps(double mmPerHour) {
  constexpr Step steps[] = {{1.0 / 6, 1}, {0.25, 1}, {0.5, 3}, {1, 6}, {2, 12}, {6, 24}};
  for (const Step& step : steps)
    if (step.Minor * mmPerHour >= 2.4) return step;
  return {24, 168};
}
Step RainSteps(double mmPerRain) {
  constexpr Step steps[] = {{0.01, 0.1}, {0.02, 0.1}, {0.05, 0.5}, {0.1, 1}, {0.2, 1}, {0.5, 5}, {1, 10}};
  for (const Step& step : steps)
    if (step.Minor * mmPerRain >= 0.75) return step;
  return {10, 100};
}

bool IsMultiple(double value, double of) { return std::abs(value / of - std::round(value / of)) < 1e-6; }

constexpr double MajorMm = 0.25, MinorMm = 0.15;  // the lines' widths
constexpr double HeaderMm = 7.5, TitleMm = 6, FootMm = 9, SideMm = 13;

class Printer {
 public:
  Printer(const ChartForm& form, const PenLine& line, const ScanStyle& style, std::uint64_t seed,
          InkLayer& grid, InkLayer& letters)
      : form_(form), line_(line), style_(style), grid_(grid), letters_(letters), chance_(seed, "form") {}

  void Print() {
    Depths();
    Hours();
    HourNumbers();
    DepthNumbers();
    Words();
  }

 private:
  double Along(double hours, double up) const { return line_.AlongMm({PenStep::Point, hours, up, 0}); }
  double HeightOf(double rain) const { return style_.ZeroMm + rain / line_.Paper.DepthScale; }

  // A line whose ink comes and goes as the print is worn.
  void Worn(std::span<const cv::Point2d> places, double width, double ink) {
    const Wander wander(chance_, chance_.Uniform(15, 50)), fine(chance_, 2.5);
    const double start = chance_.Uniform(0, 300), line = ink * (1 - 0.35 * style_.Worn * chance_.Uniform());
    std::vector<StrokePoint> points;
    double length = start;
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (i > 0) length += cv::norm(places[i] - places[i - 1]);
      const double wear = std::max(0.0, wander.At(length) + 0.5 * fine.At(length));
      points.push_back({places[i], width, line * (1 - style_.Worn * 0.8 * wear)});
    }
    grid_.Stroke(points);
  }
  void HourLine(double hours, double width, double ink) {
    std::vector<cv::Point2d> places;
    const int parts = static_cast<int>(std::ceil(form_.BandMm / 2));
    for (int i = 0; i <= parts; ++i) {
      const double up = form_.BandMm * i / parts;
      places.emplace_back(Along(hours, up), up);
    }
    Worn(places, width, ink);
  }
  void DepthLine(double up, double width, double ink) {
    std::vector<cv::Point2d> places;
    const double from = Along(form_.FromHour, up), to = Along(form_.ToHour, up);
    const int parts = static_cast<int>(std::ceil((to - from) / 3));
    for (int i = 0; i <= parts; ++i)
      places.emplace_back(std::lerp(from, to, static_cast<double>(i) / parts), up);
    Worn(places, width, ink);
  }

  void Depths() {
    for (int i =
             static_cast<int>(std::ceil(-style_.ZeroMm * line_.Paper.DepthScale / form_.MinorRain - 1e-6));
         HeightOf(i * form_.MinorRain) < form_.BandMm + 1e-6; ++i) {
      const double rain = i * form_.MinorRain, up = HeightOf(rain);
      const bool major = IsMultiple(rain, form_.MajorRain);
      DepthLine(up, major ? MajorMm : MinorMm, major ? 0.95 : 0.68);
    }
    DepthLine(0, 0.3, 1);
    DepthLine(form_.BandMm, 0.22, 1);
  }
  void Hours() {
    const double first = style_.FirstHour;
    for (int i = static_cast<int>(std::ceil((first + form_.FromHour) / form_.MinorHours - 1e-6));
         i * form_.MinorHours - first < form_.ToHour + 1e-6; ++i) {
      const bool major = IsMultiple(i * form_.MinorHours, form_.MajorHours);
      HourLine(i * form_.MinorHours - first, major ? MajorMm : MinorMm, major ? 0.95 : 0.68);
    }
    // The page begins and ends where these two stand on the bottom line.
    for (const double hours : {0.0, line_.Hours}) {
      HourLine(hours, 0.25, 1);
      const double along = Along(hours, 0);
      grid_.Line({along, 0}, {along, -3}, 0.25, 1);
    }
    for (const double hours : {form_.FromHour, form_.ToHour}) HourLine(hours, 0.22, 1);
  }

  void HourNumbers() {
    const double mm = form_.MajorHours / line_.Paper.TimeScale;
    const bool days = line_.Hours > 48;
    static constexpr const char* names[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    const InkLayer::Lettering large{2.6, 0.42, 0, 0.5, 1, false}, small{1.9, 0.26, 0, 0.5, 1, false};
    const double up = form_.BandMm + HeaderMm / 2;
    for (int i = static_cast<int>(std::ceil((style_.FirstHour + form_.FromHour) / form_.MajorHours - 1e-6));;
         ++i) {
      const double hour = i * form_.MajorHours, since = hour - style_.FirstHour;
      if (since > form_.ToHour + 1e-6) break;
      const int day = static_cast<int>(std::floor(hour / 24)),
                left = static_cast<int>(std::lround(hour)) - 24 * day;
      const double along = Along(since, form_.BandMm);
      const std::string number = ShortText(left == 0 ? 24 : left);
      letters_.Text(number, {along, up}, days ? small : large);
      if (days && left == 12)
        letters_.Text(names[(day % 7 + 7) % 7], {along + 6.5, up + 0.2}, {2.2, 0.36, 0, 0, 1, true});
      if (days) letters_.Text(number, {Along(since, 0), -2.2}, {1.6, 0.22, 0, 0.5, 1, false});
      const bool night = left >= 19 || left < 7;
      if (style_.NightBars && !days && night && since + form_.MajorHours < form_.ToHour)
        letters_.Block({along + 0.2 * mm, up - 1.2, 0.6 * mm, 2.4}, 1);
    }
  }
  void DepthNumbers() {
    const double mm = form_.MajorHours / line_.Paper.TimeScale;
    const double height = std::min(2.6, form_.MajorRain / line_.Paper.DepthScale * 0.45);
    const double top = (form_.BandMm - style_.ZeroMm) * line_.Paper.DepthScale;
    const double each = height < 2 ? 5 * form_.MajorRain : form_.MajorRain;
    const int apart = std::max(1, static_cast<int>(std::lround(110 / mm)));
    const int first = static_cast<int>(std::ceil(style_.FirstHour / form_.MajorHours)) + (apart > 2 ? 2 : 1);
    for (int i = first;; i += apart) {
      const double since = i * form_.MajorHours - style_.FirstHour;
      if (since > line_.Hours) break;
      for (int number = 0; number * each < top + 1e-6; ++number) {
        const double up = HeightOf(number * each) + (number == 0 ? 1.4 : 0) -
                          (HeightOf(number * each) > form_.BandMm - 1 ? 1.6 : 0);
        letters_.Text(ShortText(number * each), {Along(since, up), up},
                      {std::max(2.2, height), 0.42, 0, 0.5, 1, false});
      }
    }
  }
  void Words() {
    const double top = form_.BandMm + HeaderMm + TitleMm / 2 - 0.6, page = line_.PageMm();
    letters_.Text(style_.Title, {0.5 * page, top}, {2.7, 0.34, 0, 0.5, 1, true});
    letters_.Text("Station:", {0.02 * page, top}, {2, 0.22, 0, 0, 1, false});
    letters_.Text("Laid on:", {0.26 * page, top}, {2, 0.22, 0, 0, 1, false});
    letters_.Text("Taken off:", {0.73 * page, top}, {2, 0.22, 0, 0, 1, false});
    letters_.Text("Read by:", {0.9 * page, top}, {2, 0.22, 0, 0, 1, false});
    letters_.Text("Form R 14", {form_.Paper.x + 3.4, 0.3 * form_.BandMm}, {1.7, 0.2, 90, 0.5, 1, false});
    letters_.Text("mm of rain", {form_.Paper.x + form_.Paper.width - 3.4, 0.6 * form_.BandMm},
                  {2, 0.25, 90, 0.5, 1, false});
  }

  const ChartForm& form_;
  const PenLine& line_;
  const ScanStyle& style_;
  InkLayer &grid_, &letters_;
  Chance chance_;
};

}  // namespace

ChartForm FormOf(const PenLine& line, const ScanStyle& style) {
  ChartForm form;
  form.BandMm = style.BandMm > 0 ? style.BandMm : line.Paper.ChartHeightMm;
  const Step hours = HourSteps(1 / line.Paper.TimeScale), rain = RainSteps(1 / line.Paper.DepthScale);
  form.MinorHours = hours.Minor;
  form.MajorHours = hours.Major;
  form.MinorRain = rain.Minor;
  form.MajorRain = rain.Major;
  const double beyond = line.Hours > 48 ? 0 : 0.5 * hours.Major;
  form.FromHour = -beyond;
  form.ToHour = line.Hours + beyond;
  const double left = line.AlongMm({PenStep::Point, form.FromHour, form.BandMm / 2, 0}) - SideMm;
  const double right = form.ToHour / line.Paper.TimeScale + SideMm;
  form.Paper = {left, -FootMm, right - left, FootMm + form.BandMm + HeaderMm + TitleMm};
  return form;
}

void PrintForm(const ChartForm& form, const PenLine& line, const ScanStyle& style, std::uint64_t seed,
               InkLayer& grid, InkLayer& letters) {
  Printer(form, line, style, seed, grid, letters).Print();
}

}  // namespace hyetex
