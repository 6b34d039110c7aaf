#include "scan/ink.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <vector>

namespace hyetex {
namespace {

constexpr double PaperTileMm = 7;
constexpr double PaperShare = 0.8;    // of a tile's pixels are darker than its paper, or as light
constexpr double DepthHalfMm = 0.26;  // a printed line, with what blur adds to it
constexpr double HourHalfMm = 0.32;   // these stand farther apart, and are printed less evenly
constexpr double AlongDepthsMm = 45;  // over which a printed line of the depths is as dark as itself
constexpr double AlongHoursMm = 25;
constexpr double LineShare = 0.55;      // of a line's pixels are lighter than the line is taken to be
constexpr double HeaviestLines = 0.97;  // of the rows of lines are no darker than a heavy line is
constexpr float DarkestLine = 1.08F;    // what a line can be, for 1 of that
constexpr int DepthsInHeavy = 10, HoursInHeavy = 12;  // or a part of it
constexpr std::size_t FewestAlike = 4;
constexpr float DarkerThanAlike = 1.35F, DarkerBy = 0.1F;
constexpr double EdgeMm = 5;         // of what is laid flat, in which the band's frame lies
constexpr double PenShare = 0.996;   // of the sheet has less ink than the pen
constexpr double LeastLight = 0.08;  // of the paper's: blacker is black
constexpr int FewestPen = 400;       // pixels
constexpr std::array ShareOfDarkest{0.6, 0.4, 0.25, 0.15};
constexpr std::array JoinMm{0.8, 2.0};
constexpr double AboveNoise = 4, LeastDense = 0.03;  // of what may be pen
constexpr double LeastPenMm = 10, MostPenHalfMm = 0.45, MostColumns = 0.5;
constexpr double SurePenShare = 0.75;  // of where the pen surely is has less ink
constexpr double LeastSpread = 1e-4;
constexpr double StrokeMm = 0.6, StrokeWidthMm = 0.1;

float Quantile(std::vector<float>& values, double share) {
  const auto at = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + at, values.end());
  return values[static_cast<std::size_t>(at)];
}

// How dense the ink is: what it leaves of the light of the paper around, as a logarithm, so that the pen adds
// the same to a printed line as to the paper.
cv::Mat Density(const cv::Mat& grey, double pixelsPerMm) {
  const int tile = static_cast<int>(PaperTileMm * pixelsPerMm);
  cv::Mat paper((grey.rows + tile - 1) / tile, (grey.cols + tile - 1) / tile, CV_32F);
  std::vector<float> values;
  for (int y = 0; y < paper.rows; ++y)
    for (int x = 0; x < paper.cols; ++x) {
      const cv::Mat part = grey(cv::Rect(x * tile, y * tile, tile, tile) & cv::Rect({}, grey.size()));
      values.clear();
      for (int row = 0; row < part.rows; ++row)
        for (int column = row % 2; column < part.cols; column += 2)
          values.push_back(part.at<std::uint8_t>(row, column));
      paper.at<float>(y, x) = std::max(24.0F, Quantile(values, PaperShare));
    }
  cv::Mat smooth, all, light, dense;
  cv::GaussianBlur(paper, smooth, {3, 3}, 0);
  cv::resize(smooth, all, {smooth.cols * tile, smooth.rows * tile}, 0, 0, cv::INTER_LINEAR);
  grey.convertTo(light, CV_32F);
  light = cv::max(light / all(cv::Rect({}, grey.size())), LeastLight);
  cv::log(light, dense);
  return -dense;
}

struct PrintedLines {
  double First = 0, Apart = 1, Half = 1;  // rows
  int InHeavy = 1, Edge = 0;
};

// How dark the printed lines along the rows of `dark` are, which stand every `apart` pixels from row `first`
// on: along each row what most of its pixels reach, in pieces as long as `along`.
// `inHeavy` lines stand from one heavy line to the next; `edge` rows at either end hold the frame.
cv::Mat LinesAlongRows(const cv::Mat& dark, const PrintedLines& print, double along) {
  const auto [first, apart, half, inHeavy, edge] = print;
  cv::Mat lines = cv::Mat::zeros(dark.size(), CV_32F);
  const int piece = std::max(16, static_cast<int>(along / 2)), pieces = std::max(1, dark.cols / piece);
  std::vector<float> values, usual;
  std::vector<int> rows;
  std::vector<int> lineOf;       // of each of the rows
  std::map<int, float> darkest;  // of each line
  cv::Mat levels(dark.rows, pieces, CV_32F);
  for (int row = 0; row < dark.rows; ++row) {
    const double off = (row - first) / apart;
    if (std::abs(off - std::round(off)) * apart > half) continue;
    rows.push_back(row);
    lineOf.push_back(static_cast<int>(std::lround(off)));
    const auto* from = dark.ptr<float>(row);
    auto* level = levels.ptr<float>(row);
    for (int i = 0; i < pieces; ++i) {  // pieces overlap by half
      const int left = std::max(0, i * piece - piece / 2),
                right = std::min(dark.cols, (i + 1) * piece + piece / 2);
      values.assign(from + left, from + right);
      level[i] = Quantile(values, LineShare);
    }
    values.assign(level, level + pieces);
    usual.push_back(Quantile(values, 0.5));
    float& line = darkest[lineOf.back()];
    line = std::max(line, usual.back());
  }
  if (rows.empty()) return lines;
  // What is darker than any printed line is a level pen on one.
  const float most = DarkestLine * Quantile(usual, HeaviestLines);
  // And so is what is darker than the other lines that stand where this one does between heavy ones.
  std::map<int, std::vector<float>> alike;
  const auto classOf = [n = inHeavy](int line) { return (line % n + n) % n; };
  for (const auto& [line, level] : darkest) alike[classOf(line)].push_back(level);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const int row = rows[i];
    float cap = most;
    if (auto& others = alike[classOf(lineOf[i])];
        row >= edge && row < dark.rows - edge && others.size() >= FewestAlike)
      cap = std::min(most, DarkerThanAlike * Quantile(others, 0.5) + DarkerBy);
    const auto* level = levels.ptr<float>(row);
    auto* to = lines.ptr<float>(row);
    for (int x = 0; x < dark.cols; ++x) {
      const double place = std::clamp((x + 0.5) / piece - 0.5, 0.0, pieces - 1.0);
      const int before = static_cast<int>(place), behind = std::min(before + 1, pieces - 1);
      const auto part = static_cast<float>(place - before);
      to[x] = std::min(cap, (1 - part) * level[before] + part * level[behind]);
    }
  }
  return lines;
}

