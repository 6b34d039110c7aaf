#include "scan/grid_scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace hyetex {
namespace {

// Lines are looked for in a copy no wider and no higher than this: fine enough for any printed grid.
constexpr int MostPixels = 4096;
// Printers' grids: minutes from line to line, and mm of rain.
constexpr std::array MinuteSteps{5.0, 10.0, 15.0, 20.0, 30.0, 60.0, 120.0};
constexpr std::array DepthSteps{0.1, 0.2, 0.25, 0.5, 1.0, 2.0};
constexpr double LeastPeriod = 3.5;    // pixels from line to line, below which no lines are told apart
constexpr double LeastScore = 5;       // of a comb, over what the spectrum has elsewhere
constexpr double LeastShare = 0.55;    // of the image that its paper fills: half a scale fits a grid as well
constexpr double MostStretch = 0.03;   // by which paper shrinks in one direction and not in the other
constexpr double SurelyBetter = 1.15;  // the best scale against the next one that is another
constexpr double NearlyAsGood = 0.75;  // finer lines of the same scale are taken from here on
constexpr int Strips = 36;             // of the shorter side: in wider ones the lines of a tilted scan blur

// How much of the image repeats itself with each frequency, in one direction.
class Spectrum {
 public:
  // `ink` is one channel of floats; lines lie across its rows' direction, so profiles run along the columns'.
  Spectrum(const cv::Mat& ink, int strip) {
    size_ = cv::getOptimalDFTSize(2 * ink.cols);
    amplitude_.assign(static_cast<std::size_t>(size_ / 2), 0.0);
    cv::Mat window;
    cv::createHanningWindow(window, {ink.cols, 3}, CV_32F);
    window = window.row(1) * (1.0 / std::max(1e-6F, window.at<float>(1, ink.cols / 2)));
    for (int top = 0; top + strip <= ink.rows; top += std::max(1, strip / 2)) {
      cv::Mat profile, slow, transformed;
      cv::reduce(ink.rowRange(top, top + strip), profile, 0, cv::REDUCE_AVG, CV_32F);
      cv::GaussianBlur(profile, slow, {0, 1}, SlowPixels, 0.1);
      cv::Mat padded = cv::Mat::zeros(1, size_, CV_32F);
      cv::Mat(cv::Mat(profile - slow).mul(window)).copyTo(padded.colRange(0, ink.cols));
      cv::dft(padded, transformed, cv::DFT_COMPLEX_OUTPUT);
      for (std::size_t i = 0; i < amplitude_.size(); ++i) {
        const auto value = transformed.at<cv::Vec2f>(0, static_cast<int>(i));
        amplitude_[i] += std::hypot(value[0], value[1]);
      }
    }
    std::vector<double> sorted = amplitude_;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    noise_ = std::max(*middle, 1e-9);
  }

  // How far a line every `period` pixels stands out: the first harmonics against what lies halfway between
  // them, so that neither twice nor half the period does as well.
  double Comb(double period) const {
    double sum = 0;
    int used = 0;
    for (int k = 1; k <= 8 && (k + 0.5) / period < 0.48; ++k, ++used)
      sum += At(k / period) - At((k - 0.5) / period);
    return used == 0 ? 0 : sum / noise_ / std::sqrt(used);
  }

 private:
  static constexpr double SlowPixels = 15;

  double At(double frequency) const {
    const auto middle = static_cast<std::ptrdiff_t>(std::lround(frequency * size_));
    double most = 0;
    for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(1, middle - 1); i <= middle + 1; ++i)
      if (i < std::ssize(amplitude_)) most = std::max(most, amplitude_[static_cast<std::size_t>(i)]);
    return most;
  }

  int size_ = 0;
  std::vector<double> amplitude_;
  double noise_ = 1;
};

struct Fit {
  double Score = 0, Scale = 0;
};

// The best comb for lines `mm` apart, near a scale.
Fit BestNear(const Spectrum& spectrum, double mm, double scale) {
  Fit best;
  constexpr double step = 0.0015;
  constexpr int steps = static_cast<int>(MostStretch / step);
  for (int i = 0; i <= steps; ++i) {
    const double part = 1 - MostStretch / 2 + i * step;
    if (const double score = spectrum.Comb(mm * scale * part); score > best.Score)
      best = {score, scale * part};
  }
  return best;
}

