#include "scan/scan_look.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

// Ink as dark as Dark stays as it is, whatever its colour, so that a blue pen line is not faded with an
// orange grid; from Light on it fades as its colour says.
constexpr int Dark = 80, Light = 140;
// Colour beyond the paper's own tint: up to Plain it counts as none, from Coloured on as full.
constexpr int Plain = 10, Coloured = 58;

// How far a brightness fades, 0 to 256.
int Lightness(int brightness) { return std::clamp((brightness - Dark) * 256 / (Light - Dark), 0, 256); }

std::uint8_t ToByte(double value) {
  return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

std::uint32_t Colour(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return 0xff000000U | red << 16 | green << 8 | blue;
}

}  // namespace

ScanShades::ScanShades(const ScanLook& look, cv::Vec3b paper) : paper_(paper) {
  fade_ = std::clamp(look.FadeGrid, 0, 100) * 256 / 100;
  const int contrast = std::clamp(look.Contrast, -100, 100),
            brightness = std::clamp(look.Brightness, -100, 100);
  // The most contrast is four times as steep, the least a tenth.
  const double gain = contrast >= 0 ? 1 + contrast * 0.03 : 1 + contrast * 0.009;
  for (int value = 0; value < 256; ++value)
    tone_[static_cast<std::size_t>(value)] = ToByte((value - 127.5) * gain + 127.5 + brightness * 1.275);
  paperTint_ = std::max({paper[0], paper[1], paper[2]}) - std::min({paper[0], paper[1], paper[2]});
  for (int value = 0; value < 256; ++value) {
    // Without colours, a grid is what is lighter than ink.
    const int faded =
        value + (std::max<int>(value, paper[0]) - value) * (fade_ * Lightness(value) >> 8) / 256;
    const std::uint32_t tone = tone_[static_cast<std::size_t>(faded)];
    greys_[static_cast<std::size_t>(value)] = Colour(tone, tone, tone);
  }
}

void ScanShades::Fade(const std::uint8_t* row, int count, std::uint32_t* to) const {
  const int paper[] = {paper_[0], paper_[1], paper_[2]};
  for (int i = 0; i < count; ++i, row += 3) {
    const int blue = row[0], green = row[1], red = row[2];
    const int most = std::max({blue, green, red}), tint = most - std::min({blue, green, red}) - paperTint_;
    const int coloured = std::clamp((tint - Plain) * 256 / (Coloured - Plain), 0, 256);
    const int brightness = (29 * blue + 150 * green + 77 * red) >> 8;  // as the eye sees it
    const int part = fade_ * (coloured * Lightness(brightness) >> 8) >> 8;
    const auto faded = [&](int value, int channel) {
      return std::uint32_t{tone_[static_cast<std::size_t>(value + ((paper[channel] - value) * part >> 8))]};
    };
    to[i] = Colour(faded(red, 2), faded(green, 1), faded(blue, 0));
  }
}

void ScanShades::Show(const std::uint8_t* row, int channels, int count, std::uint32_t* to) const {
  if (channels == 1)
    for (int i = 0; i < count; ++i) to[i] = greys_[row[i]];
  else if (fade_ > 0)
    Fade(row, count, to);
  else
    for (int i = 0; i < count; ++i, row += 3) to[i] = Colour(tone_[row[2]], tone_[row[1]], tone_[row[0]]);
}

}  // namespace hyetex