cv::Mat FormDarkness(const FlatChart& flat, const cv::Mat& dark) {
  const double scale = flat.PixelsPerMm;
  const int edge = static_cast<int>(EdgeMm * scale);
  const cv::Mat depths =
      LinesAlongRows(dark, {flat.Row(0), flat.UpMm * scale, DepthHalfMm * scale, DepthsInHeavy, edge},
                     AlongDepthsMm * scale);
  const cv::Mat hours = LinesAlongRows(dark.t(),
                                       {flat.Column(flat.LineAtMm), flat.AcrossMm * scale, HourHalfMm * scale,
                                        HoursInHeavy, edge},
                                       AlongHoursMm * scale)
                            .t();
  return cv::max(depths, hours);
}

// The sum of nine places along a direction, at every place.
cv::Mat Along(const cv::Mat& from, double degrees, double lengthPx) {
  constexpr int Half = 4;
  const double angle = degrees * std::numbers::pi / 180, step = lengthPx / Half;
  cv::Mat sum = cv::Mat::zeros(from.size(), CV_32F);
  for (int i = -Half; i <= Half; ++i) {
    const int x = static_cast<int>(std::lround(i * step * std::cos(angle)));
    const int y = static_cast<int>(std::lround(-i * step * std::sin(angle)));
    const auto weight = static_cast<float>(std::exp(-0.5 * std::pow(1.6 * i / Half, 2)));
    const cv::Rect to = cv::Rect({}, from.size()) & cv::Rect({-x, -y}, from.size());
    cv::Mat part = sum(to);
    cv::scaleAdd(from(to + cv::Point(x, y)), weight, part, part);
  }
  return sum;
}

struct Channel {
  cv::Mat Left, Form;  // density that the form does not explain, and the form's
  double Pen = 0, Noise = 0;

  double Clear() const { return Pen / (Noise + 0.02); }
};

Channel Explain(const FlatChart& flat, const cv::Mat& dense, const cv::Mat& print) {
  Channel channel;
  channel.Form = FormDarkness(flat, cv::max(dense, 0));
  if (!print.empty()) channel.Form = cv::max(channel.Form, print);
  channel.Left = cv::max(dense - channel.Form, 0);
  // Where the paper is bare no pen is hidden.
  channel.Form = cv::min(channel.Form, cv::max(dense, 0));
  std::vector<float> values;
  for (int y = 0; y < dense.rows; y += 2) {
    const auto* row = channel.Left.ptr<float>(y);
    for (int x = 0; x < dense.cols; x += 2) values.push_back(row[x]);
  }
  channel.Pen = Quantile(values, PenShare);
  channel.Noise = Quantile(values, 0.85);
  return channel;
}

