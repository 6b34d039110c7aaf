#include "scan/line_fitter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <queue>

namespace hyetex {
namespace {

constexpr double Turn = 2 * std::numbers::pi;
// Pixels of the picture for each place that is looked at: most of a period, and not far along wide ones.
constexpr double LeastStep = 6, UsualStep = 16, MostAlong = 40, StepPeriods = 0.6;
constexpr double PartPixels = 60;   // from one part of the picture to the next, at most, and three places
constexpr int PartHalf = 8;         // places around its middle
constexpr double PartPlaces = 3.6;  // of its bell
constexpr double MostSlope = 0.15, MostStretch = 0.1;  // of lines, and of paper against the usual period
constexpr double UsualShare = 0.5;  // of these: a part with one line alone tells nothing of its own
constexpr double ClipAt = 2.5;      // times the usual: a pen is darker than any line
// A part of mere noise has a likeness to lines of about 0.15.
constexpr double Noise = 0.18, ClearPart = 0.35;
constexpr double LinedShare = 0.2;      // of the picture, at least, should have lines
constexpr int BendTurns = 12;           // of the robust fit
constexpr double UsualError = 0.06;     // of a period; phases that lie farther off count less
constexpr double FollowsWithin = 0.12;  // of a period: a phase that follows the fit
constexpr double WavesMm = 12;  // over which what the cubic leaves is smoothed; and a wide period at least
constexpr double AlongMm = 5,
                 FewestMm = 2.4;  // along a line and over lines: of what a phase is measured in the end
constexpr double FlatMm = 0.2, FlatShare = 0.95;  // nearly all of the sheet lies as near to the cubic
constexpr int WaveTurns = 6;
constexpr int TableSize = 1024;

using Complex = cv::Vec2f;
Complex Times(Complex a, Complex b) { return {a[0] * b[0] - a[1] * b[1], a[0] * b[1] + a[1] * b[0]}; }
Complex Turned(double turns) {
  return {static_cast<float>(std::cos(Turn * turns)), static_cast<float>(std::sin(Turn * turns))};
}

// What a part's phase counts.
double TrustOf(double weight) { return weight > Noise ? (weight - Noise) * (weight - Noise) : 0; }

// The plane through what lies around each place, as far as the bell of `reach` goes; 0 where nothing counts.
cv::Mat Smoothed(const cv::Mat& values, const cv::Mat& trust, cv::Point2d reach) {
  cv::Mat x(values.size(), CV_64F), y(values.size(), CV_64F), weight, value;
  for (int row = 0; row < x.rows; ++row)
    for (int column = 0; column < x.cols; ++column) {
      x.at<double>(row, column) = column / reach.x;
      y.at<double>(row, column) = row / reach.y;
    }
  trust.convertTo(weight, CV_64F);
  values.convertTo(value, CV_64F);
  const auto around = [&](const cv::Mat& what) {
    cv::Mat sum;
    cv::GaussianBlur(what, sum, {}, reach.x, reach.y, cv::BORDER_CONSTANT);
    return sum;
  };
  const cv::Mat wx = weight.mul(x), wy = weight.mul(y), wv = weight.mul(value);
  const cv::Mat w = around(weight), sx = around(wx), sy = around(wy), sv = around(wv), xx = around(wx.mul(x)),
                xy = around(wx.mul(y)), yy = around(wy.mul(y)), xv = around(wx.mul(value)),
                yv = around(wy.mul(value));
  cv::Mat plane(values.size(), CV_32F);
  for (std::size_t n = 0; n < plane.total(); ++n) {
    const auto of = [n](const cv::Mat& mat) { return mat.ptr<double>()[n]; };
    const double atX = of(x), atY = of(y), all = of(w) + 1e-5, toX = of(sx) - atX * of(w),
                 toY = of(sy) - atY * of(w);
    const double slack = 0.05 * all;
    const cv::Matx33d left(all, toX, toY, toX, of(xx) - 2 * atX * of(sx) + atX * atX * of(w) + slack,
                           of(xy) - atX * of(sy) - atY * of(sx) + atX * atY * of(w), toY,
                           of(xy) - atX * of(sy) - atY * of(sx) + atX * atY * of(w),
                           of(yy) - 2 * atY * of(sy) + atY * atY * of(w) + slack);
    const cv::Vec3d right(of(sv), of(xv) - atX * of(sv), of(yv) - atY * of(sv));
    plane.ptr<float>()[n] = static_cast<float>(left.solve(right, cv::DECOMP_LU)[0]);
  }
  return plane;
}

cv::Size PlacesOf(cv::Size picture, double period, bool across) {
  const double step = period <= UsualStep ? std::max(LeastStep, std::round(period))
                                          : std::max(UsualStep, std::round(StepPeriods * period));
  const double along = std::min(step, MostAlong);
  return {std::max(1, static_cast<int>(picture.width / (across ? step : along))),
          std::max(1, static_cast<int>(picture.height / (across ? along : step)))};
}

}  // namespace

struct LineFitter::Waves {
  cv::Mat Places;               // alike wherever lines lie as the steady count has them
  double StepX = 1, StepY = 1;  // pixels of the picture
};

// Where along a period the lines lie in each part of the picture, how they run, and how clearly.
struct LineFitter::Parts {
  int Rows = 0, Columns = 0;
  double StepX = 1, StepY = 1;  // pixels of the picture
  std::vector<double> Phase, Weight;
  std::vector<cv::Point2d> Slope;  // of the phase, for a pixel

