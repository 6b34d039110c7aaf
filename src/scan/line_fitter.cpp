#include "scan/line_fitter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <queue>

namespace hyetex {
namespace {

constexpr int Coarse = 8;               // pixels of the picture for each phase that is looked at
constexpr int Turns = 12;               // of the robust fit
constexpr double UsualError = 0.06;     // of a period; phases that lie farther off count less
constexpr double FollowsWithin = 0.12;  // of a period: a phase that follows the fit
constexpr double WavesPeriods = 4;  // over which what the cubic leaves is smoothed; more for the close lines
constexpr int WaveTurns = 4;
constexpr double CubicFits = 0.75;  // of the picture: the rest is noise, not waves
constexpr int TableSize = 1024;

}  // namespace

// Where along a period the lines lie in each part of the picture, and how clearly.
struct LineFitter::Phases {
  int Rows = 0, Columns = 0;
  double StepX = 1, StepY = 1;  // pixels of the picture
  std::vector<double> Phase, Weight;

  double X(int n) const { return (n % Columns + 0.5) * StepX; }
  double Y(int n) const {
    const int row = n / Columns;
    return (row + 0.5) * StepY;
  }
};

LineFitter::Phases LineFitter::FindPhases(const cv::Mat& ink, double period, bool across,
                                          const cv::Mat& lead) {
  static const auto table = [] {
    std::array<std::array<float, 2>, TableSize> values{};
    for (int i = 0; i < TableSize; ++i) {
      const double angle = 2 * std::numbers::pi * i / TableSize;
      values[static_cast<std::size_t>(i)] = {static_cast<float>(std::cos(angle)),
                                             static_cast<float>(-std::sin(angle))};
    }
    return values;
  }();
  cv::Mat slow;
  const int wide = static_cast<int>(2 * period) | 1;
  cv::blur(ink, slow, across ? cv::Size(wide, 1) : cv::Size(1, wide));
  cv::Mat turned(ink.size(), CV_32FC2);
  for (int y = 0; y < ink.rows; ++y) {
    const auto* from = ink.ptr<float>(y);
    const auto* mean = slow.ptr<float>(y);
    const auto* more = lead.empty() ? nullptr : lead.ptr<float>(y);
    auto* to = turned.ptr<cv::Vec2f>(y);
    for (int x = 0; x < ink.cols; ++x) {
      const double number = ((across ? x : y) + 0.5) / period + (more == nullptr ? 0.0 : more[x]);
      const auto place = static_cast<std::size_t>((number - std::floor(number)) * TableSize) % TableSize;
      const float value = from[x] - mean[x];
      to[x] = {value * table[place][0], value * table[place][1]};
    }
  }
  cv::Mat small;
  cv::resize(turned, small, {std::max(1, ink.cols / Coarse), std::max(1, ink.rows / Coarse)}, 0, 0,
             cv::INTER_AREA);
  Phases phases{small.rows,
                small.cols,
                static_cast<double>(ink.cols) / small.cols,
                static_cast<double>(ink.rows) / small.rows,
                {},
                {}};
  // Lines are long: far along them, and over a few of them.
  const double along = across ? 2 * period : 6 * period, up = across ? 1.2 * period : 3 * period;
  cv::GaussianBlur(small, small, {}, along / phases.StepX, up / phases.StepY);
  for (int y = 0; y < small.rows; ++y)
    for (int x = 0; x < small.cols; ++x) {
      const auto value = small.at<cv::Vec2f>(y, x);
      phases.Phase.push_back(std::atan2(value[1], value[0]) / (2 * std::numbers::pi));
      phases.Weight.push_back(std::hypot(value[0], value[1]));
    }
  return phases;
}

// Whole periods are added from the clearest place outwards, so that neighbours agree.
void LineFitter::Unwrap(Phases& phases) {
  const auto count = phases.Phase.size();
  std::vector<char> done(count, 0), known(count, 0);
  std::priority_queue<std::pair<double, int>> next;
  const auto first = std::max_element(phases.Weight.begin(), phases.Weight.end()) - phases.Weight.begin();
  next.emplace(0, static_cast<int>(first));
  known[static_cast<std::size_t>(first)] = 1;
  const auto visit = [&](int from, int to) {
    const auto n = static_cast<std::size_t>(to);
    if (done[n] != 0) return;
    const double weight = std::min(phases.Weight[static_cast<std::size_t>(from)], phases.Weight[n]);
    phases.Phase[n] += std::round(phases.Phase[static_cast<std::size_t>(from)] - phases.Phase[n]);
    known[n] = 1;
    next.emplace(weight, to);
  };
  while (!next.empty()) {
    const int n = next.top().second;
    next.pop();
    if (done[static_cast<std::size_t>(n)] != 0) continue;
    done[static_cast<std::size_t>(n)] = 1;
    const int x = n % phases.Columns, y = n / phases.Columns;
    if (x > 0) visit(n, n - 1);
    if (x + 1 < phases.Columns) visit(n, n + 1);
    if (y > 0) visit(n, n - phases.Columns);
    if (y + 1 < phases.Rows) visit(n, n + phases.Columns);
  }
}

// What a phase is more than the field says.
double LineFitter::ErrorAt(const Phases& phases, const LineField& field, std::size_t n) {
  const double x = phases.X(static_cast<int>(n)), y = phases.Y(static_cast<int>(n));
  return phases.Phase[n] + (field.across_ ? x : y) / field.period_ - field.At(x, y);
}

// What the cubic leaves, smoothed: phases that were counted on from a wrong neighbour come back to it.
void LineFitter::FollowWaves(const Phases& phases, double usual, LineField& field, Fit& fit) const {
  if (phases.Rows < 2 || phases.Columns < 2) return;
  cv::Mat error(phases.Rows, phases.Columns, CV_32F), weight(error.size(), CV_32F);
  for (std::size_t n = 0; n < phases.Phase.size(); ++n) {
    error.ptr<float>()[n] = static_cast<float>(ErrorAt(phases, field, n));
    weight.ptr<float>()[n] = static_cast<float>(std::min(phases.Weight[n] / usual, 2.0));
  }
  // A sheet that the cubic fits has no waves, and its pen's upright limbs should not make any.
  double clear = 0, fits = 0, squares = 0, sure = 0;
  for (int n = 0; n < static_cast<int>(error.total()); ++n) {
    const double off = error.ptr<float>()[n] - std::round(error.ptr<float>()[n]),
                 part = weight.ptr<float>()[n];
    const double far = off / UsualError, trusted = part / (1 + far * far);
    clear += part;
    if (std::abs(off) < FollowsWithin) fits += part;
    squares += trusted * off * off;
    sure += trusted;
  }
  fit.ResidualPx = std::sqrt(squares / std::max(1e-12, sure)) * field.period_;
  fit.Clear = fits / std::max(1e-12, clear);
  if (fit.Clear > CubicFits) return;

  const double across = WavesPeriods * field.period_ * (field.across_ ? 1 : 4);
  cv::Mat trust = weight.clone(), waves, weights;
  for (int turn = 0; turn < WaveTurns; ++turn) {
    cv::GaussianBlur(error.mul(trust), waves, {}, across / phases.StepX, across / phases.StepY);
    cv::GaussianBlur(trust, weights, {}, across / phases.StepX, across / phases.StepY);
    waves = waves / (weights + 1e-3);
    for (int n = 0; n < static_cast<int>(error.total()); ++n) {
      float& off = error.ptr<float>()[n];
      off -= std::round(off - waves.ptr<float>()[n]);
      const float far = (off - waves.ptr<float>()[n]) / static_cast<float>(UsualError);
      trust.ptr<float>()[n] = weight.ptr<float>()[n] / (1 + far * far);
    }
  }
  double sum = 0, all = 0, follows = 0, counted = 0;
  for (int n = 0; n < static_cast<int>(error.total()); ++n) {
    const double off = error.ptr<float>()[n] - waves.ptr<float>()[n];
    sum += trust.ptr<float>()[n] * off * off;
    counted += trust.ptr<float>()[n];
    all += weight.ptr<float>()[n];
    if (std::abs(off) < FollowsWithin) follows += weight.ptr<float>()[n];
  }
  fit.ResidualPx = std::sqrt(sum / std::max(1e-12, counted)) * field.period_;
  fit.Clear = follows / std::max(1e-12, all);
  field.waves_ = waves;
}

double LineField::At(double x, double y) const {
  const auto basis = Basis((x - middleX_) / middleX_, (y - middleY_) / middleY_);
  double number = (across_ ? x : y) / period_;
  for (std::size_t i = 0; i < Terms; ++i) number += bend_[i] * basis[i];
  if (waves_.empty()) return number;
  const double column = std::clamp(x / (2 * middleX_) * waves_.cols - 0.5, 0.0, waves_.cols - 1.0),
               row = std::clamp(y / (2 * middleY_) * waves_.rows - 0.5, 0.0, waves_.rows - 1.0);
  const int left = std::min(static_cast<int>(column), waves_.cols - 2),
            top = std::min(static_cast<int>(row), waves_.rows - 2);
  const double right = column - left, down = row - top;
  const auto *above = waves_.ptr<float>(top) + left, *below = waves_.ptr<float>(top + 1) + left;
  return number + (1 - down) * ((1 - right) * above[0] + right * above[1]) +
         down * ((1 - right) * below[0] + right * below[1]);
}

std::array<double, LineField::Terms> LineField::Basis(double x, double y) {
  return {1, x, y, x * x, x * y, y * y, x * x * x, x * x * y, x * y * y, y * y * y};
}

LineFitter::Fit LineFitter::FitLines(double period, bool across, const cv::Mat& lead) const {
  Phases phases = FindPhases(ink_, period, across, lead);
  Unwrap(phases);
  Fit fit;
  LineField& field = fit.Field;
  field.across_ = across;
  field.period_ = period;
  field.middleX_ = ink_.cols / 2.0;
  field.middleY_ = ink_.rows / 2.0;
  std::vector<double> sorted = phases.Weight;
  std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2),
                   sorted.end());
  const double usual = std::max(1e-12, sorted[sorted.size() / 2]);

  constexpr int Terms = LineField::Terms;
  std::vector<double> trust(phases.Phase.size(), 1);
  for (int turn = 0; turn < Turns; ++turn) {
    cv::Matx<double, Terms, Terms> left = cv::Matx<double, Terms, Terms>::zeros();
    cv::Matx<double, Terms, 1> right = cv::Matx<double, Terms, 1>::zeros();
    for (std::size_t n = 0; n < trust.size(); ++n) {
      const double weight = std::min(phases.Weight[n] / usual, 2.0) * trust[n];
      const int place = static_cast<int>(n);
      const auto basis = LineField::Basis((phases.X(place) - field.middleX_) / field.middleX_,
                                          (phases.Y(place) - field.middleY_) / field.middleY_);
      for (int i = 0; i < Terms; ++i) {
        const double part = weight * basis[static_cast<std::size_t>(i)];
        right(i, 0) += part * phases.Phase[n];
        for (int j = 0; j <= i; ++j) left(i, j) += part * basis[static_cast<std::size_t>(j)];
      }
    }
    for (int i = 0; i < Terms; ++i) {
      left(i, i) += 1e-9 * left(0, 0);
      for (int j = i + 1; j < Terms; ++j) left(i, j) = left(j, i);
    }
    const cv::Matx<double, Terms, 1> bend = left.solve(right, cv::DECOMP_CHOLESKY);
    for (int i = 0; i < Terms; ++i) field.bend_[static_cast<std::size_t>(i)] = bend(i, 0);

    for (std::size_t n = 0; n < trust.size(); ++n) {
      const double error = ErrorAt(phases, field, n), far = error / UsualError;
      trust[n] = 1 / (1 + far * far);
    }
  }
  FollowWaves(phases, usual, field, fit);
  return fit;
}

}  // namespace hyetex