// Where the pen surely is: thin strokes that go on for long, which neither numbers nor stains do.
cv::Mat LongStrokes(const Channel& channel, double least, double joinMm, double pixelsPerMm) {
  const cv::Mat inked = channel.Left > least;
  const int join = 2 * static_cast<int>(std::lround(joinMm / 2 * pixelsPerMm)) + 1;
  cv::Mat joined, depth, labels, boxes, middles;
  cv::morphologyEx(inked, joined, cv::MORPH_CLOSE, cv::Mat::ones(join, join, CV_8U));
  cv::distanceTransform(joined, depth, cv::DIST_L2, 3);
  const int count = cv::connectedComponentsWithStats(joined, labels, boxes, middles, 8, CV_32S);
  std::vector<double> deep(static_cast<std::size_t>(count), 0);
  for (int y = 0; y < labels.rows; ++y)
    for (int x = 0; x < labels.cols; ++x)
      deep[static_cast<std::size_t>(labels.at<int>(y, x))] += depth.at<float>(y, x);
  std::vector<std::uint8_t> isPen(static_cast<std::size_t>(count), 0);
  for (int i = 1; i < count; ++i) {
    const double area = boxes.at<int>(i, cv::CC_STAT_AREA);
    const int longest = std::max(boxes.at<int>(i, cv::CC_STAT_WIDTH), boxes.at<int>(i, cv::CC_STAT_HEIGHT));
    isPen[static_cast<std::size_t>(i)] =
        longest >= LeastPenMm * pixelsPerMm &&
        deep[static_cast<std::size_t>(i)] / area < MostPenHalfMm * pixelsPerMm;
  }
  cv::Mat pen = cv::Mat::zeros(labels.size(), CV_8U);
  for (int y = 0; y < labels.rows; ++y)
    for (int x = 0; x < labels.cols; ++x)
      if (inked.at<std::uint8_t>(y, x) != 0 && isPen[static_cast<std::size_t>(labels.at<int>(y, x))] != 0)
        pen.at<std::uint8_t>(y, x) = 255;
  return pen;
}

// A pen writes in every column. What is darkest may be print: the darkest that does it is the pen.
cv::Mat SurePen(const Channel& channel, double pixelsPerMm) {
  cv::Mat best;
  int most = 0;
  for (const double join : JoinMm)
    for (const double share : ShareOfDarkest) {
      const double least = std::max(share * channel.Pen, AboveNoise * channel.Noise + LeastDense);
      cv::Mat pen = LongStrokes(channel, least, join, pixelsPerMm), columns;
      cv::reduce(pen, columns, 0, cv::REDUCE_MAX);
      const int count = cv::countNonZero(columns);
      if (count > most) best = pen;
      most = std::max(most, count);
      if (count >= MostColumns * pen.cols) return best;
    }
  return best;
}

// Of all sums of the three lights the one in which the pen stands out most from all else that is on the
// sheet.
cv::Vec3d PensColour(const std::array<cv::Mat, 3>& dense, const cv::Mat& pen) {
  cv::Mat around;
  cv::dilate(pen, around, cv::Mat::ones(7, 7, CV_8U));
  const cv::Mat other = around == 0;
  cv::Vec3d mean;
  cv::Matx33d spread = cv::Matx33d::eye() * LeastSpread;
  for (int i = 0; i < 3; ++i) {
    mean[i] = cv::mean(dense[static_cast<std::size_t>(i)], pen)[0];
    for (int j = 0; j <= i; ++j) {
      const double both =
          cv::mean(dense[static_cast<std::size_t>(i)].mul(dense[static_cast<std::size_t>(j)]), other)[0];
      spread(i, j) += both;
      if (j < i) spread(j, i) += both;
    }
  }
  const cv::Vec3d way = spread.inv() * mean;
  // In parts of the pen's own density, so that this stays what contrast is measured by.
  const double scale = cv::norm(mean, cv::NORM_INF) / std::max(1e-9, way.dot(mean));
  return scale * way;
}

cv::Mat Weighed(const std::array<cv::Mat, 3>& lights, const cv::Vec3d& by) {
  if (lights[0].empty()) return {};
  return cv::Mat(by[0] * lights[0] + by[1] * lights[1] + by[2] * lights[2]);
}

}  // namespace