  double X(std::size_t n) const {
    return (static_cast<double>(n % static_cast<std::size_t>(Columns)) + 0.5) * StepX;
  }
  double Y(std::size_t n) const {
    const auto row = n / static_cast<std::size_t>(Columns);
    return (static_cast<double>(row) + 0.5) * StepY;
  }
};

LineFitter::Waves LineFitter::TurnBack(const cv::Mat& ink, double period, bool across, const cv::Mat& lead,
                                       const cv::Mat& where) {
  static const auto table = [] {
    std::array<Complex, TableSize> values{};
    for (int i = 0; i < TableSize; ++i)
      values[static_cast<std::size_t>(i)] = Turned(-static_cast<double>(i) / TableSize);
    return values;
  }();
  const cv::Size places = PlacesOf(ink.size(), period, across);
  const int wide = static_cast<int>(2 * period) | 1;
  cv::Mat value, squares, usual;
  cv::blur(ink, value, across ? cv::Size(wide, 1) : cv::Size(1, wide));
  value = ink - value;
  if (!where.empty()) value.setTo(0, where == 0);
  // A faint part of the sheet counts as much as a dark one, and nothing more than a printed line does.
  cv::resize(value.mul(value), squares, places, 0, 0, cv::INTER_AREA);
  cv::GaussianBlur(squares, squares, {}, 1.5 * PartPlaces);
  std::vector<float> sorted(squares.begin<float>(), squares.end<float>());
  const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
  std::nth_element(sorted.begin(), middle, sorted.end());
  cv::sqrt(cv::max(squares, std::max(1e-6, 0.1 * *middle)), usual);
  cv::resize(usual, usual, ink.size(), 0, 0, cv::INTER_LINEAR);

  cv::Mat turned(ink.size(), CV_32FC2);
  for (int y = 0; y < ink.rows; ++y) {
    const auto *from = value.ptr<float>(y), *most = usual.ptr<float>(y);
    const auto* more = lead.empty() ? nullptr : lead.ptr<float>(y);
    auto* to = turned.ptr<Complex>(y);
    for (int x = 0; x < ink.cols; ++x) {
      const double number = ((across ? x : y) + 0.5) / period + (more == nullptr ? 0.0 : more[x]);
      const auto place = static_cast<std::size_t>((number - std::floor(number)) * TableSize) % TableSize;
      to[x] = std::min(from[x] / most[x], static_cast<float>(ClipAt)) * table[place];
    }
  }
  Waves waves;
  cv::resize(turned, waves.Places, places, 0, 0, cv::INTER_AREA);
  waves.StepX = static_cast<double>(ink.cols) / places.width;
  waves.StepY = static_cast<double>(ink.rows) / places.height;
  return waves;
}

LineFitter::Parts LineFitter::PartsOf(const Waves& waves) {
  Parts parts;
  const auto every = [](double step) { return std::clamp(static_cast<int>(PartPixels / step), 1, 3); };
  parts.Rows = std::max(2, waves.Places.rows / every(waves.StepY));
  parts.Columns = std::max(2, waves.Places.cols / every(waves.StepX));
  parts.StepX = waves.StepX * waves.Places.cols / parts.Columns;
  parts.StepY = waves.StepY * waves.Places.rows / parts.Rows;
  const auto count = static_cast<std::size_t>(parts.Rows) * static_cast<std::size_t>(parts.Columns);
  parts.Phase.resize(count);
  parts.Weight.resize(count);
  parts.Slope.resize(count);
  return parts;
}

// Each part as lines that run straight on, closer or wider or more aslant than usual: the clearest of them.
void LineFitter::LookAtParts(const Waves& waves, double period, bool across, Parts& parts) {
  constexpr int Size = 2 * PartHalf + 1;
  const auto bell = [](int i) { return std::exp(-0.5 * std::pow((i - PartHalf) / PartPlaces, 2)); };
  // The rows of one matrix and the columns of the other try the turns for a place up and across.
  const double mostX = (across ? MostStretch : MostSlope) * waves.StepX / period,
               mostY = (across ? MostSlope : MostStretch) * waves.StepY / period;
  constexpr double fine = 1.0 / 32;
  const int triesX = static_cast<int>(std::ceil(mostX / fine)) + 1,
            triesY = static_cast<int>(std::ceil(mostY / fine)) + 1;
  const auto tries = [&](int most, double usual) {
    cv::Mat matrix(2 * most + 1, Size, CV_32FC2);
    for (int k = 0; k < matrix.rows; ++k) {
      const double likely = std::exp(-0.5 * std::pow((k - most) * fine / usual, 2));
      for (int i = 0; i < Size; ++i)
        matrix.at<Complex>(k, i) =
            static_cast<float>(likely * bell(i)) * Turned(-(k - most) * fine * (i - PartHalf));
    }
    return matrix;
  };
  const cv::Mat up = tries(triesY, UsualShare * mostY), right = tries(triesX, UsualShare * mostX).t();
  double bells = 0;
  for (int i = 0; i < Size; ++i) bells += bell(i);

  cv::Mat padded, power, split[2];
  cv::copyMakeBorder(waves.Places, padded, PartHalf, PartHalf, PartHalf, PartHalf, cv::BORDER_CONSTANT, 0);
  cv::split(waves.Places, split);
  power = split[0].mul(split[0]) + split[1].mul(split[1]);
  cv::GaussianBlur(power, power, {Size, Size}, PartPlaces, PartPlaces, cv::BORDER_CONSTANT);
  cv::Mat half, spectrum;
  for (int row = 0; row < parts.Rows; ++row)
    for (int column = 0; column < parts.Columns; ++column) {
      const double x = (column + 0.5) * parts.StepX / waves.StepX - 0.5,
                   y = (row + 0.5) * parts.StepY / waves.StepY - 0.5;
      const int left = std::clamp(static_cast<int>(std::lround(x)), 0, waves.Places.cols - 1),
                top = std::clamp(static_cast<int>(std::lround(y)), 0, waves.Places.rows - 1);
      cv::gemm(up, padded(cv::Rect(left, top, Size, Size)), 1, {}, 0, half);
      cv::gemm(half, right, 1, {}, 0, spectrum);
      const auto at = [&](int k, int i) {
        if (k < 0 || i < 0 || k >= spectrum.rows || i >= spectrum.cols) return 0.0;
        const auto value = spectrum.at<Complex>(k, i);
        return std::hypot(static_cast<double>(value[0]), static_cast<double>(value[1]));
      };
      int bestK = triesY, bestI = triesX;
      for (int k = 0; k < spectrum.rows; ++k)
        for (int i = 0; i < spectrum.cols; ++i)
          if (at(k, i) > at(bestK, bestI)) bestK = k, bestI = i;
      const double best = at(bestK, bestI);
      const auto between = [&](double before, double behind) {
        const double bend = before - 2 * best + behind;
        return bend < 0 ? std::clamp(0.5 * (before - behind) / bend, -0.5, 0.5) : 0.0;
      };
      const double turnX = (bestI - triesX + between(at(bestK, bestI - 1), at(bestK, bestI + 1))) * fine,
                   turnY = (bestK - triesY + between(at(bestK - 1, bestI), at(bestK + 1, bestI))) * fine;
      const auto value = spectrum.at<Complex>(bestK, bestI);
      const cv::Point2d slope(turnX / waves.StepX, turnY / waves.StepY);
      const auto n = static_cast<std::size_t>(row) * static_cast<std::size_t>(parts.Columns) +
                     static_cast<std::size_t>(column);
      parts.Slope[n] = slope;
      parts.Phase[n] = std::atan2(value[1], value[0]) / Turn + (x - left) * turnX + (y - top) * turnY;
      const double all = bells * std::sqrt(std::max(1e-9F, power.at<float>(top, left)));
      parts.Weight[n] = best / (bells * all);
    }
}

// Whole periods are added from the clearest part outwards, each part from where its neighbour's lines run to.
void LineFitter::CountOn(Parts& parts) {
  std::vector<char> done(parts.Phase.size(), 0);
  struct Step {
    double Weight;
    std::size_t From, To;
    bool operator<(const Step& other) const { return Weight < other.Weight; }
  };
  std::priority_queue<Step> next;
  const auto first = static_cast<std::size_t>(std::max_element(parts.Weight.begin(), parts.Weight.end()) -
                                              parts.Weight.begin());
  next.push({1, first, first});
  const auto columns = static_cast<std::size_t>(parts.Columns), rows = static_cast<std::size_t>(parts.Rows);
  while (!next.empty()) {
    const std::size_t from = next.top().From, n = next.top().To;
    next.pop();
    if (done[n] != 0) continue;
    done[n] = 1;
    if (from != n) {
      // The clearer of the two knows better how the lines run.
      const double mine = parts.Weight[n] * parts.Weight[n], its = parts.Weight[from] * parts.Weight[from];
      const cv::Point2d slope =
          (mine * parts.Slope[n] + its * parts.Slope[from]) / std::max(1e-12, mine + its);
      const double expected =
          parts.Phase[from] + slope.x * (parts.X(n) - parts.X(from)) + slope.y * (parts.Y(n) - parts.Y(from));
      parts.Phase[n] += std::round(expected - parts.Phase[n]);
      if (parts.Weight[n] < Noise) parts.Phase[n] = expected, parts.Slope[n] = 0.9 * parts.Slope[from];
    }
    const std::size_t x = n % columns, y = n / columns;
    const auto visit = [&](std::size_t to) {
      if (done[to] == 0) next.push({std::min(parts.Weight[n], parts.Weight[to]), n, to});
    };
    if (x > 0) visit(n - 1);
    if (x + 1 < columns) visit(n + 1);
    if (y > 0) visit(n - columns);
    if (y + 1 < rows) visit(n + columns);
  }
}

// The parts once more, with the picture turned back by the field: what is seen beyond the steady count is
// then nearly alike far along the lines, and so measured more finely.
void LineFitter::LookAgain(const Waves& waves, const LineField& field, Parts& parts) const {
  cv::Mat turned(waves.Places.size(), CV_32FC2);
  for (int y = 0; y < turned.rows; ++y)
    for (int x = 0; x < turned.cols; ++x) {
      const double atX = (x + 0.5) * waves.StepX, atY = (y + 0.5) * waves.StepY;
      const double more = field.At(atX, atY) - (field.across_ ? atX : atY) / field.period_;
      turned.at<Complex>(y, x) = Times(waves.Places.at<Complex>(y, x), Turned(-more));
    }
  cv::Mat power, split[2];
  cv::split(turned, split);
  power = split[0].mul(split[0]) + split[1].mul(split[1]);
  const double counted =
                   std::max(FewestMm * pixelsPerMm_,
                            std::min(2 * field.period_, std::max(field.period_, WavesMm * pixelsPerMm_ / 2))),
               along = AlongMm * pixelsPerMm_;
  const double right = (field.across_ ? counted : along) / waves.StepX,
               up = (field.across_ ? along : counted) / waves.StepY;
  cv::GaussianBlur(turned, turned, {}, right, up);
  cv::GaussianBlur(power, power, {}, right, up);
  for (std::size_t n = 0; n < parts.Phase.size(); ++n) {
    const int x = std::clamp(static_cast<int>(parts.X(n) / waves.StepX), 0, turned.cols - 1),
              y = std::clamp(static_cast<int>(parts.Y(n) / waves.StepY), 0, turned.rows - 1);
    const auto value = turned.at<Complex>(y, x);
    const double steady = (field.across_ ? parts.X(n) : parts.Y(n)) / field.period_;
    parts.Phase[n] = std::atan2(value[1], value[0]) / Turn + field.At(parts.X(n), parts.Y(n)) - steady;
    parts.Weight[n] = std::hypot(value[0], value[1]) / std::sqrt(std::max(1e-9F, power.at<float>(y, x)));
  }
}

void LineFitter::FitBend(const Parts& parts, LineField& field) {
  constexpr int Terms = LineField::Terms;
  field.waves_ = cv::Mat();
  std::vector<double> trust(parts.Phase.size(), 1);
  // Loosely first, since a swollen sheet is no cubic.
  for (int turn = 0; turn < BendTurns; ++turn) {
    cv::Matx<double, Terms, Terms> left = cv::Matx<double, Terms, Terms>::zeros();
    cv::Matx<double, Terms, 1> right = cv::Matx<double, Terms, 1>::zeros();
    for (std::size_t n = 0; n < trust.size(); ++n) {
      const double weight = TrustOf(parts.Weight[n]) * trust[n];
      const auto basis = LineField::Basis((parts.X(n) - field.middleX_) / field.middleX_,
                                          (parts.Y(n) - field.middleY_) / field.middleY_);
      for (int i = 0; i < Terms; ++i) {
        const double part = weight * basis[static_cast<std::size_t>(i)];
        right(i, 0) += part * parts.Phase[n];
        for (int j = 0; j <= i; ++j) left(i, j) += part * basis[static_cast<std::size_t>(j)];
      }
    }
    for (int i = 0; i < Terms; ++i) {
      left(i, i) += 1e-9 * left(0, 0) + 1e-12;
      for (int j = i + 1; j < Terms; ++j) left(i, j) = left(j, i);
    }
    const cv::Matx<double, Terms, 1> bend = left.solve(right, cv::DECOMP_CHOLESKY);
    for (int i = 0; i < Terms; ++i) field.bend_[static_cast<std::size_t>(i)] = bend(i, 0);
    const double usual = std::max(UsualError, 0.5 * std::pow(0.75, turn));
    for (std::size_t n = 0; n < trust.size(); ++n) {
      const double far = ErrorAt(parts, field, n) / usual;
      trust[n] = 1 / (1 + far * far);
    }
  }
}

// What a phase is more than the field says.
double LineFitter::ErrorAt(const Parts& parts, const LineField& field, std::size_t n) {
  const double x = parts.X(n), y = parts.Y(n);
  return parts.Phase[n] + (field.across_ ? x : y) / field.period_ - field.At(x, y);
}

// What the cubic leaves, smoothed: parts that were counted on from a wrong neighbour come back to it.
LineFitter::Fit LineFitter::FollowWaves(const Parts& parts, LineField field) const {
  field.waves_ = cv::Mat();
  const cv::Size size(parts.Columns, parts.Rows);
  cv::Mat error(size, CV_32F), weight(size, CV_32F);
  for (std::size_t n = 0; n < parts.Phase.size(); ++n) {
    error.ptr<float>()[n] = static_cast<float>(ErrorAt(parts, field, n));
    weight.ptr<float>()[n] = static_cast<float>(TrustOf(parts.Weight[n]));
  }
  const double wide = std::max(WavesMm * pixelsPerMm_, 1.2 * field.period_);
  const cv::Point2d reach(wide / parts.StepX, wide / parts.StepY);
  // What near parts say counts the periods; then all that lie farther off count as they agree.
  cv::Mat trust = weight.clone(), waves = Smoothed(error, trust, 0.35 * reach);
  const auto agree = [&] {
    for (std::size_t n = 0; n < parts.Phase.size(); ++n) {
      float& off = error.ptr<float>()[n];
      off -= std::round(off - waves.ptr<float>()[n]);
      const float far = (off - waves.ptr<float>()[n]) / static_cast<float>(UsualError);
      trust.ptr<float>()[n] = weight.ptr<float>()[n] / (1 + far * far);
    }
  };
  agree();
  waves = cv::Mat::zeros(size, CV_32F);
  for (int turn = 0; turn < WaveTurns; ++turn) {
    waves += Smoothed(error - waves, trust, reach);
    if (turn > 0) agree();
  }
  // A sheet that the cubic fits has no waves, and its pen's upright limbs should not make any.
  std::size_t flat = 0, seen = 0;
  for (std::size_t n = 0; n < parts.Phase.size(); ++n) {
    if (parts.Weight[n] < ClearPart) continue;
    ++seen;
    if (std::abs(waves.ptr<float>()[n]) * field.period_ < FlatMm * pixelsPerMm_) ++flat;
  }
  if (static_cast<double>(flat) >= FlatShare * static_cast<double>(seen)) waves.setTo(0);
  Fit fit;
  double squares = 0, counted = 0, clear = 0, follows = 0;
  for (std::size_t n = 0; n < parts.Phase.size(); ++n) {
    const double off = error.ptr<float>()[n] - waves.ptr<float>()[n];
    squares += trust.ptr<float>()[n] * off * off;
    counted += trust.ptr<float>()[n];
    if (parts.Weight[n] < ClearPart) continue;
    ++clear;
    if (std::abs(off) < FollowsWithin) ++follows;
  }
  fit.ResidualPx = std::sqrt(squares / std::max(1e-12, counted)) * field.period_;
  fit.Clear = follows / std::max({1.0, clear, LinedShare * static_cast<double>(parts.Phase.size())});
  field.waves_ = waves;
  fit.Field = field;
  return fit;
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

LineFitter::Fit LineFitter::FitLines(double period, bool across, const cv::Mat& lead,
                                     const cv::Mat& where) const {
  const Waves waves = TurnBack(ink_, period, across, lead, where);
  Parts parts = PartsOf(waves);
  LookAtParts(waves, period, across, parts);
  CountOn(parts);
  LineField field;
  field.across_ = across;
  field.period_ = period;
  field.middleX_ = ink_.cols / 2.0;
  field.middleY_ = ink_.rows / 2.0;
  FitBend(parts, field);
  Fit fit = FollowWaves(parts, field);
  for (int turn = 0; turn < 2; ++turn) {
    LookAgain(waves, fit.Field, parts);
    FitBend(parts, fit.Field);
    fit = FollowWaves(parts, fit.Field);
  }
  return fit;
}

LineFitter::Fit LineFitter::FitFiner(const LineField& field, int times, const cv::Mat& lead,
                                     const cv::Mat& where) const {
  Fit fit;
  fit.Field = field;
  cv::Mat leads = lead.clone();  // in lines, of which there are more now
  // In small steps: each is surer of whole periods than what it comes from.
  for (int left = times, factor = 2; left > 1; ++factor)
    for (; left % factor == 0; left /= factor) {
      fit.Field.Divide(factor);
      if (!leads.empty()) leads *= factor;
      const Waves waves = TurnBack(ink_, fit.Field.period_, field.across_, leads, where);
      Parts parts = PartsOf(waves);
      for (int turn = 0; turn < 2; ++turn) {
        LookAgain(waves, fit.Field, parts);
        fit = FollowWaves(parts, fit.Field);
      }
    }
  return fit;
}

}  // namespace hyetex
