#include "scan/scan_look.h"

#include <algorithm>
#include <cmath>
#include <opencv2/core/hal/intrin.hpp>
#include <opencv2/imgproc.hpp>

namespace hyetex {
namespace {

// Ink as dark as Dark stays as it is, whatever its colour, so that a blue pen line is not faded with an
// orange grid; from Light on it fades as its colour says.
constexpr int Dark = 80, Light = 140;
// Colour beyond the paper's own tint: up to Plain it counts as none, from Coloured on as full.
constexpr int Plain = 10, Coloured = 58;

// How far a brightness and a tint fade, 0 to 255; written so that 16 bits hold all of it.
constexpr int LightFactor = 17, ColourFactor = 85;
int Lightness(int brightness) { return std::clamp(brightness - Dark, 0, Light - Dark) * LightFactor >> 2; }
int Colourfulness(int tint) { return std::clamp(tint - Plain, 0, Coloured - Plain) * ColourFactor >> 4; }

std::uint8_t ToByte(double value) {
  return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

}  // namespace

ScanShades::ScanShades(const ScanLook& look, cv::Vec3b paper) : paper_(paper), tone_(1, 256, CV_8UC1) {
  fade_ = std::clamp(look.FadeGrid, 0, 100) * 256 / 100;
  const int contrast = std::clamp(look.Contrast, -100, 100),
            brightness = std::clamp(look.Brightness, -100, 100);
  plain_ = contrast == 0 && brightness == 0;
  // The most contrast is four times as steep, the least a tenth.
  const double gain = contrast >= 0 ? 1 + contrast * 0.03 : 1 + contrast * 0.009;
  for (int value = 0; value < 256; ++value)
    tone_.data[value] = ToByte((value - 127.5) * gain + 127.5 + brightness * 1.275);
  paperTint_ = std::max({paper[0], paper[1], paper[2]}) - std::min({paper[0], paper[1], paper[2]});
  for (int value = 0; value < 256; ++value) {
    // Without colours, a grid is what is lighter than ink.
    const int part = fade_ * Lightness(value) >> 8;
    const int lighter = std::max<int>(value, paper[0]);
    const std::uint32_t tone = tone_.data[(value * (256 - part) + lighter * part) >> 8];
    greys_[static_cast<std::size_t>(value)] = 0xff000000U | tone << 16 | tone << 8 | tone;
  }
}

void ScanShades::Fade(std::uint8_t* row, int count) const {
  std::ptrdiff_t i = 0;
#if CV_SIMD128
  using namespace cv;
  const v_uint8x16 tint = v_setall_u8(static_cast<std::uint8_t>(std::min(255, paperTint_ + Plain))),
                   mostTint = v_setall_u8(Coloured - Plain);
  const v_uint16x8 dark = v_setall_u16(Dark), mostLight = v_setall_u16(Light - Dark),
                   whole = v_setall_u16(256);
  const auto all = [](int value) { return v_setall_u16(static_cast<std::uint16_t>(value)); };
  for (; i + 16 <= count; i += 16) {
    v_uint8x16 pixel[3];
    v_load_deinterleave(row + 3 * i, pixel[0], pixel[1], pixel[2]);
    const v_uint8x16 most = v_max(pixel[0], v_max(pixel[1], pixel[2])),
                     least = v_min(pixel[0], v_min(pixel[1], pixel[2]));
    v_uint16x8 colour[2], value[3][2];
    v_expand(v_min((most - least) - tint, mostTint), colour[0], colour[1]);
    for (int channel = 0; channel < 3; ++channel)
      v_expand(pixel[channel], value[channel][0], value[channel][1]);
    for (int half = 0; half < 2; ++half) {
      const v_uint16x8 brightness =
          (v_mul_wrap(value[0][half], all(29)) + v_mul_wrap(value[1][half], all(150)) +
           v_mul_wrap(value[2][half], all(77))) >>
          8;
      const v_uint16x8 light = v_mul_wrap(v_min(brightness - dark, mostLight), all(LightFactor)) >> 2;
      const v_uint16x8 coloured = v_mul_wrap(colour[half], all(ColourFactor)) >> 4;
      const v_uint16x8 part = v_mul_hi(v_mul_wrap(coloured, light), all(fade_));
      for (int channel = 0; channel < 3; ++channel) {
        const v_uint16x8 mixed =
            v_mul_wrap(value[channel][half], whole - part) + v_mul_wrap(all(paper_[channel]), part);
        value[channel][half] = mixed >> 8;
      }
    }
    v_store_interleave(row + 3 * i, v_pack(value[0][0], value[0][1]), v_pack(value[1][0], value[1][1]),
                       v_pack(value[2][0], value[2][1]));
  }
#endif
  // The same for the rest, pixel by pixel.
  for (; i < count; ++i) {
    std::uint8_t* pixel = row + 3 * i;
    const int most = std::max({pixel[0], pixel[1], pixel[2]}),
              least = std::min({pixel[0], pixel[1], pixel[2]});
    const int brightness = (29 * pixel[0] + 150 * pixel[1] + 77 * pixel[2]) >> 8;  // as the eye sees it
    const int part = Colourfulness(most - least - paperTint_) * Lightness(brightness) * fade_ >> 16;
    for (int channel = 0; channel < 3; ++channel)
      pixel[channel] =
          static_cast<std::uint8_t>((pixel[channel] * (256 - part) + paper_[channel] * part) >> 8);
  }
}

void ScanShades::Show(cv::Mat& image, cv::Mat& to) const {
  if (image.channels() == 1) {
    for (int y = 0; y < image.rows; ++y) {
      const std::uint8_t* row = image.ptr(y);
      auto* shown = to.ptr<std::uint32_t>(y);
      for (int x = 0; x < image.cols; ++x) shown[x] = greys_[row[x]];
    }
    return;
  }
  if (fade_ > 0)
    for (int y = 0; y < image.rows; ++y) Fade(image.ptr(y), image.cols);
  if (!plain_) cv::LUT(image, tone_, image);
  cv::cvtColor(image, to, cv::COLOR_BGR2BGRA);  // which is 0xffRRGGBB
}

}  // namespace hyetex
