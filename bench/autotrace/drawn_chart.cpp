#include "drawn_chart.h"

#include <algorithm>
#include <cmath>

#include "scans/chance.h"
#include "tracing/rain.h"

namespace hyetex {
namespace {

constexpr double ZeroMm = 3.2, FullMm = 80, BeyondFullMm = 2;
constexpr double NearHours = 0.25;   // of a true emptying: one farther off is another
constexpr double TimeHours = 0.025;  // by which a moment may be off
constexpr double WrongShare = 0.02;

// Rain since the start, and the moments at which it stands still or not.
double RainAt(const std::vector<RainPoint>& rain, double hour) {
  const auto behind = std::lower_bound(rain.begin(), rain.end(), hour,
                                       [](const RainPoint& point, double at) { return point.Hours < at; });
  if (behind == rain.begin()) return rain.empty() ? 0 : rain.front().Rain;
  if (behind == rain.end()) return rain.back().Rain;
  const RainPoint& before = *(behind - 1);
  const double part =
      behind->Hours > before.Hours ? (hour - before.Hours) / (behind->Hours - before.Hours) : 1;
  return before.Rain + part * (behind->Rain - before.Rain);
}

}  // namespace

namespace {

// Rain of so many hours, minute by minute.
std::vector<RainPoint> RandomStorms(std::uint64_t seed, double hours, int most) {
  Chance chance(seed, "storms");
  std::vector<double> rate(static_cast<std::size_t>(hours * 60), 0);  // mm an hour, each minute
  const int storms = chance.Whole(1, most);
  for (int i = 0; i < storms; ++i) {
    const double begin = chance.Uniform(0.5, hours - 2),
                 length = std::exp(chance.Uniform(std::log(0.15), std::log(5)));
    const double sum = std::exp(chance.Uniform(std::log(0.8), std::log(24)));
    const double peak = chance.Uniform(0.1, 0.7), sharp = chance.Uniform(1, 3);
    std::vector<double> part(rate.size(), 0);
    double all = 0;
    for (std::size_t minute = 0; minute < rate.size(); ++minute) {
      const double along = (static_cast<double>(minute) / 60 - begin) / length;
      if (along <= 0 || along >= 1) continue;
      const double near = along < peak ? along / peak : (1 - along) / (1 - peak);
      part[minute] = std::pow(near, sharp) * chance.Uniform(0.6, 1.4);
      all += part[minute];
    }
    if (all > 0)
      for (std::size_t minute = 0; minute < rate.size(); ++minute)
        rate[minute] += sum * 60 * part[minute] / all;
  }
  std::vector<RainPoint> rain{{0, 0}};
  double sum = 0;
  for (std::size_t minute = 0; minute < rate.size(); ++minute) {
    sum += rate[minute] / 60;
    rain.push_back({static_cast<double>(minute + 1) / 60, sum});
  }
  return rain;
}

}  // namespace

PenLine RandomChart(std::uint64_t seed, DrawnPaper paper) {
  constexpr double Day = 24, Week = 168;
  RainChart chart;
  chart.Paper.Name = "Daily siphon";
  chart.Paper.TimeScale = 1 / 16.1F;
  chart.Paper.DepthScale = 0.125F;
  chart.Paper.ChartHeightMm = static_cast<float>(ZeroMm + FullMm + BeyondFullMm);
  chart.FullMm = FullMm;
  bool week = false;
  if (paper == DrawnPaper::Arc) {
    week = Chance(seed, "paper").Falls(0.5);
    chart.Paper.ChartMethod = static_cast<std::int16_t>(ChartMethod::NonLinear);
    chart.Paper.Name = week ? "Weekly arc" : "Daily arc";
    chart.Paper.TimeScale = week ? 0.5F : 1 / 12.0F;
    chart.Paper.DepthScale = 0.25F;
    chart.Paper.MiddleToBottomMm = 12;
    chart.Paper.ChartHeightMm = 100;
    chart.FullMm = 100;
  } else if (paper == DrawnPaper::Tipping) {
    chart.Paper.ChartMethod = static_cast<std::int16_t>(ChartMethod::TippingBucket);
    chart.Paper.Name = "Daily tipping bucket";
    chart.TipMm = DrawnTipMm;
  }
  auto line = DrawRain(RandomStorms(seed, week ? Week : Day, week ? 9 : 4), chart);
  return line ? *std::move(line) : PenLine{};
}

ScanStyle PlainStyle(const PenLine& line) {
  ScanStyle style;
  style.FirstHour = 7;
  const bool arc = line.Paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear);
  style.ZeroMm = arc ? 0 : ZeroMm;
  style.BandMm = line.Paper.ChartHeightMm;
  return style;
}

