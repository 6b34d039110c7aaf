// How the grid of a scan is found: its scale by the spectra of its lines, its shape by their phases, and then
// which line is which.
#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "core/numbers.h"
#include "scan/grid_scale.h"
#include "scan/hour_labels.h"
#include "scan/line_fitter.h"
#include "scan/printed_lines.h"

namespace hyetex {
namespace {

constexpr double MostPixelsPerMm = 10;                  // lines are fitted no finer than this
constexpr double LeastClear = 0.5;                      // of the picture, that follows the fitted lines
constexpr double LeastPeriodPixels = 3.5;               // from line to line
constexpr double FineShare = 0.08, FinePresent = 0.75;  // of a heavy line's ink, and of the lines between two
constexpr double CoarseMm = 3;                          // between lines of the depths: fine ones are lost
constexpr double FineLinesLost = 3;                     // times as much ink have heavy lines more
constexpr double BandOff = 0.07;                        // of the chart type's height
constexpr double ClosestHoursMm = 2, ClosestDepthsMm = 0.7;  // that printers set lines
constexpr double LeastHourMm = 8;                            // to the next hour, for a number above each
constexpr double LeastBand = 0.65;                           // of the height that the chart type has
constexpr std::pair<double, int> WornLines[] = {{0.25, 3}, {0.15, 5}, {0.1, 8}};  // share, missing
constexpr double MajorsMm = 10;  // from one heavy line of the depths to the next, at most
// The header with the printed hours has so much more print than the foot; below, a sheet stands on its head.
constexpr double HeaderIsAbove = 0.75;
constexpr double MajorsStandOut = 0.10;
constexpr double InkOfLines = 0.85;    // of an arc chart's band is no darker than its fine lines
constexpr double BetweenLines = 0.05;  // of a line's distance: the page starts on no line
constexpr double LostBetween = 3;      // lines of the hours

}  // namespace

class LatticeFinder {
 public:
  LatticeFinder(const ScanImage& image, const PageSpan& page, const GridScale& scale)
      : image_(image), page_(page), scale_(scale) {
    lattice_.page_ = page;
    lattice_.acrossMm_ = scale.AcrossMm;
    lattice_.upMm_ = scale.UpMm;
    lattice_.pixelsPerMm_ = scale.PixelsPerMm;
  }

  /// `overHead`: as if the scan stood on its head.
  Result<Lattice> Find(bool overHead) {
    overHead_ = overHead;
    lattice_.doubts_.clear();
    Picture();
    const LineFitter fitter(ink_, scale_.PixelsPerMm / step_);
    lattice_.upMm_ = scale_.UpMm;
    lattice_.acrossMm_ = scale_.AcrossMm;
    auto depths = fitter.FitLines(scale_.UpMm * scale_.UpPixelsPerMm / step_, false, {}, {});
    if (depths.Clear < LeastClear) return NoGrid("depths");
    TakeFinerLines(fitter, {}, {}, depths, lattice_.upMm_);
    lattice_.depths_ = depths.Field;
    FindBand();
    const cv::Mat leads = Leads(), band = InBand();
    const cv::Mat lined = leads.empty() ? ink_ : InkOfBand();
    const LineFitter across(lined, scale_.PixelsPerMm / step_);
    auto hours = across.FitLines(scale_.AcrossMm * scale_.AcrossPixelsPerMm / step_, true, leads, band);
    if (hours.Clear < LeastClear) return NoGrid("hours");
    TakeFinerLines(across, leads, band, hours, lattice_.acrossMm_);
    lattice_.hours_ = hours.Field;
    lattice_.residualMm_ = std::max(hours.ResidualPx, depths.ResidualPx) * step_ / scale_.PixelsPerMm;
    if (const auto found = FindStart(); !found) return Failure(found.error());
    return lattice_;
  }

  /// Print about the band's top for that about its bottom edge.
  double HeaderShare() const {
    constexpr double Inside = 5, Outside = 9;
    const double band = lattice_.bandMm_;
    return Words(band - Inside, band + Outside) / std::max(1.0, Words(-Outside, Inside));
  }

 private:
  static tl::unexpected<std::string> NoGrid(const std::string& what) {
    return Failure("the printed lines of the " + what +
                   " are not clear enough to be followed over the sheet");
  }

