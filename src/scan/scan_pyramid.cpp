#include "scan/scan_pyramid.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>

#include "scan/scan_look.h"

namespace hyetex {
namespace {

constexpr int SmallestLevel = 64;
// Enlarged further, pixels are shown as what they are.
constexpr double LinearUpTo = 4;
// A piece of a view is worked on as a whole while it lies in a processor's cache.
constexpr int TileWidth = 128, TileHeight = 64;

// Averages of two by two pixels; of what is left over at the right and bottom, of those that are there.
cv::Mat HalfOf(const cv::Mat& image) {
  cv::Mat half((image.rows + 1) / 2, (image.cols + 1) / 2, image.type());
  const auto reduce = [&](int x, int y, int width, int height) {
    if (width == 0 || height == 0) return;
    cv::Mat to = half(cv::Rect(x / 2, y / 2, (width + 1) / 2, (height + 1) / 2));
    cv::resize(image(cv::Rect(x, y, width, height)), to, to.size(), 0, 0, cv::INTER_AREA);
  };
  const int width = image.cols / 2 * 2, height = image.rows / 2 * 2;
  reduce(0, 0, width, height);
  reduce(width, 0, image.cols - width, height);
  reduce(0, height, width, image.rows - height);
  reduce(width, height, image.cols - width, image.rows - height);
  return half;
}

// Most of a chart is bare paper, and it is the lighter part: of each channel the middle one of the lighter
// half.
cv::Vec3b PaperOf(const cv::Mat& image) {
  cv::Vec3b paper;
  for (int channel = 0; channel < image.channels(); ++channel) {
    std::array<std::size_t, 256> counts{};
    for (int y = 0; y < image.rows; ++y)
      for (int x = 0; x < image.cols; ++x) ++counts[image.ptr(y, x)[channel]];
    std::size_t left = image.total() / 4;
    int value = 255;
    while (value > 0 && counts[static_cast<std::size_t>(value)] <= left)
      left -= counts[static_cast<std::size_t>(value--)];
    paper[channel] = static_cast<std::uint8_t>(value);
  }
  if (image.channels() == 1) paper[2] = paper[1] = paper[0];
  return paper;
}

// The whole numbers i from 0 to count - 1 with 0 <= at + (i + 0.5) * step < size, which follow each other.
std::pair<int, int> Inside(double at, double step, double size, int count) {
  const auto lies = [&](int i) {
    const double place = at + (i + 0.5) * step;
    return place >= 0 && place < size;
  };
  if (step == 0) return lies(0) ? std::pair{0, count} : std::pair{0, 0};
  const double one = -at / step - 0.5, other = (size - at) / step - 0.5;
  const auto bounded = [&](double i) {
    return static_cast<int>(std::clamp(i, 0.0, static_cast<double>(count)));
  };
  int first = bounded(std::floor(std::min(one, other)) - 1),
      end = bounded(std::ceil(std::max(one, other)) + 2);
  while (first < end && !lies(first)) ++first;
  while (first < end && !lies(end - 1)) --end;
  return {first, end};
}

bool IsUsable(const ScanWindow& window) {
  constexpr double most = 1e9;
  for (const double value : {window.X, window.Y, window.RightX, window.RightY, window.DownX, window.DownY})
    if (!(std::abs(value) <= most)) return false;
  return std::hypot(window.RightX, window.RightY) > 1e-9 && std::hypot(window.DownX, window.DownY) > 1e-9;
}

struct View {
  const cv::Mat& Level;
  double Scale;  // pixels of the image for one of the level
  bool Nearest;
  const ScanWindow& Window;
  const ScanShades& Shades;
  std::uint32_t Around;
  std::uint32_t* Pixels;
  int Width, Height, ImageWidth, ImageHeight;
};

// One tile: the part of the level that lies under it is brought to the view's pixels, shaded, and cut off at
// the image's edges.
void RenderTile(const View& view, int left, int top, int width, int height, cv::Mat& tile) {
  const ScanWindow& window = view.Window;
  // Of the tile's first pixel's middle, in the image.
  const double x0 = window.X + (left + 0.5) * window.RightX + (top + 0.5) * window.DownX;
  const double y0 = window.Y + (left + 0.5) * window.RightY + (top + 0.5) * window.DownY;
  std::array<std::pair<int, int>, TileHeight> spans;
  double leastX = 1e18, leastY = 1e18, mostX = -1e18, mostY = -1e18;
  for (int row = 0; row < height; ++row) {
    const double rowX = window.X + (top + row + 0.5) * window.DownX,
                 rowY = window.Y + (top + row + 0.5) * window.DownY;
    const auto [firstX, endX] = Inside(rowX + left * window.RightX, window.RightX, view.ImageWidth, width);
    const auto [firstY, endY] = Inside(rowY + left * window.RightY, window.RightY, view.ImageHeight, width);
    const int first = std::max(firstX, firstY), end = std::max(first, std::min(endX, endY));
    spans[static_cast<std::size_t>(row)] = {first, end};
    for (const int i : {first, end - 1}) {
      if (first == end) break;
      const double x = rowX + (left + i + 0.5) * window.RightX, y = rowY + (left + i + 0.5) * window.RightY;
      leastX = std::min(leastX, x);
      mostX = std::max(mostX, x);
      leastY = std::min(leastY, y);
      mostY = std::max(mostY, y);
    }
  }
  const auto lineOf = [&](int row) {
    return view.Pixels + static_cast<std::size_t>(top + row) * static_cast<std::size_t>(view.Width) + left;
  };
  if (mostX < leastX) {
    for (int row = 0; row < height; ++row) std::fill_n(lineOf(row), width, view.Around);
    return;
  }
  const double toLevel = 1 / view.Scale;
  const auto cut = [](double value, int most) { return std::clamp(static_cast<int>(value), 0, most); };
  const int cutLeft = cut(std::floor(leastX * toLevel) - 1, view.Level.cols - 1);
  const int cutTop = cut(std::floor(leastY * toLevel) - 1, view.Level.rows - 1);
  const int cutRight = cut(std::ceil(mostX * toLevel) + 2, view.Level.cols);
  const int cutBottom = cut(std::ceil(mostY * toLevel) + 2, view.Level.rows);
  const cv::Mat part =
      view.Level(cv::Rect(cutLeft, cutTop, std::max(1, cutRight - cutLeft), std::max(1, cutBottom - cutTop)));

  tile.create(TileHeight, TileWidth, view.Level.type());
  cv::Mat shown = tile(cv::Rect(0, 0, width, height));
  if (view.Nearest) {
    const int channels = part.channels();
    for (int row = 0; row < height; ++row) {
      const auto [first, end] = spans[static_cast<std::size_t>(row)];
      std::uint8_t* to = shown.ptr(row, first);
      for (int i = first; i < end; ++i, to += channels) {
        const double x = x0 + i * window.RightX + row * window.DownX,
                     y = y0 + i * window.RightY + row * window.DownY;
        const std::uint8_t* from =
            view.Level.ptr(cut(y * toLevel, view.Level.rows - 1), cut(x * toLevel, view.Level.cols - 1));
        for (int channel = 0; channel < channels; ++channel) to[channel] = from[channel];
      }
    }
  } else {
    // Between the middles of pixels; beyond the outermost ones it goes on as they are.
    const cv::Matx23d toPart(window.RightX * toLevel, window.DownX * toLevel, x0 * toLevel - 0.5 - cutLeft,
                             window.RightY * toLevel, window.DownY * toLevel, y0 * toLevel - 0.5 - cutTop);
    cv::warpAffine(part, shown, toPart, shown.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
                   cv::BORDER_REPLICATE);
  }
  cv::Mat into(height, width, CV_8UC4, lineOf(0),
               static_cast<std::size_t>(view.Width) * sizeof(std::uint32_t));
  view.Shades.Show(shown, into);
  for (int row = 0; row < height; ++row) {
    const auto [first, end] = spans[static_cast<std::size_t>(row)];
    std::fill_n(lineOf(row), first, view.Around);
    std::fill(lineOf(row) + end, lineOf(row) + width, view.Around);
  }
}

}  // namespace

ScanPyramid::ScanPyramid(cv::Mat image) {
  levels_.push_back(std::move(image));
  while (std::max(levels_.back().cols, levels_.back().rows) > SmallestLevel)
    levels_.push_back(HalfOf(levels_.back()));
  const std::size_t level = levels_.size() > 3 ? levels_.size() - 3 : 0;
  paper_ = PaperOf(levels_[level]);
}

std::size_t ScanPyramid::Bytes() const {
  std::size_t bytes = 0;
  for (const cv::Mat& level : levels_) bytes += level.total() * level.elemSize();
  return bytes;
}

void ScanPyramid::Render(const ScanWindow& window, const ScanLook& look, std::uint32_t around,
                         std::span<std::uint32_t> pixels, int width, int height) const {
  if (width <= 0 || height <= 0 ||
      pixels.size() / static_cast<std::size_t>(width) < static_cast<std::size_t>(height))
    return;
  if (!IsUsable(window) || levels_.empty()) {
    std::fill_n(pixels.begin(), static_cast<std::size_t>(width) * static_cast<std::size_t>(height), around);
    return;
  }
  // The level whose pixels are nearest in size to the view's, so that thin lines neither vanish nor blur.
  const double step =
      std::max(std::hypot(window.RightX, window.RightY), std::hypot(window.DownX, window.DownY));
  const double finest = static_cast<double>(levels_.size() - 1);
  const auto level = static_cast<std::size_t>(std::clamp(std::round(std::log2(step)), 0.0, finest));
  const ScanShades shades(look, paper_);
  const View view{levels_[level],
                  std::ldexp(1.0, static_cast<int>(level)),
                  step * LinearUpTo < 1,
                  window,
                  shades,
                  around,
                  pixels.data(),
                  width,
                  height,
                  Width(),
                  Height()};
  const int bands = (height + TileHeight - 1) / TileHeight;
  cv::parallel_for_(cv::Range(0, bands), [&](const cv::Range& range) {
    cv::Mat tile;
    for (int band = range.start; band < range.end; ++band)
      for (int left = 0; left < width; left += TileWidth) {
        const int top = band * TileHeight;
        RenderTile(view, left, top, std::min(TileWidth, width - left), std::min(TileHeight, height - top),
                   tile);
      }
  });
}

}  // namespace hyetex