TraceWish WishOf(const PenLine& line, const ScanStyle& style) {
  TraceWish wish;
  wish.Paper = line.Paper;
  wish.StartHour = style.FirstHour;
  wish.Hours = line.Hours;
  return wish;
}

double TraceErrors::DepthError() const { return std::abs(Mm - TrueMm) / std::max(1.0, TrueMm); }

TraceErrors Compare(const ScanTrace& trace, const PenLine& line) {
  TraceErrors errors;
  const bool arc = line.Paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear);
  std::vector<RainPoint> truth, traced;
  std::vector<double> falls;
  for (const PenPoint& point : line.Points) {
    truth.push_back({point.Hours, point.Rain});
    const bool setBack = point.Step == PenStep::Segment && point.HeightMm == 0;
    if (point.Step == PenStep::Drop || setBack) falls.push_back(point.Hours);
  }
  double sum = 0;
  for (std::size_t i = 0; i < trace.Points.size(); ++i) {
    const ScanPoint& point = trace.Points[i];
    if (i > 0 && point.How == ScanPoint::Step::Along) {
      const double rise = point.HeightMm - trace.Points[i - 1].HeightMm;
      sum += (arc ? std::abs(rise) : std::max(0.0, rise)) * line.Paper.DepthScale;
    }
    traced.push_back({point.AlongMm * line.Paper.TimeScale, sum});
  }
  errors.TrueMm = truth.empty() ? 0 : truth.back().Rain;
  errors.Mm = trace.RainMm;

  std::vector<double> left = trace.EmptyingHours;
  errors.Emptyings = static_cast<int>(falls.size());
  for (const double fall : falls) {
    const auto nearest = std::min_element(left.begin(), left.end(), [&](double a, double b) {
      return std::abs(a - fall) < std::abs(b - fall);
    });
    if (nearest == left.end() || std::abs(*nearest - fall) > NearHours) {
      ++errors.Missed;
      continue;
    }
    errors.WorstEmptyingHours = std::max(errors.WorstEmptyingHours, std::abs(*nearest - fall));
    left.erase(nearest);
  }
  errors.Invented = static_cast<int>(left.size());
  if (trace.Verdict == TraceVerdict::NotTraced) return errors;

  const double allowed = std::max(0.2, WrongShare * errors.TrueMm);
  for (int hour = 0; hour < line.Hours; ++hour) {
    ++errors.Hours;
    const double mm = RainAt(traced, hour + 1) - RainAt(traced, hour);
    const double least = RainAt(truth, hour + 1 - TimeHours) - RainAt(truth, hour + TimeHours);
    const double most = RainAt(truth, hour + 1 + TimeHours) - RainAt(truth, hour - TimeHours);
    if (mm > least - allowed && mm < most + allowed) continue;
    ++errors.Wrong;
    const bool told = std::any_of(trace.Doubts.begin(), trace.Doubts.end(), [&](const TraceDoubt& doubt) {
      return doubt.What != TraceDoubt::Kind::Chart && doubt.FromHour < hour + 1.1 &&
             doubt.ToHour > hour - 0.1;
    });
    if (!told) ++errors.Silent;
  }
  return errors;
}

}  // namespace hyetex