  // The image as it stands upright, as ink.
  void Picture() {
    step_ = std::max(1.0, scale_.PixelsPerMm / MostPixelsPerMm);
    const double w = image_.Width(), h = image_.Height(), s = step_;
    const bool upright = scale_.Upright;
    const cv::Size size(static_cast<int>((upright ? w : h) / s), static_cast<int>((upright ? h : w) / s));
    // Where the picture's corner and the steps to the right and down lie in the image.
    constexpr double cosine[] = {1, 0, -1, 0}, sine[] = {0, 1, 0, -1};
    const int quarters = (upright ? 0 : 1) + (overHead_ ? 2 : 0);
    const double c = cosine[quarters] * s, d = sine[quarters] * s;
    const double left = quarters == 2 || quarters == 3 ? w : 0, top = quarters == 1 || quarters == 2 ? h : 0;
    const cv::Mat colours = RenderColours(image_, {left, top, c, -d, d, c}, size);
    lattice_.toImage_ = {c, d, left, -d, c, top};
    const double square = s * s;
    lattice_.toPicture_ = {c / square, -d / square, (d * top - c * left) / square,
                           d / square, c / square,  -(d * left + c * top) / square};
    ink_.create(colours.size(), CV_32F);
    for (int y = 0; y < colours.rows; ++y) {
      const auto* from = colours.ptr<cv::Vec3b>(y);
      auto* to = ink_.ptr<float>(y);
      for (int x = 0; x < colours.cols; ++x)
        to[x] = 1 - static_cast<float>(std::min({from[x][0], from[x][1], from[x][2]})) / 255;
    }
  }

  // On an arc chart, how many lines of the hours a place's number has more than on a straight one.
  cv::Mat Leads() const {
    if (ArcLeadMm(page_.Paper, page_.Paper.ChartHeightMm / 2) <= 0) return {};
    constexpr int Apart = 32;
    cv::Mat coarse(ink_.rows / Apart + 1, ink_.cols / Apart + 1, CV_32F), leads;
    for (int y = 0; y < coarse.rows; ++y)
      for (int x = 0; x < coarse.cols; ++x) {
        const double up = -lattice_.depths_.At((x + 0.5) * Apart, (y + 0.5) * Apart) * lattice_.upMm_;
        coarse.at<float>(y, x) = static_cast<float>(ArcLeadMm(page_.Paper, up) / lattice_.acrossMm_);
      }
    cv::resize(coarse, leads, {coarse.cols * Apart, coarse.rows * Apart}, 0, 0, cv::INTER_LINEAR);
    return leads(cv::Rect(0, 0, ink_.cols, ink_.rows)).clone();
  }

  // What is printed above and below the band leans as no arc does, and the upright limbs of a pen are darker
  // than any line.
  cv::Mat InkOfBand() const {
    cv::Mat band = ink_.clone();
    std::vector<float> some;
    for (int y = 0; y < band.rows; ++y) {
      auto* row = band.ptr<float>(y);
      for (int x = 0; x < band.cols; ++x) {
        const double up = -lattice_.depths_.At(x + 0.5, y + 0.5) * lattice_.upMm_;
        if (up < 0 || up > lattice_.bandMm_)
          row[x] = 0;
        else if ((x + y) % 16 == 0)
          some.push_back(row[x]);
      }
    }
    if (some.empty()) return band;
    const auto line =
        some.begin() + static_cast<std::ptrdiff_t>(InkOfLines * static_cast<double>(some.size()));
    std::nth_element(some.begin(), line, some.end());
    return cv::min(band, static_cast<double>(*line));
  }

  // Fine lines that a threshold or a blur has all but taken away are found when the heavy ones are followed.
  void TakeFinerLines(const LineFitter& fitter, const cv::Mat& leads, const cv::Mat& where,
                      LineFitter::Fit& fit, double& mm) const {
    const bool hours = &mm == &lattice_.acrossMm_;
    for (const double step : PrintedSteps(page_.Paper, hours)) {
      const int times = static_cast<int>(std::lround(mm / step));
      if (times < 2 || step < (hours ? ClosestHoursMm : ClosestDepthsMm) ||
          std::abs(times * step / mm - 1) > 1e-3 || step * scale_.PixelsPerMm / step_ < LeastPeriodPixels)
        continue;
      auto fine = fitter.FitFiner(fit.Field, times, leads, where);
      if (fine.Clear < LeastClear || !StandOut(fine.Field, times, leads, where)) continue;
      fit = std::move(fine);
      mm = step;
      return;
    }
  }

