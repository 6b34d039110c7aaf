// How a drawn scan looks: the printed form, the pen, what became of the paper, and the scanner.
#pragma once

#include <optional>
#include <string>

#include "core/colour.h"
#include "scans/sheet.h"

namespace hyetex {

enum class ScanMode { Colour, Grey, Bits };

struct ScanStyle {
  double Dpi = 300;
  ScanMode Mode = ScanMode::Colour;

  // The form.
  std::string Title = "Rainfall recorder, mm";
  double FirstHour = 7;  ///< of the page's left end, as printed
  double ZeroMm = 0;     ///< height at which the pen shows 0, above the bottom line
  double BandMm = 0;     ///< height of the printed band; 0: the chart type's
  Rgb Grid{70, 140, 95};
  double PrintInk = 0.85;  ///< 0 to 1
  double Worn = 0.15;      ///< 0 to 1: how patchy the print is
  bool NightBars = true;   ///< dark bars between the hours of the night

  // The pen.
  Rgb Pen{45, 50, 130};
  double PenMm = 0.35;
  double PenInk = 0.95;      ///< 0 to 1
  double Unsteady = 0.25;    ///< 0 to 1: how width and darkness vary
  double TrembleMm = 0.025;  ///< how far the pen leaves its line at most
  double Dotted = 0;         ///< share of a steep limb that is left out
  double Gaps = 0;           ///< share of the line that has no ink
  int Blots = 0;

  // The paper.
  Rgb Paper{250, 249, 245};
  double Mottled = 0.2;  ///< 0 to 1: how its tint varies
  int Folds = 0;
  int Stains = 0;
  double StainInk = 0.4;  ///< 0 to 1
  int Holes = 0;
  double Writing = 0;            ///< 0 none, 0.5 what an observer fills in, 1 all over the band too
  std::string LaidOn, TakenOff;  ///< dates to write; empty: any
  int TimeMarks = 0;             ///< the observer's strokes across the line
  SheetShape Shape;

  // The scanner.
  Rgb Bed{238, 238, 236};  ///< what shows where there is no paper
  double BlurPx = 0.55;
  double Noise = 2.5;              ///< grey levels of 255
  double Salt = 0;                 ///< share of pixels that are black or white at random
  double Shade = 0;                ///< 0 to 1: how unevenly the lamp shines
  double Pale = 0;                 ///< 0 to 1: contrast lost
  int Threshold = 190;             ///< of 1-bit scans
  bool Dither = false;             ///< 1-bit scans: dots in place of a threshold
  std::optional<int> JpegQuality;  ///< 1 to 100: the image has been a JPEG of this quality
};

}  // namespace hyetex
