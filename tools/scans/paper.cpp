#include "scans/paper.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <opencv2/imgproc.hpp>

#include "scans/chance.h"

namespace hyetex {
namespace {

// Shades are drawn this much smaller than the image, being soft.
constexpr int Small = 4;

cv::Scalar Bgr(Rgb colour) { return cv::Scalar(colour.Blue, colour.Green, colour.Red); }

// Fields of chance, each value of about `mm` size, added up in `field`.
void Mottle(cv::Mat& field, double pixelsPerMm, double mm, double by, Chance& chance) {
  const double cell = std::max(1.0, mm * pixelsPerMm / Small);
  cv::Mat coarse(static_cast<int>(field.rows / cell) + 3, static_cast<int>(field.cols / cell) + 3, CV_32F);
  cv::RNG random(chance.Next());
  random.fill(coarse, cv::RNG::UNIFORM, -by, by);
  cv::Mat fine;
  cv::resize(coarse, fine, field.size(), 0, 0, cv::INTER_CUBIC);
  field += fine;
}

struct Fold {
  cv::Point2d From, To;
  double Sign = 1;
};
std::vector<Fold> FoldsOf(const ChartForm& form, const ScanStyle& style, std::uint64_t seed) {
  Chance chance(seed, "folds");
  std::vector<Fold> folds;
  const cv::Rect2d& paper = form.Paper;
  for (int i = 0; i < style.Folds; ++i) {
    // The first fold halves the sheet; the others lie anywhere, one in four of them lengthwise.
    const bool across = i > 0 && chance.Falls(0.25);
    const double at = i == 0 ? 0.5 + chance.Uniform(-0.02, 0.02) : chance.Uniform(0.1, 0.9),
                 lean = chance.Uniform(-2, 2);
    const double x = paper.x + at * paper.width, y = paper.y + at * paper.height;
    folds.push_back(across ? Fold{{paper.x, y - lean}, {paper.x + paper.width, y + lean}, chance.Sign()}
                           : Fold{{x - lean, paper.y}, {x + lean, paper.y + paper.height}, chance.Sign()});
  }
  return folds;
}

// How far the rim of a stain lies from its middle, around it.
class Outline {
 public:
  explicit Outline(Chance& chance) {
    for (double& phase : phases_) phase = chance.Uniform(0, 2 * std::numbers::pi);
    for (std::size_t k = 0; k < sizes_.size(); ++k)
      sizes_[k] = chance.Uniform(0.3, 1) * 0.16 / std::pow(static_cast<double>(k) + 1, 0.8);
  }
  double At(double angle) const {
    double rim = 1;
    for (std::size_t k = 0; k < sizes_.size(); ++k)
      rim += sizes_[k] * std::cos(static_cast<double>(k + 1) * angle + phases_[k]);
    return std::max(0.3, rim);
  }

 private:
  std::array<double, 9> phases_{}, sizes_{};
};

class Shades {
 public:
  Shades(const ChartForm& form, const ScanStyle& style, std::uint64_t seed, const ScannedSheet& sheet)
      : form_(form), style_(style), seed_(seed), sheet_(sheet) {
    const cv::Size size(sheet.Size().width / Small + 1, sheet.Size().height / Small + 1);
    light_ = cv::Mat(size, CV_32F, cv::Scalar(1));
    stain_ = cv::Mat(size, CV_32F, cv::Scalar(0));
  }
  cv::Mat Paper() {
    Chance chance(seed_, "paper");
    const double scale = sheet_.PixelsPerMm();
    cv::Mat tint(light_.size(), CV_32F, cv::Scalar(0));
    for (const double mm : {90.0, 22.0}) Mottle(tint, scale, mm, 0.032 * style_.Mottled, chance);
    Mottle(light_, scale, 0.8, 0.008 + 0.012 * style_.Mottled, chance);
    Mottle(light_, scale, 5, 0.012 * style_.Mottled, chance);
    for (const Fold& fold : FoldsOf(form_, style_, seed_)) Shade(fold);
    Stain();
    Lamp(chance);
    return Mixed(tint);
  }