  // Whether there is more ink on the lines of a field than between them, leaving out each one of `times`.
  bool StandOut(const LineField& field, int times, const cv::Mat& leads, const cv::Mat& where) const {
    constexpr int Bins = 8, Apart = 3;
    std::vector<double> sums(static_cast<std::size_t>(times * Bins), 1e-9), counts(sums);
    for (int y = 1; y < ink_.rows; y += Apart)
      for (int x = 1; x < ink_.cols; x += Apart) {
        if (!where.empty() && where.at<std::uint8_t>(y, x) == 0) continue;
        const double number =
            field.At(x + 0.5, y + 0.5) / times + (leads.empty() ? 0.0 : leads.at<float>(y, x));
        const double part = (number - std::floor(number)) * times * Bins + 0.5;
        const auto bin = static_cast<std::size_t>(part) % sums.size();
        sums[bin] += ink_.at<float>(y, x);
        counts[bin] += 1;
      }
    const auto at = [&](int bin) {
      double sum = 0, count = 0;
      for (int i = bin - 1; i <= bin + 1; ++i) {
        const auto n = (static_cast<std::size_t>(i) + sums.size()) % sums.size();
        sum += sums[n];
        count += counts[n];
      }
      return sum / count;
    };
    const auto over = [&](int line) {
      const int bin = line * Bins;
      return at(bin) - (at(bin - Bins / 2) + at(bin + Bins / 2)) / 2;
    };
    const double heavy = over(0);
    int clear = 0;
    for (int line = 1; line < times; ++line) clear += over(line) > FineShare * heavy ? 1 : 0;
    return clear >= FinePresent * (times - 1);
  }

  // Only the band has lines of the hours: numbers and bars above it would bend them.
  cv::Mat InBand() const {
    constexpr int Apart = 16;
    cv::Mat coarse(ink_.rows / Apart + 1, ink_.cols / Apart + 1, CV_8U), band;
    for (int y = 0; y < coarse.rows; ++y)
      for (int x = 0; x < coarse.cols; ++x) {
        const double up = -lattice_.depths_.At((x + 0.5) * Apart, (y + 0.5) * Apart) * lattice_.upMm_;
        coarse.at<std::uint8_t>(y, x) = up > 0 && up < lattice_.bandMm_ ? 255 : 0;
      }
    cv::resize(coarse, band, {coarse.cols * Apart, coarse.rows * Apart}, 0, 0, cv::INTER_NEAREST);
    return band(cv::Rect(0, 0, ink_.cols, ink_.rows));
  }

  double InkAround(double x, double y) const {
    const int column = static_cast<int>(x), row = static_cast<int>(y);
    if (column < 1 || row < 1 || column + 1 >= ink_.cols || row + 1 >= ink_.rows) return -1;
    double sum = 0;
    for (int i = -1; i <= 1; ++i)
      for (int j = -1; j <= 1; ++j) sum += ink_.at<float>(row + i, column + j);
    return sum / 9;
  }

  // `place` takes a share of the way along a line, and the line's number.
  template <typename Place>
  InkOnLines Measure(double middle, double half, const Place& place) const {
    constexpr int Samples = 300, Fewest = 24;
    InkOnLines lines{static_cast<int>(std::floor(middle - half)), {}};
    for (int line = lines.First; line <= std::ceil(middle + half); ++line) {
      double sum = 0;
      int count = 0;
      const auto inkAt = [&](double share, double number) {
        const cv::Point2d at = place(share, number);
        return InkAround(at.x, at.y);
      };
      for (int i = 0; i < Samples; ++i) {
        const double share = (i + 0.5) / Samples, on = inkAt(share, line);
        if (on < 0) continue;
        const double before = inkAt(share, line - 0.5), behind = inkAt(share, line + 0.5);
        sum += on - (before < 0 || behind < 0 ? std::max({before, behind, 0.0}) : (before + behind) / 2);
        ++count;
      }
      lines.Ink.push_back(count < Fewest ? 0 : sum / count);
    }
    return lines;
  }

  // How much is printed between two heights beside lines: numbers and words, told by their edges, since the
  // scanner's bed may be dark.
  double Words(double fromMm, double toMm) const {
    constexpr double right = 0.12, up = 0.37;
    const int columns = static_cast<int>(std::ceil(page_.Hours / page_.Paper.TimeScale / right));
    const int rows = static_cast<int>(std::ceil((toMm - fromMm) / up));
    double sum = 0;
    for (int row = 0; row < rows; ++row) {
      double before = -1;
      for (int column = 0; column < columns; ++column) {
        const cv::Point2d at = lattice_.ToPicture({column * right, fromMm + row * up});
        const double ink = InkAround(at.x, at.y);
        if (ink >= 0 && before >= 0) sum += std::abs(ink - before);
        before = ink;
      }
    }
    return sum;
  }

