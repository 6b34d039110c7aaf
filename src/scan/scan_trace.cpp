#include "scan/scan_trace.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

#include "core/numbers.h"
#include "scan/arc_pen.h"
#include "scan/blank_form.h"
#include "scan/doubts.h"
#include "scan/letters.h"
#include "scan/path_points.h"
#include "scan/scan_scale.h"
#include "scan/sheet_reading.h"
#include "scan/tipping_pen.h"
#include "scan/two_lines.h"

namespace hyetex {
namespace {

constexpr double MarginMm = 4;          // of paper around what is traced, for what looks around a place
constexpr double WithinMm = 0.15;       // of the path: half a pen's width
constexpr double GapHours = 0.75;       // without ink, from which on it is told as a gap
constexpr double GapMm = 4;             // and on charts of a week, so long
constexpr double LeastContrast = 0.05;  // of a pen against its paper
constexpr double LeastExplained = 0.3, SureExplained = 0.88;
constexpr double MostOfOneLine = 0.75;    // of the ink explains one of two lines
constexpr double LeastOnLine = 0.15;      // ink on the line, where the form does not hide it
constexpr double LeastOfContrast = 0.32;  // has a line's mean ink, where most of it is hidden
constexpr double ScaleOff = 0.06;         // of the file's own resolution: more than paper shrinks
constexpr double MostBand = 1.5;          // of the chart type's height
constexpr double MostBowMm = 3.5;         // of a warped sheet's hours, beyond the chart type's arc
constexpr std::size_t ManyDoubts = 10;
constexpr double DoubtfulShare = 0.4;  // of the chart's hours

std::string Dpi(double pixelsPerMm) { return std::to_string(std::lround(pixelsPerMm * MmPerInch)); }

// Stretches overlap; in order of time.
bool IsMostlyDoubtful(std::span<const TraceDoubt> stretches, double hours) {
  double doubtful = 0, past = 0;
  for (const TraceDoubt& doubt : stretches) {
    doubtful += std::max(0.0, doubt.ToHour - std::max(past, doubt.FromHour));
    past = std::max(past, doubt.ToHour);
  }
  return stretches.size() >= ManyDoubts || doubtful > DoubtfulShare * hours;
}

void AddInTime(std::vector<TraceDoubt>& stretches, std::vector<TraceDoubt> more) {
  std::move(more.begin(), more.end(), std::back_inserter(stretches));
  std::stable_sort(stretches.begin(), stretches.end(),
                   [](const TraceDoubt& a, const TraceDoubt& b) { return a.FromHour < b.FromHour; });
}

double RainOf(std::span<const ScanPoint> points, const ChartTypeRecord& paper) {
  const bool falls = paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear);
  double mm = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    if (points[i].How != ScanPoint::Step::Along) continue;
    const double rise = points[i].HeightMm - points[i - 1].HeightMm;
    mm += falls ? std::abs(rise) : std::max(0.0, rise);
  }
  return mm * paper.DepthScale;
}

// As a session takes it.
double PageHeightMm(const ChartTypeRecord& paper) {
  return paper.ChartHeightMm > 0 ? paper.ChartHeightMm : ChartTypeRecord{}.ChartHeightMm;
}

std::optional<std::string> CheckMethod(const ChartTypeRecord& paper) {
  if (paper.ChartMethod < 0 || paper.ChartMethod > static_cast<std::int16_t>(ChartMethod::TippingBucket))
    return "the chart type has no known chart method";
  if (paper.ChartMethod != static_cast<std::int16_t>(ChartMethod::NonLinear)) return std::nullopt;
  if (!(paper.MiddleToBottomMm > 0 && paper.MiddleToBottomMm <= PageHeightMm(paper) / 2))
    return "the chart type's arc is none: it wants the distance from its middle to its bottom, no more than "
           "half the chart's height";
  return std::nullopt;
}

}  // namespace

std::string VerdictText(TraceVerdict verdict) {
  return verdict == TraceVerdict::Clean      ? "clean"
         : verdict == TraceVerdict::ToReview ? "to review"
                                             : "not traced";
}

struct ScanTracer::Data : SheetReading {
  TraceWish Wish;
  Lattice Grid;
  std::optional<double> FilePixelsPerMm;

  bool Is(ChartMethod method) const { return Method == method; }
  ScanTrace Told(const PenPath& path, bool whole = true) const;
};

