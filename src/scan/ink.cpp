#include "scan/ink.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <opencv2/imgproc.hpp>
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
constexpr double EdgeMm = 5;        // of what is laid flat, in which the band's frame lies
constexpr double PenShare = 0.996;  // of the sheet has less ink than the pen
constexpr double StrokeMm = 0.6, StrokeWidthMm = 0.1;

float Quantile(std::vector<float>& values, double share) {
  const auto at = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
  std::nth_element(values.begin(), values.begin() + at, values.end());
  return values[static_cast<std::size_t>(at)];
}

// The share of light that is taken away from the paper around, 0 to 1.
cv::Mat Darkness(const cv::Mat& grey, double pixelsPerMm) {
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
  cv::Mat smooth, all, dark;
  cv::GaussianBlur(paper, smooth, {3, 3}, 0);
  cv::resize(smooth, all, {smooth.cols * tile, smooth.rows * tile}, 0, 0, cv::INTER_LINEAR);
  grey.convertTo(dark, CV_32F);
  dark = 1 - dark / all(cv::Rect({}, grey.size()));
  return cv::max(dark, 0);
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
  const cv::Mat hours =
      LinesAlongRows(dark.t(),
                     {flat.Column(flat.LineAtMm), flat.AcrossMm * scale, HourHalfMm * scale, HoursInHeavy, edge},
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

// What is seen of strokes, each place by the direction in which most ink lies, hidden places left out.
cv::Mat FollowStrokes(const cv::Mat& raw, const cv::Mat& seen, double scale) {
  constexpr std::array Directions{0.0, 20.0, 40.0, 58.0, 72.0, 82.0, 90.0};
  constexpr float LeastSeen = 0.18F;  // of a stroke's length: less counts as that much blank
  const double across = std::max(0.6, StrokeWidthMm * scale);
  cv::Mat ink, clear, best = cv::Mat::zeros(raw.size(), CV_32F);
  cv::GaussianBlur(raw.mul(seen), ink, {5, 5}, across);
  cv::GaussianBlur(seen, clear, {5, 5}, across);
  const double all = cv::sum(Along(cv::Mat::ones(32, 32, CV_32F), 0, 4).row(16).col(16))[0];
  for (const double degrees : Directions) {
    cv::Mat share;
    cv::divide(Along(ink, degrees, 1.6 * StrokeMm * scale),
               Along(clear, degrees, 1.6 * StrokeMm * scale) + LeastSeen * all, share);
    best = cv::max(best, share);
  }
  return best;
}

struct Channel {
  cv::Mat Left, Form;  // darkness that the form does not explain, and the form's
  double Pen = 0, Noise = 0;
};

Channel Explain(const FlatChart& flat, const cv::Mat& grey) {
  Channel channel;
  const cv::Mat dark = Darkness(grey, flat.PixelsPerMm);
  channel.Form = FormDarkness(flat, dark);
  channel.Left = cv::max(dark - channel.Form, 0);
  std::vector<float> values;
  for (int y = 0; y < dark.rows; y += 2) {
    const auto* row = channel.Left.ptr<float>(y);
    for (int x = 0; x < dark.cols; x += 2) values.push_back(row[x]);
  }
  channel.Pen = Quantile(values, PenShare);
  channel.Noise = Quantile(values, 0.85);
  return channel;
}

}  // namespace

PenInk FindPenInk(const FlatChart& flat) {
  std::array<cv::Mat, 3> colours;
  cv::split(flat.Colours, colours.data());
  cv::Mat coloured;
  cv::absdiff(colours[0], colours[2], coloured);
  const bool grey = cv::countNonZero(coloured > 12) < coloured.rows * coloured.cols / 1000;
  Channel best;
  double most = -1;
  // The light in which the pen stands out most from the form.
  for (std::size_t i = 0; i < (grey ? 1 : colours.size()); ++i) {
    const Channel channel = Explain(flat, colours[i]);
    const double clear = channel.Pen / (channel.Noise + 0.02);
    if (clear > most) best = channel;
    most = std::max(most, clear);
  }
  PenInk ink;
  ink.Contrast = best.Pen;
  const double pen = std::max(0.04, best.Pen);
  ink.Noise = best.Noise / pen;
  ink.Hidden = cv::min(best.Form / pen, 1.0);
  const double floor = std::min(0.5, 1.5 * ink.Noise);
  ink.Raw = cv::min(cv::max((best.Left / pen - floor) / (1 - floor), 0), 1.0);
  ink.Ink = FollowStrokes(ink.Raw, 1 - ink.Hidden, flat.PixelsPerMm);
  return ink;
}

}  // namespace hyetex
