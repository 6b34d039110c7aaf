#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <random>

#include "scan/images.h"
#include "scan/scan_image.h"
#include "support.h"

namespace hyetex {
namespace {

using namespace test;

constexpr std::uint32_t Around = 0xff123456;

ScanImage Opened(const cv::Mat& image) {
  const TempFolder folder;
  WriteFile(folder / "scan", Encoded(image, ".bmp"));
  return *ScanImage::Open(folder / "scan");
}

std::vector<std::uint32_t> View(const ScanImage& image, const ScanWindow& window, int width, int height,
                                const ScanLook& look = {}) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height), 1);
  image.Render(window, look, Around, pixels, width, height);
  return pixels;
}

// Smooth, with a colour of its own at every place.
cv::Mat Smooth(int width, int height) {
  cv::Mat image(height, width, CV_8UC3);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      image.at<cv::Vec3b>(y, x) = {
          static_cast<std::uint8_t>(x * 255 / width), static_cast<std::uint8_t>(y * 255 / height),
          static_cast<std::uint8_t>(127 + 120 * std::sin(x * 0.02) * std::cos(y * 0.03))};
  return image;
}

ScanWindow Turned(double x, double y, double step, double degrees) {
  const double c = step * std::cos(degrees * 3.14159265358979 / 180),
               s = step * std::sin(degrees * 3.14159265358979 / 180);
  return {x, y, c, s, -s, c};
}

// Every pixel of the view on its own: its place in the image, and a mean over as much of the image as it
// covers.
TEST(ScanRender, ShowsAnyPartAtAnySizeAndTurn) {
  const cv::Mat source = Smooth(801, 603);
  const ScanImage image = Opened(source);
  constexpr int width = 311, height = 77;
  for (const double step : {0.1, 0.24, 0.5, 1.0, 1.3, 2.0, 3.1, 7.9, 40.0})
    for (const double degrees : {0.0, 90.0, 180.0, 270.0, 3.0, -41.5})
      for (const auto& [atX, atY] : {std::pair(0.0137, -0.0071), {400.3137, 300.8071}, {-50.013, 550.007}}) {
        const ScanWindow window = Turned(atX, atY, step, degrees);
        const std::vector<std::uint32_t> view = View(image, window, width, height);
        int outside = 0;
        double worst = 0;
        for (int row = 0; row < height; ++row)
          for (int column = 0; column < width; ++column) {
            const double x = window.X + (column + 0.5) * window.RightX + (row + 0.5) * window.DownX;
            const double y = window.Y + (column + 0.5) * window.RightY + (row + 0.5) * window.DownY;
            const std::uint32_t pixel = view[static_cast<std::size_t>(row * width + column)];
            const double toEdge = std::min({x, y, 801 - x, 603 - y});
            if (std::abs(toEdge) < 1e-6) continue;
            if ((pixel == Around) != (toEdge < 0)) ++outside;
            if (toEdge < 2 * step || toEdge < 1) continue;
            const auto& wanted = source.at<cv::Vec3b>(static_cast<int>(y), static_cast<int>(x));
            for (int channel = 0; channel < 3; ++channel)
              worst = std::max(worst,
                               std::abs(static_cast<double>(pixel >> 8 * channel & 255) - wanted[channel]));
          }
        EXPECT_EQ(outside, 0) << step << " " << degrees << " " << atX;
        EXPECT_LE(worst, step < 0.25 ? 0 : 3 + step * 1.5) << step << " " << degrees << " " << atX;
      }
}