 private:
  // On one side of a fold the paper turns to the light, on the other away from it.
  void Shade(const Fold& fold) {
    const cv::Point2d from = sheet_.Place(fold.From) / Small, to = sheet_.Place(fold.To) / Small;
    const cv::Point2d along = (to - from) / cv::norm(to - from);
    const double reach = 5 * sheet_.PixelsPerMm() / Small;
    for (int y = 0; y < light_.rows; ++y)
      for (int x = 0; x < light_.cols; ++x) {
        const double away = fold.Sign * cv::Point2d(x - from.x, y - from.y).cross(along) / reach;
        if (std::abs(away) > 3) continue;
        const double shade = away > 0 ? -0.075 * std::exp(-2.5 * away) : 0.035 * std::exp(2.5 * away);
        light_.at<float>(y, x) *= static_cast<float>(1 + shade);
      }
  }
  void Stain() {
    Chance chance(seed_, "stains");
    for (int i = 0; i < style_.Stains; ++i) {
      const cv::Rect2d& paper = form_.Paper;
      const cv::Point2d at =
          sheet_.Place(paper.x + chance.Uniform() * paper.width, paper.y + chance.Uniform() * paper.height) /
          Small;
      const bool drop = chance.Falls(0.4);
      const double radius =
          (drop ? chance.Uniform(1.5, 4) : chance.Uniform(6, 22)) * sheet_.PixelsPerMm() / Small;
      const double ink = style_.StainInk * chance.Uniform(0.5, 1);
      const Outline edge(chance);
      const Wander inside(chance, 0.25);
      const int reach = static_cast<int>(1.5 * radius) + 2;
      const cv::Rect box =
          cv::Rect(static_cast<int>(at.x) - reach, static_cast<int>(at.y) - reach, 2 * reach, 2 * reach) &
          cv::Rect({}, stain_.size());
      for (int y = box.y; y < box.br().y; ++y)
        for (int x = box.x; x < box.br().x; ++x) {
          const double dx = x - at.x, dy = y - at.y;
          const double angle = std::atan2(dy, dx), d = std::hypot(dx, dy) / (radius * edge.At(angle));
          if (d >= 1.04) continue;
          const double soft = std::clamp((1.04 - d) / 0.06, 0.0, 1.0);
          // The rim holds what the water carried there.
          const double depth = soft * (0.42 + 0.1 * inside.At(d * 3) +
                                       0.5 * std::exp(-std::pow((d - 0.97) / 0.05, 2)) + 0.16 * d * d);
          float& value = stain_.at<float>(y, x);
          value = std::max(value, static_cast<float>(ink * depth));
        }
    }
  }
  void Lamp(Chance& chance) {
    if (style_.Shade <= 0) return;
    const double lean = chance.Uniform(-1, 1), up = chance.Sign();
    for (int y = 0; y < light_.rows; ++y)
      for (int x = 0; x < light_.cols; ++x) {
        const double across = 2.0 * x / light_.cols - 1, down = 2.0 * y / light_.rows - 1;
        const double dark = 0.28 * (lean * across + up * down) * 0.5 + 0.3 * across * across;
        light_.at<float>(y, x) *=
            static_cast<float>(std::max(0.2, 1 - style_.Shade * std::max(0.0, dark + 0.1)));
      }
  }
  cv::Mat Mixed(const cv::Mat& tint) const {
    cv::Mat small(light_.size(), CV_8UC3), paper;
    const double base[] = {style_.Paper.Blue / 255.0, style_.Paper.Green / 255.0, style_.Paper.Red / 255.0};
    // What tea, rust and age leave of blue, green and red.
    constexpr double kept[] = {0.45, 0.68, 0.82}, aged[] = {1.4, 1, 0.7};
    for (int y = 0; y < small.rows; ++y)
      for (int x = 0; x < small.cols; ++x)
        for (int c = 0; c < 3; ++c) {
          const double value = base[c] * light_.at<float>(y, x) * (1 + aged[c] * tint.at<float>(y, x)) *
                               std::lerp(1.0, kept[c], static_cast<double>(stain_.at<float>(y, x)));
          small.at<cv::Vec3b>(y, x)[c] = cv::saturate_cast<std::uint8_t>(255 * value);
        }
    cv::resize(small, paper, {small.cols * Small, small.rows * Small}, 0, 0, cv::INTER_LINEAR);
    return paper(cv::Rect({}, sheet_.Size())).clone();
  }