  // The lines of the depths that are there: from the band's bottom edge to its top.
  void FindBand() {
    LineField& depths = lattice_.depths_;
    const auto place = [&](double share, double number) {
      const double x = (0.04 + 0.92 * share) * ink_.cols;
      double y = ink_.rows / 2.0;
      for (int i = 0; i < 6; ++i) y += (number - depths.At(x, y)) * depths.Period();
      return cv::Point2d(x, y);
    };
    const double middle = depths.At(ink_.cols / 2.0, ink_.rows / 2.0),
                 half = ink_.rows / 2.0 / depths.Period();
    const InkOnLines lines = Measure(middle, half, place);
    // Where a threshold has taken fine lines away, more may be missing; how high the band is, its chart type
    // knows about.
    LineRun run = LongestRun(lines);
    const double most = page_.Paper.ChartHeightMm / lattice_.upMm_;
    // Where hardly more than heavy lines are left, the band's own edges may stand by themselves, too.
    const bool thin = FoldLines(lines, run, {5, 10}).StandOut > FineLinesLost;
    const double least = (thin ? 1 - BandOff : LeastBand) * most;
    const bool worn = run.Last - run.First < least;
    for (const auto& [share, missing] : WornLines)
      if (run.Last - run.First < least) run = LongestRun(lines, share, missing);
    if (run.Last - run.First < least) run = AllLines(lines);
    if (worn || (thin && run.Last - run.First < most - 1))
      TakeHeavyLinesAround(lines, static_cast<int>(MajorsMm / lattice_.upMm_), static_cast<int>(most) + 1,
                           run);
    const double off = (run.Last - run.First) / std::max(1.0, most) - 1;
    if (lattice_.upMm_ > CoarseMm || (worn && std::abs(off) > BandOff))
      lattice_.doubts_.emplace_back(
          "Of the printed lines of the depths only some are left: confirm where the band's bottom edge "
          "lies.");
    depths.Shift(-run.Last);
    lattice_.bandMm_ = (run.Last - run.First) * lattice_.upMm_;
  }

  std::vector<LabelWidth> LabelsAbove(const LineRun& run, const HeavyLines& majors, int inAnHour) const {
    std::vector<LabelWidth> labels;
    if (majors.Every != inAnHour || inAnHour * lattice_.acrossMm_ < LeastHourMm) return labels;
    for (int line = run.First; line <= run.Last; ++line) {
      if ((line % inAnHour + inAnHour) % inAnHour != majors.Class) continue;
      const double width = EdgesBeside(line * lattice_.acrossMm_);
      if (width >= 0) labels.push_back({static_cast<double>(line) / inAnHour, width});
    }
    return labels;
  }

  // What is printed beside the middle of a number above the band; below 0 outside of the picture.
  double EdgesBeside(double alongMm) const {
    constexpr double FromMm = 1, ToMm = 2.1, LowMm = 0.8, HighMm = 7, RightMm = 0.15, UpMm = 0.25;
    double sum = 0;
    int rows = 0;
    for (int row = 0; LowMm + row * UpMm < HighMm; ++row) {
      const double up = LowMm + row * UpMm;
      double edges = 0;
      bool seen = true;
      for (const double side : {-1.0, 1.0}) {
        double before = -1;
        for (int column = 0; FromMm + column * RightMm < ToMm; ++column) {
          const double right = FromMm + column * RightMm;
          const cv::Point2d at = lattice_.ToPicture({alongMm + side * right, lattice_.bandMm_ + up});
          const double ink = InkAround(at.x, at.y);
          seen = seen && ink >= 0;
          if (before >= 0) edges += std::abs(ink - before);
          before = ink;
        }
      }
      if (!seen) continue;
      sum += edges;
      ++rows;
    }
    return rows < 4 ? -1 : sum;
  }

