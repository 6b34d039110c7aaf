// Surfaces for tests: one that nothing is seen of, and one that tells what was drawn on it.
#pragma once

#include <string>
#include <vector>

#include "platform/surface.h"

namespace hyetex::test {

/// Letters are 0.6 of their size wide, wide enough for any sans-serif font's figures.
class BlankSurface : public Surface {
 public:
  explicit BlankSurface(double width = 100, double height = 100) : area_{0, 0, width, height} {}

  Rect Area() const override { return area_; }
  void Clear() override {}
  void Line(double, double, double, double, Rgb, int) override {}
  void Circle(double, double, double, Rgb) override {}
  void Polyline(std::span<const SurfacePoint>, const Stroke&) override {}
  void FillRect(const Rect&, Rgb, double) override {}
  void FillShape(std::span<const SurfacePoint>, Rgb) override {}
  void Text(double, double, std::string_view, const TextStyle&) override {}
  TextSize Measure(std::string_view text, const Font& font) const override {
    return {0.6 * font.Size * static_cast<double>(text.size()), 0.9 * font.Size, 0.25 * font.Size};
  }
  void Clip(const Rect&) override {}
  void Unclip() override {}

 private:
  Rect area_;
};

}  // namespace hyetex::test