TEST(ScanRender, ShowsPixelsAsTheyAreWhereTheyAreLarge) {
  cv::Mat noise(50, 50, CV_8UC1);
  cv::randu(noise, 0, 256);
  const ScanImage image = Opened(noise);
  const std::vector<std::uint32_t> view = View(image, {10, 20, 0.125, 0, 0, 0.125}, 80, 80);
  for (int row = 0; row < 80; ++row)
    for (int column = 0; column < 80; ++column)
      ASSERT_EQ(view[static_cast<std::size_t>(row * 80 + column)] & 255,
                noise.at<std::uint8_t>(20 + row / 8, 10 + column / 8));
  // One to one and unturned, pixels are exact too.
  const std::vector<std::uint32_t> plain = View(image, {}, 50, 50);
  for (int i = 0; i < 2500; ++i) ASSERT_EQ(plain[static_cast<std::size_t>(i)] & 255, noise.data[i]) << i;
}

TEST(ScanRender, KeepsThinLinesWhenItIsMadeSmall) {
  cv::Mat sheet(2000, 3000, CV_8UC1, cv::Scalar(255));
  for (int line = 0; line < 3000; line += 300) sheet(cv::Rect(line + line / 100, 0, 3, 2000)) = 0;
  const ScanImage image = Opened(sheet);
  for (const double step : {1.9, 3.0, 5.5, 11.0}) {
    const int width = static_cast<int>(3000 / step);
    const std::vector<std::uint32_t> view = View(image, {0, 900, step, 0, 0, step}, width, 1);
    for (int line = 0; line < 3000; line += 300) {
      const int at = static_cast<int>((line + line / 100 + 1.5) / step);
      double ink = 0;  // of a line, in pixels of the scan
      for (int i = std::max(0, at - 3); i < std::min(width, at + 4); ++i)
        ink += (255 - (view[static_cast<std::size_t>(i)] & 255)) / 255.0 * step;
      EXPECT_NEAR(ink, 3, 1) << step << " " << line;
    }
  }
}

TEST(ScanRender, GivesTheColourAroundForWindowsOfNothing) {
  const ScanImage image = Opened(Smooth(60, 40));
  constexpr double none = std::numeric_limits<double>::quiet_NaN(),
                   endless = std::numeric_limits<double>::infinity();
  for (const ScanWindow& window : {ScanWindow{none, 0, 1, 0, 0, 1},
                                   {0, 0, 0, 0, 0, 0},
                                   {0, 0, 1, 0, 0, 0},
                                   {endless, 0, 1, 0, 0, 1},
                                   {0, 0, 1, 0, 0, none},
                                   {1e300, 0, 1, 0, 0, 1},
                                   {-1e8, 1e8, 1, 0, 0, 1},
                                   {61, 0, 1, 0, 0, 1},
                                   {0, 0, -1, 0, 0, 1}})
    EXPECT_EQ(View(image, window, 70, 50), std::vector<std::uint32_t>(3500, Around));
  // Both directions the same, a speck in the distance, and seen through a pinhole: nothing is read outside.
  for (const ScanWindow& window :
       {ScanWindow{5, 5, 1, 1, 1, 1}, {-5e5, -5e5, 1e4, 0, 0, 1e4}, {20, 20, 1e-8, 0, 0, 1e-8}})
    EXPECT_EQ(View(image, window, 70, 50).size(), 3500U);
  std::vector<std::uint32_t> few(10, 7);
  image.Render({}, {}, Around, few, 5, 3);
  EXPECT_EQ(few, std::vector<std::uint32_t>(10, 7));  // a view that does not hold what is asked for
}

TEST(ScanRender, ReadsNothingOutsideForAnyWindow) {
  const ScanImage image = Opened(Smooth(333, 97));
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(-400, 500), part(-1, 1), power(-4, 4);
  for (int i = 0; i < 2000; ++i) {
    const double size = std::pow(10, power(random));
    const ScanWindow window{place(random),       place(random),       part(random) * size,
                            part(random) * size, part(random) * size, part(random) * size};
    const std::vector<std::uint32_t> view = View(image, window, 37, 41);
    for (int row = 0; row < 41; ++row)
      for (int column = 0; column < 37; ++column) {
        const double x = window.X + (column + 0.5) * window.RightX + (row + 0.5) * window.DownX;
        const double y = window.Y + (column + 0.5) * window.RightY + (row + 0.5) * window.DownY;
        const double toEdge = std::min({x, y, 333 - x, 97 - y});
        if (std::abs(toEdge) > 1e-6) {
          ASSERT_EQ(view[static_cast<std::size_t>(row * 37 + column)] == Around, toEdge < 0) << i;
        }
      }
  }
}

