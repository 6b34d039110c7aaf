// A scanned chart traced by the program itself: the points of its pen line, and for every part of it how sure
// that is, with the reason in words where it is not.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/records.h"
#include "core/result.h"
#include "scan/scan_image.h"

namespace hyetex {

class BlankForm;
struct FormSheet;

/// What is known of a chart before it is traced.
struct TraceWish {
  ChartTypeRecord Paper;
  double StartHour = 0;  ///< of the day, at which the page's bottom line begins
  double Hours = 24;     ///< that the page spans
  /// The chart's rain as it is known from elsewhere, by eye and by a gage, mm; 0 or less where it is not.
  float EyedDepth = NoDepth, GageDepth = NoDepth;
  struct Place {
    double X = 0, Y = 0;
  };
  /// Of two lines on a chart that was left on its drum: 1 for the one that was written first, 2 for the
  /// other.
  int Line = 0;
  std::shared_ptr<const BlankForm> Form;  ///< of the chart type, where one is kept
  /// The left end of the page's bottom line in the image, pixels, where an operator has told it.
  std::optional<Place> Start;
};

struct ScanPoint {
  /// How the pen came to it, and so with which tool it is pressed.
  enum class Step { Along, Drop, Segment, GapEnd };

  Step How = Step::Along;
  double AlongMm = 0;   ///< from the page's start along its bottom line, a pen's arc taken off
  double HeightMm = 0;  ///< above the band's bottom edge
  double X = 0, Y = 0;  ///< in the image, pixels
  /// How sure the way from the point before is: 0 guessed, 1 no other way was near.
  float Confidence = 1;
};

/// A stretch of the line that a person should look at.
struct TraceDoubt {
  enum class Kind { Chart, NoInk, OtherWay, Emptying, SetAnew, Start, End };

  Kind What = Kind::Chart;
  double FromHour = 0, ToHour = 0;     ///< since the page's start
  int FirstPoint = 0, LastPoint = -1;  ///< the points that it is about; none for the whole chart
  std::string Why;
};

enum class TraceVerdict { Clean, ToReview, NotTraced };
/// "clean", "to review", "not traced".
std::string VerdictText(TraceVerdict verdict);

struct ScanTrace {
  TraceVerdict Verdict = TraceVerdict::NotTraced;
  std::vector<ScanPoint> Points;
  std::vector<TraceDoubt> Doubts;  ///< in order of time, those about the whole chart first
  /// By the line. Where the pen's falls count as rain, as on an arc chart, they are in it. The chart file of
  /// a tipping bucket takes its sum from the gage; this is what its steps add up to.
  double RainMm = 0;
  std::vector<double> EmptyingHours;  ///< or at which the pen was set back to the foot
  double Confidence = 0;              ///< 0 to 1, of the weakest that the rain hangs on
  double InkExplained = 0;            ///< 0 to 1: the share of the sheet's pen ink that lies on the line
  double PixelsPerMm = 0;             ///< of the image, by its grid
};

/// A scan whose grid has been found and whose ink has been told from its form.
class ScanTracer {
 public:
  /// Takes a second or so. Fails, in words, where there is no grid of this chart type, or no pen line.
  static Result<ScanTracer> Open(const ScanImage& image, const TraceWish& wish);
  ScanTracer(ScanTracer&&) noexcept;
  ScanTracer& operator=(ScanTracer&&) noexcept;
  ~ScanTracer();

  /// The whole chart. What cannot be traced says so in a doubt.
  ScanTrace Trace() const;
  /// The line between two of its places, given by their hours since the page's start and their heights.
  ScanTrace Between(double fromHour, double fromHeightMm, double toHour, double toHeightMm) const;

  /// Where an hour and a height lie in the image, and what lies at a place of it.
  TraceWish::Place InImage(double hour, double heightMm) const;
  ScanPoint OnPaper(double x, double y) const;
  double PixelsPerMm() const;
  double BandMm() const;

 private:
  struct Data;
  explicit ScanTracer(std::unique_ptr<Data> data);
  std::unique_ptr<Data> data_;
};

/// A chart laid flat, for the form of its chart type. Fails as ScanTracer::Open does, and where the hour of
/// its start is not sure.
Result<FormSheet> SheetForForm(const ScanImage& image, const TraceWish& wish);

/// A trace left so much ink that a second line lies on the sheet: each is traced with TraceWish::Line. Takes
/// a few seconds where there is much ink left, and no time else.
bool IsOneOfTwoLines(const ScanTrace& trace, const ScanImage& image, TraceWish wish);

/// Opens and traces; what fails is a chart that is not traced, with its reason.
ScanTrace TraceScan(const ScanImage& image, const TraceWish& wish);

}  // namespace hyetex