// Hidden places are left out of what is seen of strokes.
void FollowStrokes(PenInk& ink, double pixelsPerMm, int first, int past) {
  constexpr std::array Directions{0.0, 20.0, 40.0, 58.0, 72.0, 82.0, 90.0};
  constexpr double SteepFrom = 50;
  constexpr float LeastSeen = 0.18F;  // of a stroke's length: less counts as that much blank
  constexpr float MuchSeen = 0.5F;    // of it: nothing is hidden
  const double across = std::max(0.6, StrokeWidthMm * pixelsPerMm), along = 1.6 * StrokeMm * pixelsPerMm;
  const int beside = static_cast<int>(along) + 4;
  const cv::Range whole(0, ink.Raw.rows),
      part(std::max(0, first - beside), std::min(ink.Raw.cols, past + beside));
  const cv::Mat seen = 1 - ink.Hidden(whole, part);
  cv::Mat raw, clear, best = cv::Mat::zeros(seen.size(), CV_32F), steep = best.clone(), upright;
  cv::GaussianBlur(ink.Raw(whole, part).mul(seen), raw, {5, 5}, across);
  cv::GaussianBlur(seen, clear, {5, 5}, across);
  const double all = cv::sum(Along(cv::Mat::ones(32, 32, CV_32F), 0, 4).row(16).col(16))[0];
  for (const double degrees : Directions) {
    cv::Mat share;
    upright = Along(clear, degrees, along);
    cv::divide(Along(raw, degrees, along), upright + LeastSeen * all, share);
    best = cv::max(best, share);
    if (degrees >= SteepFrom) steep = cv::max(steep, share);
  }
  const cv::Mat hidden = cv::max(1 - upright / (MuchSeen * all), 0);
  if (ink.Ink.size() != ink.Raw.size())
    for (cv::Mat* of : {&ink.Ink, &ink.Steep, &ink.SteepHidden}) *of = cv::Mat::zeros(ink.Raw.size(), CV_32F);
  const cv::Range to(std::max(0, first), std::min(ink.Raw.cols, past)),
      from(to.start - part.start, to.end - part.start);
  best.colRange(from).copyTo(ink.Ink.colRange(to));
  steep.colRange(from).copyTo(ink.Steep.colRange(to));
  cv::Mat(cv::min(hidden, 1 - seen)).colRange(from).copyTo(ink.SteepHidden.colRange(to));
}

PenInk PenInk::Clone() const {
  return {Raw.clone(), All, Hidden.clone(), Ink.clone(), Steep.clone(), SteepHidden.clone(), Contrast, Noise};
}

cv::Mat LightOfPaper(const FlatChart& flat) {
  std::array<cv::Mat, 3> colours;
  cv::split(flat.Colours, colours.data());
  for (cv::Mat& colour : colours) {
    cv::Mat light;
    cv::exp(-cv::max(Density(colour, flat.PixelsPerMm), 0), light);
    light.convertTo(colour, CV_8U, 255);
  }
  cv::Mat light;
  cv::merge(colours.data(), colours.size(), light);
  return light;
}

PenInk FindPenInk(const FlatChart& flat, const cv::Mat& print) {
  std::array<cv::Mat, 3> colours, prints;
  cv::split(flat.Colours, colours.data());
  if (!print.empty()) {
    cv::split(print, prints.data());
    for (cv::Mat& one : prints) {
      cv::Mat light;
      one.convertTo(light, CV_32F, 1.0 / 255);
      cv::log(cv::max(light, LeastLight), light);
      one = -light;
    }
  }
  cv::Mat coloured;
  cv::absdiff(colours[0], colours[2], coloured);
  const bool grey = cv::countNonZero(coloured > 12) < coloured.rows * coloured.cols / 1000;
  Channel best;
  std::array<cv::Mat, 3> dense;
  // The light in which the pen stands out most from the form.
  for (std::size_t i = 0; i < (grey ? 1 : colours.size()); ++i) {
    dense[i] = Density(colours[i], flat.PixelsPerMm);
    if (const Channel channel = Explain(flat, dense[i], prints[i]); i == 0 || channel.Clear() > best.Clear())
      best = channel;
  }
  if (const cv::Mat sure = SurePen(best, flat.PixelsPerMm);
      !sure.empty() && cv::countNonZero(sure) >= FewestPen) {
    if (!grey) {
      const cv::Vec3d own = PensColour(dense, sure);
      best = Explain(flat, Weighed(dense, own), Weighed(prints, own));
    }
    std::vector<float> values;
    for (int y = 0; y < sure.rows; ++y)
      for (int x = 0; x < sure.cols; ++x)
        if (sure.at<std::uint8_t>(y, x) != 0) values.push_back(best.Left.at<float>(y, x));
    best.Pen = Quantile(values, SurePenShare);
  }
  PenInk ink;
  ink.Contrast = 1 - std::exp(-best.Pen);
  const double pen = std::max(0.04, best.Pen);
  ink.Noise = best.Noise / pen;
  ink.Hidden = cv::min(best.Form / pen, 1.0);
  const double floor = std::min(0.5, 1.5 * ink.Noise);
  ink.Raw = cv::min(cv::max((best.Left / pen - floor) / (1 - floor), 0), 1.0);
  ink.All = ink.Raw;
  FollowStrokes(ink, flat.PixelsPerMm, 0, ink.Raw.cols);
  return ink;
}

}  // namespace hyetex