TEST(ScanRender, FadesAColouredGridAndKeepsInk) {
  const cv::Vec3b paper(200, 230, 240), orange(90, 150, 240), ink(60, 55, 50), blueInk(140, 50, 40);
  cv::Mat sheet(200, 200, CV_8UC3, paper);
  sheet(cv::Rect(10, 0, 10, 200)) = orange;
  sheet(cv::Rect(30, 0, 10, 200)) = ink;
  sheet(cv::Rect(50, 0, 10, 200)) = blueInk;
  const ScanImage image = Opened(sheet);
  const auto at = [&](int x, const ScanLook& look) {
    const std::uint32_t pixel = View(image, {}, 200, 200, look)[static_cast<std::size_t>(100 * 200 + x)];
    return cv::Vec3b(static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 8),
                     static_cast<std::uint8_t>(pixel >> 16));
  };
  EXPECT_EQ(at(15, {}), orange);
  const ScanLook faded{.FadeGrid = 100};
  EXPECT_LE(cv::norm(at(15, faded), paper, cv::NORM_INF), 4);
  EXPECT_EQ(at(35, faded), ink);
  EXPECT_EQ(at(55, faded), blueInk);
  EXPECT_LE(cv::norm(at(100, faded), paper, cv::NORM_INF), 1);
  const cv::Vec3b half = at(15, {.FadeGrid = 50});
  EXPECT_GT(half[0], orange[0]);
  EXPECT_LT(half[0], paper[0]);

  cv::Mat grey(200, 200, CV_8UC1, cv::Scalar(235));
  grey(cv::Rect(10, 0, 10, 200)) = 170;
  grey(cv::Rect(30, 0, 10, 200)) = 50;
  const ScanImage plain = Opened(grey);
  const std::vector<std::uint32_t> view = View(plain, {}, 200, 1, faded);
  EXPECT_GT(view[15] & 255, 220U);
  EXPECT_EQ(view[35] & 255, 50U);
  EXPECT_EQ(view[100] & 255, 235U);
}

TEST(ScanRender, BrightensAndRaisesContrast) {
  cv::Mat greys(1, 256, CV_8UC1);
  for (int i = 0; i < 256; ++i) greys.data[i] = static_cast<std::uint8_t>(i);
  cv::Mat colours;
  cv::merge(std::vector<cv::Mat>{greys, greys, greys}, colours);
  const ScanImage image = Opened(greys), coloured = Opened(colours);
  const auto shown = [&](const ScanLook& look) {
    const std::vector<std::uint32_t> view = View(image, {}, 256, 1, look);
    EXPECT_EQ(view, View(coloured, {}, 256, 1, look));  // a grey is a grey
    return view;
  };
  const auto plain = shown({});
  for (std::size_t i = 0; i < 256; ++i) EXPECT_EQ(plain[i], 0xff000000U + i * 0x10101U);
  const auto bright = shown({.Brightness = 40}), steep = shown({.Contrast = 100}),
             flat = shown({.Contrast = -100});
  for (std::size_t i = 1; i < 256; ++i) {
    EXPECT_GE(bright[i], plain[i]);
    EXPECT_GE(steep[i], steep[i - 1]);
  }
  EXPECT_EQ(steep[60] & 255, 0U);
  EXPECT_EQ(steep[200] & 255, 255U);
  EXPECT_LT((flat[255] & 255) - (flat[0] & 255), 40U);
  EXPECT_EQ(shown({.Brightness = 1000})[0], shown({.Brightness = 100})[0]);  // held at their ends
}

}  // namespace
}  // namespace hyetex