  Result<void> FindStart() {
    LineField& hours = lattice_.hours_;
    const double band = lattice_.bandMm_ / lattice_.upMm_;
    const auto place = [&](double share, double number) {
      const double depth = -share * band;
      const double lead = ArcLeadMm(page_.Paper, share * lattice_.bandMm_) / lattice_.acrossMm_;
      cv::Point2d at{ink_.cols / 2.0, ink_.rows / 2.0};
      for (int i = 0; i < 6; ++i) {
        at.x += (number - lead - hours.At(at.x, at.y)) * hours.Period();
        at.y += (depth - lattice_.depths_.At(at.x, at.y)) * lattice_.depths_.Period();
      }
      return at;
    };
    const double middle = hours.At(ink_.cols / 2.0, ink_.rows / 2.0), half = ink_.cols / 2.0 / hours.Period();
    const InkOnLines lines = Measure(middle, half, place);
    const double lineHours = lattice_.acrossMm_ * page_.Paper.TimeScale;
    // A page that starts between two lines has one less, and its own ends are printed beside the outermost.
    const double started = page_.StartHour / lineHours;
    const double between = std::abs(started - std::round(started)) > BetweenLines ? LostBetween : 0;
    const double inside = page_.Hours / lineHours - between;
    LineRun run = LongestRun(lines);
    const bool worn = run.Last - run.First < inside;
    for (const auto& [share, missing] : WornLines)
      if (run.Last - run.First < inside) run = LongestRun(lines, share, missing);
    if (run.Last - run.First < inside) run = AllLines(lines);
    const int inAnHour = static_cast<int>(std::lround(1 / lineHours));
    // Heavy lines, an hour apart, go on beyond where fine ones are lost.
    const int most = static_cast<int>(page_.Hours / lineHours) + 2 * inAnHour;
    for (int before = -1; worn && inAnHour > 1 && before != run.Last - run.First;) {
      before = run.Last - run.First;
      TakeHeavyLinesAround(lines, inAnHour, most, run);
    }
    const HeavyLines majors =
        inAnHour > 1 ? FoldLines(lines, run, {inAnHour}) : FoldLines(lines, run, {2, 3, 4, 6, 12, 24});
    const bool sure = majors.StandOut > MajorsStandOut;
    const double after = std::fmod(page_.StartHour, majors.Every * lineHours) / lineHours;
    const double length = page_.Hours / lineHours;
    const double spare = run.Last - run.First - length;
    if (spare < -0.12 * length)
      return Failure("the printed grid is too short for the chart's " + ShortText(page_.Hours) + " hours");
    std::vector<double> starts;
    // Where lines are lost, more may be lost at either end; but the paper of a week has no more than its
    // page.
    const bool lost = worn && (inAnHour > 1 || spare < -0.5);
    const double usual = 1.2 + std::max(0.0, -spare) + (lost ? 2 * majors.Every : 0);
    double allowed = usual;
    for (; starts.empty(); allowed += majors.Every)
      for (int line = run.First - 3 * majors.Every; line <= run.Last; ++line) {
        if ((line % majors.Every + majors.Every) % majors.Every != majors.Class) continue;
        const double start = line + after;
        if (start >= run.First - allowed && start + length <= run.Last + allowed) starts.push_back(start);
      }
    const bool fits = allowed < usual + 1.5 * majors.Every;
    // Of several, the one that leaves as much of the grid on the left as on the right.
    const double middleStart = (run.First + run.Last - length) / 2;
    std::sort(starts.begin(), starts.end(), [&](double one, double other) {
      return std::abs(one - middleStart) < std::abs(other - middleStart);
    });
    std::vector<double> inHours;
    for (const double start : starts) inHours.push_back(start / inAnHour);
    const LabelledStart labelled =
        inAnHour > 0 ? StartByLabels(LabelsAbove(run, majors, inAnHour), inHours, page_.StartHour)
                     : LabelledStart{};
    if (sure && labelled.Start)
      std::swap(starts.front(), starts[*labelled.Start]);
    else if (starts.size() != 1 || !sure || !fits || lost || spare < -1.5 - between || labelled.Against)
      lattice_.doubts_.push_back(
          "The printed hours do not tell by themselves where the chart starts. It is taken to "
          "start " +
          ShortText(std::round((starts.front() - run.First) * lattice_.acrossMm_)) +
          " mm behind the grid's left edge: confirm the hour.");
    hours.Shift(-starts.front());
    lattice_.lineAt_ = -starts.front();
    return {};
  }

  const ScanImage& image_;
  const PageSpan& page_;
  const GridScale& scale_;
  Lattice lattice_;
  bool overHead_ = false;
  cv::Mat ink_;
  double step_ = 1;
};

Result<Lattice> Lattice::Find(const ScanImage& image, const PageSpan& page) {
  const auto scale = ScaleByGrid(image, page.Paper, page.Hours);
  if (!scale)
    return Failure("no printed grid with the lines of the chart type \"" + page.Paper.Name +
                   "\" stands out in the image");
  LatticeFinder finder(image, page, *scale);
  auto lattice = finder.Find(false);
  if (!lattice) return lattice;
  const double share = finder.HeaderShare();
  if (share > 1 / HeaderIsAbove) return lattice;
  auto turned = finder.Find(true);
  if (turned && share > HeaderIsAbove)
    lattice->doubts_.emplace_back("The scan may stand on its head: confirm which side is up.");
  return share > HeaderIsAbove || !turned ? lattice : turned;
}

}  // namespace hyetex
