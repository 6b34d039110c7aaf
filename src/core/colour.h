#pragma once

namespace hyetex {

/// A colour, each part from 0 to 255.
struct Rgb {
  int Red = 0, Green = 0, Blue = 0;

  bool operator==(const Rgb&) const = default;
};

}  // namespace hyetex