// A stretch is not judged by what the whole sheet's ink says: a person has said where it begins and ends.
ScanTrace ScanTracer::Data::Told(const PenPath& path, bool whole) const {
  ScanTrace trace;
  trace.PixelsPerMm = Grid.PixelsPerMm();
  const std::vector<Blank> gaps = FindBlanks(path, Flat, std::max(GapMm, GapHours / Wish.Paper.TimeScale));
  const std::vector<float> sure = ConfidenceOfColumns(path);
  std::size_t column = 0;
  std::vector<PathPoint> points = PointsOfPath(path, Flat, Ink, Falls, gaps, WithinMm);
  for (const PathPoint& point : points)
    if (point.How == PathPoint::Step::Drop)
      trace.EmptyingHours.push_back(point.AlongMm * Wish.Paper.TimeScale);
  TippedLine tipped;
  if (Is(ChartMethod::NonLinear)) points = PointsOnArc(std::move(points), PageHeightMm(Wish.Paper));
  if (Is(ChartMethod::TippingBucket)) {
    tipped = PointsOfTips(path, Flat, points);
    points = tipped.Points;
  }
  for (const PathPoint& point : points) {
    ScanPoint told{static_cast<ScanPoint::Step>(point.How), point.AlongMm, point.HeightMm, 0, 0, 1};
    const cv::Point2d place = Grid.ToImage({point.AlongMm, point.HeightMm});
    told.X = place.x;
    told.Y = place.y;
    for (; column <= static_cast<std::size_t>(point.Column) && column < sure.size(); ++column)
      told.Confidence = std::min(told.Confidence, sure[column]);
    trace.Points.push_back(told);
  }
  trace.RainMm = RainOf(trace.Points, Wish.Paper);
  if (!whole) {
    trace.Verdict = TraceVerdict::ToReview;
    return trace;
  }
  trace.InkExplained = ExplainedInk(path, Falls, Flat, Ink, Reach);

  const auto chart = [&](std::string why) {
    trace.Doubts.push_back({TraceDoubt::Kind::Chart, 0, Wish.Hours, 0, -1, std::move(why)});
  };
  double onLine = 0, seen = 1e-9, ink = 0;
  for (const PathColumn& at : path.Columns) {
    onLine += at.Ink * (1 - at.Hidden);
    seen += 1 - at.Hidden;
    ink += at.Ink / static_cast<float>(path.Columns.size());
  }
  // A pen that is seldom set back may lie on printed lines all the time: then little of it is seen anywhere.
  const bool mostlyHidden =
      !Is(ChartMethod::Linear) && trace.InkExplained == 0 && ink > LeastOfContrast * Ink.Contrast;

  if (Ink.Contrast < LeastContrast || onLine / seen < LeastOnLine ||
      (trace.InkExplained < LeastExplained && !mostlyHidden)) {
    trace.Points.clear();
    trace.EmptyingHours.clear();
    trace.RainMm = 0;
    chart("No pen line stands out from the printed form.");
    return trace;
  }
  if (FilePixelsPerMm && std::abs(Grid.PixelsPerMm() / *FilePixelsPerMm - 1) > ScaleOff)
    chart("The printed grid lies as on a scan of " + Dpi(Grid.PixelsPerMm()) + " dpi, the file says " +
          Dpi(*FilePixelsPerMm) + ": confirm the chart type \"" + Wish.Paper.Name + "\".");
  // With another hour every stretch would lie elsewhere.
  for (const std::string& doubt : Grid.Doubts())
    trace.Doubts.push_back({TraceDoubt::Kind::Start, 0, Wish.Hours, 0, -1, doubt});
  if (Wish.Line != 0)
    chart("Of two lines this is taken for the " + std::string(Wish.Line == 1 ? "first" : "second") +
          ": confirm which of the days it is.");
  if (mostlyHidden)
    chart("Hardly any of the line stands out from the printed form: confirm that it is the pen's.");
  else if (trace.InkExplained < SureExplained)
    chart("There is ink on the chart that the line does not explain: another line, or one that was missed.");
  for (TraceDoubt& doubt : DoubtsOfDepth(trace.RainMm, Wish)) trace.Doubts.push_back(std::move(doubt));
  std::vector<TraceDoubt> stretches = DoubtsOfPath({path, Flat, Ink, Falls, Uprights, Reach, Wish});
  if (Is(ChartMethod::NonLinear)) AddInTime(stretches, DoubtsOfFalls(points, Wish));
  if (Is(ChartMethod::TippingBucket)) {
    ForgetHiddenSteps(stretches, tipped, Wish);
    AddInTime(stretches, DoubtsOfTips(tipped, Wish));
  }
  if (IsMostlyDoubtful(stretches, Wish.Hours))
    trace.Doubts.push_back({TraceDoubt::Kind::OtherWay, 0, Wish.Hours, 0, -1,
                            "So much of this chart is doubtful that the rest is not to be trusted either."});
  for (TraceDoubt& doubt : stretches) trace.Doubts.push_back(std::move(doubt));
  for (TraceDoubt& doubt : trace.Doubts) {
    if (doubt.FromHour <= 0 && doubt.ToHour >= Wish.Hours) continue;
    const auto hour = [&](const ScanPoint& point) { return point.AlongMm * Wish.Paper.TimeScale; };
    const auto from = std::find_if(trace.Points.begin(), trace.Points.end(),
                                   [&](const ScanPoint& point) { return hour(point) > doubt.FromHour; });
    const auto past = std::find_if(from, trace.Points.end(),
                                   [&](const ScanPoint& point) { return hour(point) >= doubt.ToHour; });
    doubt.FirstPoint = std::max(0, static_cast<int>(from - trace.Points.begin()) - 1);
    doubt.LastPoint =
        std::min(static_cast<int>(trace.Points.size()) - 1, static_cast<int>(past - trace.Points.begin()));
  }
  // A tenth of the way may be weak without the sum hanging on it.
  std::vector<float> sorted = sure;
  std::sort(sorted.begin(), sorted.end());
  trace.Confidence = sorted.empty() ? 0 : sorted[sorted.size() / 10];
  trace.Verdict = trace.Doubts.empty() ? TraceVerdict::Clean : TraceVerdict::ToReview;
  return trace;
}