  const ChartForm& form_;
  const ScanStyle& style_;
  std::uint64_t seed_;
  const ScannedSheet& sheet_;
  cv::Mat light_, stain_;
};

}  // namespace

cv::Mat LayPaper(const ChartForm& form, const ScanStyle& style, std::uint64_t seed,
                 const ScannedSheet& sheet) {
  return Shades(form, style, seed, sheet).Paper();
}

void Crack(const ChartForm& form, const ScanStyle& style, std::uint64_t seed, InkLayer& cracks) {
  Chance chance(seed, "cracks");
  for (const Fold& fold : FoldsOf(form, style, seed)) {
    const Wander aside(chance, 3), width(chance, 1.2);
    const cv::Point2d step = fold.To - fold.From, normal = cv::Point2d(-step.y, step.x) / cv::norm(step);
    const double length = cv::norm(step);
    std::vector<StrokePoint> points;
    for (int i = 0; 0.4 * i < length; ++i) {
      const double at = 0.4 * i, open = width.At(at);
      points.push_back({fold.From + step * (at / length) + normal * (0.12 * aside.At(at)), 0.16 + 0.14 * open,
                        std::max(0.0, 0.4 + 0.5 * open)});
    }
    cracks.Stroke(points);
  }
}

void CutOut(const ScanStyle& style, std::uint64_t seed, const ScannedSheet& sheet, cv::Mat& image) {
  Chance chance(seed, "cut");
  const double scale = sheet.PixelsPerMm();
  const cv::Rect2d& paper = sheet.Paper();
  cv::Mat mask(image.size(), CV_8U, cv::Scalar(0));
  constexpr int fraction = 4;
  const auto fixed = [&](cv::Point2d mm) {
    const cv::Point2d at = (sheet.Place(mm) - cv::Point2d(0.5, 0.5)) * (1 << fraction);
    return cv::Point(static_cast<int>(std::lround(at.x)), static_cast<int>(std::lround(at.y)));
  };
  // Cut edges are not quite straight.
  const Wander edge(chance, 30);
  std::vector<cv::Point> outline;
  const auto side = [&](cv::Point2d from, cv::Point2d to, cv::Point2d in) {
    constexpr int parts = 60;
    for (int i = 0; i < parts; ++i) {
      const cv::Point2d at = from + (to - from) * (static_cast<double>(i) / parts);
      outline.push_back(fixed(at + in * (0.12 * (1 + edge.At(at.x + 3 * at.y)))));
    }
  };
  const double right = paper.x + paper.width, top = paper.y + paper.height;
  side({paper.x, paper.y}, {right, paper.y}, {0, 1});
  side({right, paper.y}, {right, top}, {-1, 0});
  side({right, top}, {paper.x, top}, {0, -1});
  side({paper.x, top}, {paper.x, paper.y}, {1, 0});
  cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{outline}, cv::Scalar(255), cv::LINE_AA, fraction);

  // Two holes by the left margin, two by the right.
  for (int i = 0; i < style.Holes; ++i) {
    const double aside = 6 + chance.Uniform(-1.5, 1.5), up = paper.height * (i % 2 == 0 ? 0.84 : 0.12);
    const cv::Point2d at(i < 2 ? paper.x + aside : right - aside, paper.y + up + chance.Uniform(-2, 2));
    std::vector<cv::Point> round;
    for (int k = 0; k < 64; ++k) {
      const double angle = 2 * std::numbers::pi * k / 64;
      round.push_back(fixed(at + cv::Point2d(std::cos(angle), std::sin(angle)) * 2.9));
    }
    cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{round}, cv::Scalar(0), cv::LINE_AA, fraction);
  }

  cv::Mat small, shadow;
  cv::resize(mask, small, {mask.cols / Small + 1, mask.rows / Small + 1}, 0, 0, cv::INTER_AREA);
  cv::GaussianBlur(small, small, {}, 0.8 * scale / Small);
  cv::resize(small, shadow, mask.size(), 0, 0, cv::INTER_LINEAR);
  const cv::Scalar bed = Bgr(style.Bed);
  for (int y = 0; y < image.rows; ++y) {
    const std::uint8_t *covered = mask.ptr<std::uint8_t>(y), *near = shadow.ptr<std::uint8_t>(y);
    auto* row = image.ptr<cv::Vec3b>(y);
    for (int x = 0; x < image.cols; ++x) {
      if (covered[x] == 255 && near[x] == 255) continue;
      for (int c = 0; c < 3; ++c) {
        const double under = bed[c] * (1 - 0.35 * near[x] / 255.0),
                     on = row[x][c] * (0.94 + 0.06 * near[x] / 255.0);
        row[x][c] = cv::saturate_cast<std::uint8_t>(std::lerp(under, on, covered[x] / 255.0));
      }
    }
  }
}

}  // namespace hyetex