cv::Mat InkOf(const ScanImage& image, double step) {
  const int width = static_cast<int>(image.Width() / step), height = static_cast<int>(image.Height() / step);
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  image.Render({.X = 0, .Y = 0, .RightX = step, .RightY = 0, .DownX = 0, .DownY = step}, {}, 0xffffffff,
               pixels, width, height);
  cv::Mat ink(height, width, CV_32F);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const std::uint32_t pixel =
          pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
      // A coloured line is dark in the light that it takes away.
      const std::uint32_t darkest = std::min({pixel >> 16 & 255, pixel >> 8 & 255, pixel & 255});
      ink.at<float>(y, x) = 1 - static_cast<float>(darkest) / 255;
    }
  return ink;
}

}  // namespace

std::vector<double> PrintedSteps(const ChartTypeRecord& paper, bool hours) {
  std::vector<double> steps;
  if (hours)
    for (const double minutes : MinuteSteps) steps.push_back(minutes / 60 / paper.TimeScale);
  else
    for (const double depth : DepthSteps) steps.push_back(depth / paper.DepthScale);
  return steps;
}

std::optional<GridScale> ScaleByGrid(const ScanImage& image, const ChartTypeRecord& paper, double hours) {
  const int longest = std::max(image.Width(), image.Height());
  if (std::min(image.Width(), image.Height()) < 64 || !(paper.TimeScale > 0) || !(paper.DepthScale > 0) ||
      !(hours > 0))
    return std::nullopt;
  const double step = std::max(1.0, static_cast<double>(longest) / MostPixels);
  const cv::Mat ink = InkOf(image, step);
  // On an arc chart the hours' lines lean, so they are looked for in narrow strips.
  const bool arc = paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear);
  const int shortest = std::min(ink.cols, ink.rows);
  const int wide = std::max(4, shortest / Strips), narrow = arc ? std::max(4, wide / 2) : wide;

  struct Candidate {
    double Score;
    GridScale Scale;
  };
  std::vector<Candidate> found;
  const cv::Mat turned = ink.t();
  for (const bool upright : {true, false}) {
    const Spectrum across(upright ? ink : turned, narrow), up(upright ? turned : ink, wide);
    const int width = upright ? ink.cols : ink.rows, height = upright ? ink.rows : ink.cols;
    // The paper fills the image's larger part, and no more than the whole of it.
    const double paperMm = hours / paper.TimeScale;
    const double most = std::min(1.03 * width / paperMm, 1.5 * height / std::max(1.0F, paper.ChartHeightMm));
    const double least = LeastShare * most;
    constexpr double finer = 1.002;
    const int scales = static_cast<int>(std::log(most / least) / std::log(finer)) + 1;
    for (const double minutes : MinuteSteps)
      for (const double depth : DepthSteps) {
        const double acrossMm = minutes / 60 / paper.TimeScale, upMm = depth / paper.DepthScale;
        Candidate best{0, {}};
        for (int i = 0; i < scales; ++i) {
          const double scale = least * std::pow(finer, i);
          if (std::min(acrossMm, upMm) * scale < LeastPeriod) continue;
          const double rough = std::min(across.Comb(acrossMm * scale), up.Comb(upMm * scale));
          if (rough < 0.3 * best.Score) continue;
          const Fit one = BestNear(across, acrossMm, scale), other = BestNear(up, upMm, scale);
          const double score = std::sqrt(one.Score * other.Score);
          if (std::min(one.Score, other.Score) >= LeastScore && score > best.Score)
            best = {score,
                    {(one.Scale + other.Scale) / 2 * step, one.Scale * step, other.Scale * step, acrossMm,
                     upMm, upright}};
        }
        if (best.Score > 0) found.push_back(best);
      }
  }
  if (found.empty()) return std::nullopt;
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.Score > b.Score; });
  GridScale best = found.front().Scale;
  for (const Candidate& other : found) {
    const bool same = other.Scale.Upright == best.Upright &&
                      std::abs(other.Scale.PixelsPerMm / best.PixelsPerMm - 1) < MostStretch;
    if (!same && other.Score * SurelyBetter > found.front().Score) return std::nullopt;
    const bool finer = other.Scale.AcrossMm * other.Scale.UpMm < best.AcrossMm * best.UpMm;
    if (same && finer && other.Score > NearlyAsGood * found.front().Score) best = other.Scale;
  }
  return best;
}

}  // namespace hyetex