ScanTracer::ScanTracer(std::unique_ptr<Data> data) : data_(std::move(data)) {}
ScanTracer::ScanTracer(ScanTracer&&) noexcept = default;
ScanTracer& ScanTracer::operator=(ScanTracer&&) noexcept = default;
ScanTracer::~ScanTracer() = default;

namespace {

// A scan by its grid.
struct LaidScan {
  Lattice Grid;
  PenReach Reach;
  FlatChart Flat;
};

Result<LaidScan> Lay(const ScanImage& image, const TraceWish& wish) {
  if (!(wish.Hours > 0) || !(wish.Paper.TimeScale > 0) || !(wish.Paper.DepthScale > 0))
    return Failure("the chart has no length, or its chart type no scales");
  if (auto refusal = CheckMethod(wish.Paper)) return Failure(*refusal);
  auto lattice = Lattice::Find(image, {wish.Paper, wish.StartHour, wish.Hours});
  if (!lattice) return Failure(lattice.error());
  if (wish.Paper.ChartHeightMm > 0 && lattice->BandMm() > MostBand * wish.Paper.ChartHeightMm)
    return Failure("the printed grid would be " + ShortText(std::round(lattice->BandMm())) +
                   " mm high, and that of the chart type is " + ShortText(wish.Paper.ChartHeightMm) + " mm");
  if (std::abs(lattice->BowMm()) > MostBowMm)
    return Failure(wish.Paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear)
                       ? "the printed hours stand on other arcs than those of the chart type, or on none"
                       : "the printed hours stand on arcs, and the chart type has a straight pen");
  if (wish.Start) lattice->StartAt({wish.Start->X, wish.Start->Y});
  PenReach reach;
  // The chart type's height is the page's, which may be printed higher or lower than the band.
  reach.TopMm = lattice->BandMm();
  if (wish.Paper.ChartHeightMm > 0.5F * static_cast<float>(reach.TopMm))
    reach.TopMm = std::min(reach.TopMm, static_cast<double>(wish.Paper.ChartHeightMm) + 0.5);
  const double pageMm = wish.Hours / wish.Paper.TimeScale;
  FlatChart flat =
      LayFlat(image, *lattice, {-MarginMm, pageMm + MarginMm, -MarginMm, reach.TopMm + MarginMm});
  return LaidScan{*std::move(lattice), reach, std::move(flat)};
}

