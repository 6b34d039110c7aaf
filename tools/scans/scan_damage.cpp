#include "scans/scan_damage.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/text.h"
#include "tracing/table.h"

namespace hyetex {
namespace {

int Rounded(double value) { return static_cast<int>(std::lround(value)); }

Rgb Mixed(Rgb from, Rgb to, double part) {
  return {Rounded(std::lerp(from.Red, to.Red, part)), Rounded(std::lerp(from.Green, to.Green, part)),
          Rounded(std::lerp(from.Blue, to.Blue, part))};
}

// The directions of what goes both ways are left to chance; how far it goes is not.
constexpr auto Damages = std::to_array<ScanDamage>({
    // The paper under the scanner.
    {"tilt", "laid askew, up to 3 degrees",
     [](ScanStyle& s, double x, Chance& c) { s.Shape.TiltDegrees += c.Sign() * 3 * x; }},
    {"shear", "hour lines that lean, up to 1 degree",
     [](ScanStyle& s, double x, Chance& c) { s.Shape.ShearDegrees += c.Sign() * x; }},
    {"shrink", "paper grown or shrunk, up to 2% across and 1.5% up",
     [](ScanStyle& s, double x, Chance& c) {
       s.Shape.ShrunkAcross += c.Sign() * 0.02 * x;
       s.Shape.ShrunkUp += c.Sign() * 0.015 * x;
     }},
    {"warp", "paper swollen in waves of up to 2 mm",
     [](ScanStyle& s, double x, Chance&) { s.Shape.WarpMm += 2 * x; }},
    {"borders", "the scanner's bed, black, around the paper",
     [](ScanStyle& s, double x, Chance&) {
       s.Shape.BorderMm += 12 * x;
       s.Bed = {22, 21, 20};
     }},
    // What became of the paper.
    {"tint", "yellowed and patchy paper",
     [](ScanStyle& s, double x, Chance&) {
       s.Paper = Mixed(s.Paper, {212, 182, 128}, x);
       s.Mottled = std::max(s.Mottled, 0.3 + x);
     }},
    {"folds", "up to 4 folds",
     [](ScanStyle& s, double x, Chance&) { s.Folds = std::max(1, Rounded(4 * x)); }},
    {"stains", "up to 8 stains",
     [](ScanStyle& s, double x, Chance&) {
       s.Stains = std::max(1, Rounded(8 * x));
       s.StainInk = 0.25 + 0.35 * x;
     }},
    {"holes", "punched holes",
     [](ScanStyle& s, double x, Chance&) { s.Holes = std::max(1, Rounded(4 * x)); }},
    {"writing", "dates, names, and from 0.6 notes all over the band",
     [](ScanStyle& s, double x, Chance&) { s.Writing = std::max(0.05, x); }},
    {"marks", "strokes of the observer across the line",
     [](ScanStyle& s, double x, Chance&) { s.TimeMarks = std::max(1, Rounded(6 * x)); }},
    {"worn", "print that is patchy",
     [](ScanStyle& s, double x, Chance&) { s.Worn = std::max(s.Worn, x); }},
    // The pen.
    {"faint", "pale ink", [](ScanStyle& s, double x, Chance&) { s.PenInk *= 1 - 0.75 * x; }},
    {"thin", "a fine nib",
     [](ScanStyle& s, double x, Chance&) { s.PenMm *= 1 - 0.65 * x; }},
    {"unsteady", "ink that varies, a trembling pen",
     [](ScanStyle& s, double x, Chance&) {
       s.Unsteady = std::max(s.Unsteady, 0.25 + 0.75 * x);
       s.TrembleMm = std::max(s.TrembleMm, 0.12 * x);
     }},
    {"dotted", "steep limbs of dots",
     [](ScanStyle& s, double x, Chance&) { s.Dotted = std::max(s.Dotted, 0.8 * x); }},
    {"gaps", "stretches without ink",
     [](ScanStyle& s, double x, Chance&) { s.Gaps = std::max(s.Gaps, 0.3 * x); }},
    {"blots", "up to 8 blots of ink on the line",
     [](ScanStyle& s, double x, Chance&) { s.Blots = std::max(1, Rounded(8 * x)); }},
    // The scanner.
    {"noise", "grain", [](ScanStyle& s, double x, Chance&) { s.Noise += 40 * x; }},
    {"salt", "up to 10% of pixels black or white",
     [](ScanStyle& s, double x, Chance&) { s.Salt += 0.1 * x; }},
    {"blur", "out of focus", [](ScanStyle& s, double x, Chance&) { s.BlurPx += 2.5 * x * s.Dpi / 300; }},
    {"shade", "a lamp that shines unevenly", [](ScanStyle& s, double x, Chance&) { s.Shade = x; }},
    {"pale", "contrast lost", [](ScanStyle& s, double x, Chance&) { s.Pale = 0.7 * x; }},
    {"jpeg", "a JPEG of quality 75 down to 5",
     [](ScanStyle& s, double x, Chance&) { s.JpegQuality = Rounded(75 - 70 * x); }},
    {"coarse", "resolution lost, down to a third",
     [](ScanStyle& s, double x, Chance&) { s.Dpi *= 1 - 0.667 * x; }},
    {"grey", "no colour", [](ScanStyle& s, double, Chance&) { s.Mode = ScanMode::Grey; }},
    {"bits", "black and white; the more, the more is taken for paper",
     [](ScanStyle& s, double x, Chance&) {
       s.Mode = ScanMode::Bits;
       s.Threshold = Rounded(215 - 60 * x);
     }},
});

}  // namespace

std::span<const ScanDamage> ScanDamages() { return Damages; }

Result<void> Damage(ScanStyle& style, std::string_view list, std::uint64_t seed) {
  while (!list.empty()) {
    const std::size_t comma = list.find(',');
    const std::string_view word = Trim(list.substr(0, comma));
    list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
    const std::size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    const auto damage = std::ranges::find(Damages, name, &ScanDamage::Name);
    if (damage == Damages.end()) return Failure("\"" + std::string(name) + "\" is no kind of damage");
    double strength = 0.5;
    if (equals != std::string_view::npos) {
      const auto value = WholeNumber(word.substr(equals + 1));
      if (!value || *value < 0 || *value > 1)
        return Failure("\"" + std::string(word) + "\": a strength goes from 0 to 1");
      strength = *value;
    }
    Chance chance(seed, name);
    damage->Do(style, strength, chance);
  }
  return {};
}

}  // namespace hyetex
