#include "scans/scanner.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "scans/chance.h"

namespace hyetex {
namespace {

// Grain is grey: the channels of a scanner share most of it.
void AddGrain(cv::Mat& image, double level, cv::RNG& random) {
  cv::Mat grain(image.size(), CV_16S), row;
  random.fill(grain, cv::RNG::NORMAL, 0, level);
  const int channels = image.channels();
  for (int y = 0; y < image.rows; ++y) {
    std::uint8_t* pixel = image.ptr<std::uint8_t>(y);
    const std::int16_t* by = grain.ptr<std::int16_t>(y);
    for (int x = 0; x < image.cols; ++x)
      for (int c = 0; c < channels; ++c, ++pixel) *pixel = cv::saturate_cast<std::uint8_t>(*pixel + by[x]);
  }
}

void AddSalt(cv::Mat& image, double share, Chance& chance) {
  const auto count = static_cast<std::int64_t>(share * static_cast<double>(image.total()));
  for (std::int64_t i = 0; i < count; ++i) {
    const std::uint64_t drawn = chance.Next();
    const int y = static_cast<int>((drawn >> 32) % static_cast<std::uint64_t>(image.rows));
    const int x = static_cast<int>((drawn & 0xffffffffU) % static_cast<std::uint64_t>(image.cols));
    const auto value = static_cast<std::uint8_t>((drawn >> 63) != 0 ? 255 : 0);
    if (image.channels() == 1)
      image.at<std::uint8_t>(y, x) = value;
    else
      image.at<cv::Vec3b>(y, x) = {value, value, value};
  }
}

// Each pixel's rounding is handed on to its neighbours to the right and below.
void Dither(cv::Mat& grey, double threshold) {
  std::vector<double> here(static_cast<std::size_t>(grey.cols) + 2), next(here.size());
  for (int y = 0; y < grey.rows; ++y) {
    std::uint8_t* row = grey.ptr<std::uint8_t>(y);
    for (int x = 0; x < grey.cols; ++x) {
      const auto i = static_cast<std::size_t>(x) + 1;
      const double value = row[x] + here[i];
      row[x] = value > threshold ? 255 : 0;
      const double off = (value - row[x]) / 16;
      here[i + 1] += 7 * off;
      next[i - 1] += 3 * off;
      next[i] += 5 * off;
      next[i + 1] += off;
    }
    std::swap(here, next);
    std::ranges::fill(next, 0);
  }
}

}  // namespace

void LayInk(cv::Mat& image, const cv::Mat& cover, Rgb ink, double strength) {
  std::uint16_t table[3][256];  // what is left of each channel, of 65535
  const int colours[] = {ink.Blue, ink.Green, ink.Red};
  for (int c = 0; c < 3; ++c)
    for (int i = 0; i < 256; ++i)
      table[c][i] = static_cast<std::uint16_t>(
          std::lround(65535 * (1 - strength * i / 255.0 * (1 - colours[c] / 255.0))));
  for (int y = 0; y < image.rows; ++y) {
    const std::uint8_t* covered = cover.ptr<std::uint8_t>(y);
    auto* row = image.ptr<cv::Vec3b>(y);
    for (int x = 0; x < image.cols; ++x)
      if (covered[x] != 0)
        for (int c = 0; c < 3; ++c)
          row[x][c] = static_cast<std::uint8_t>((row[x][c] * table[c][covered[x]] + 32768U) >> 16);
  }
}

cv::Mat Scanned(cv::Mat image, const ScanStyle& style, std::uint64_t seed) {
  Chance chance(seed, "scanner");
  cv::RNG random(chance.Next());
  if (style.Mode != ScanMode::Colour) cv::cvtColor(image, image, cv::COLOR_BGR2GRAY);
  if (style.BlurPx > 0.2) cv::GaussianBlur(image, image, {}, style.BlurPx);
  if (style.Pale > 0) image.convertTo(image, -1, 1 - style.Pale, 215 * style.Pale);
  if (style.Noise > 0) AddGrain(image, style.Noise, random);
  if (style.Mode == ScanMode::Bits) {
    // Scanners set their threshold by the paper that they see.
    const double paper = (0.3 * style.Paper.Red + 0.59 * style.Paper.Green + 0.11 * style.Paper.Blue) / 249;
    const double threshold = std::lerp(style.Threshold * paper, 215.0, style.Pale);
    if (style.Dither)
      Dither(image, threshold);
    else
      cv::threshold(image, image, threshold, 255, cv::THRESH_BINARY);
  }
  if (style.Salt > 0) AddSalt(image, style.Salt, chance);
  if (style.JpegQuality && style.Mode != ScanMode::Bits) {
    std::vector<std::uint8_t> bytes;
    cv::imencode(".jpg", image, bytes, {cv::IMWRITE_JPEG_QUALITY, *style.JpegQuality});
    image = cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
  }
  return image;
}

}  // namespace hyetex