FormSheet FormSheetOf(const FlatChart& flat, const TraceWish& wish) {
  return {flat, wish.StartHour / wish.Paper.TimeScale};
}

}  // namespace

Result<ScanTracer> ScanTracer::Open(const ScanImage& image, const TraceWish& wish) {
  auto laid = Lay(image, wish);
  if (!laid) return Failure(laid.error());
  auto data = std::make_unique<Data>();
  data->Wish = wish;
  data->FilePixelsPerMm = image.PixelsPerMm();
  data->Method = static_cast<ChartMethod>(wish.Paper.ChartMethod);
  data->Costs = PenCosts::For(data->Method);
  data->Reach = laid->Reach;
  data->Flat = std::move(laid->Flat);
  data->Grid = std::move(laid->Grid);
  data->Ink = FindPenInk(data->Flat, wish.Form ? wish.Form->On(FormSheetOf(data->Flat, wish)) : cv::Mat());
  const double pageMm = wish.Hours / wish.Paper.TimeScale;
  TakeOutLetters(data->Ink, data->Flat.PixelsPerMm);
  TakeOutPageEnds(data->Ink, data->Flat, pageMm);
  data->First = static_cast<int>(std::lround(data->Flat.Column(0)));
  data->Past = static_cast<int>(std::lround(data->Flat.Column(pageMm))) + 1;
  if (wish.Line == 0) {
    data->TellFalls();
  } else {
    auto one = ReadOneOfTwo(*data, wish.Line);
    if (!one) return Failure(one.error());
    static_cast<SheetReading&>(*data) = *std::move(one);
  }
  return ScanTracer(std::move(data));
}

ScanTrace ScanTracer::Trace() const { return data_->Told(data_->Path()); }

ScanTrace ScanTracer::Between(double fromHour, double fromHeightMm, double toHour, double toHeightMm) const {
  const FlatChart& flat = data_->Flat;
  const double scale = data_->Wish.Paper.TimeScale;
  const int first =
      std::clamp(static_cast<int>(std::lround(flat.Column(fromHour / scale))), data_->First, data_->Past - 2);
  const int past =
      std::clamp(static_cast<int>(std::lround(flat.Column(toHour / scale))) + 1, first + 2, data_->Past);
  const PathEnds ends{static_cast<int>(std::lround(flat.Row(fromHeightMm))),
                      static_cast<int>(std::lround(flat.Row(toHeightMm)))};
  return data_->Told(data_->Path(first, past, ends), false);
}

TraceWish::Place ScanTracer::InImage(double hour, double heightMm) const {
  const cv::Point2d place = data_->Grid.ToImage({hour / data_->Wish.Paper.TimeScale, heightMm});
  return {place.x, place.y};
}

ScanPoint ScanTracer::OnPaper(double x, double y) const {
  const cv::Point2d place = data_->Grid.ToPaper({x, y});
  return {ScanPoint::Step::Along, place.x, place.y, x, y, 1};
}

double ScanTracer::PixelsPerMm() const { return data_->Grid.PixelsPerMm(); }
double ScanTracer::BandMm() const { return data_->Grid.BandMm(); }

Result<FormSheet> SheetForForm(const ScanImage& image, const TraceWish& wish) {
  auto laid = Lay(image, wish);
  if (!laid) return Failure(laid.error());
  if (!laid->Grid.Doubts().empty()) return Failure(laid->Grid.Doubts().front());
  return FormSheetOf(laid->Flat, wish);
}

bool IsOneOfTwoLines(const ScanTrace& trace, const ScanImage& image, TraceWish wish) {
  if (wish.Line != 0 || trace.Points.empty() || trace.InkExplained >= MostOfOneLine) return false;
  wish.Line = 1;
  return ScanTracer::Open(image, wish).has_value();
}

ScanTrace TraceScan(const ScanImage& image, const TraceWish& wish) {
  const auto tracer = ScanTracer::Open(image, wish);
  if (tracer) return tracer->Trace();
  ScanTrace trace;
  trace.Doubts.push_back(
      {TraceDoubt::Kind::Chart, 0, wish.Hours, 0, -1, "Not traced: " + tracer.error() + "."});
  return trace;
}

}  // namespace hyetex
