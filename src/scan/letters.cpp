#include "scan/letters.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace hyetex {
namespace {

constexpr double InkFrom = 0.3;
constexpr double LeastMm = 1.0, MostMm = 7.0;  // of a letter's height
constexpr double MostWordMm = 40;
constexpr double MuchStroke = 1.5;  // the strokes' length, for 1 of a line through their box
constexpr double ColumnMm = 1.2;
constexpr int FewestInColumn = 4;
constexpr double AroundMm = 0.3;

}  // namespace

void TakeOutLetters(PenInk& ink, double pixelsPerMm) {
  cv::Mat inked = ink.Ink > InkFrom, labels, boxes, middles, depth;
  const int count = cv::connectedComponentsWithStats(inked, labels, boxes, middles, 8, CV_32S);
  cv::distanceTransform(inked, depth, cv::DIST_L2, 3);
  std::vector<float> thick(static_cast<std::size_t>(count), 0);
  for (int y = 0; y < labels.rows; ++y) {
    const auto* label = labels.ptr<int>(y);
    const auto* deep = depth.ptr<float>(y);
    for (int x = 0; x < labels.cols; ++x) {
      float& most = thick[static_cast<std::size_t>(label[x])];
      most = std::max(most, deep[x]);
    }
  }
  struct Piece {
    int Label;
    double Middle;  // columns
    bool IsLetter;
  };
  std::vector<Piece> pieces;
  for (int i = 1; i < count; ++i) {
    const double width = boxes.at<int>(i, cv::CC_STAT_WIDTH) / pixelsPerMm,
                 height = boxes.at<int>(i, cv::CC_STAT_HEIGHT) / pixelsPerMm;
    if (std::max(width, height) < LeastMm || width > MostWordMm || height > MostMm) continue;
    const double area = boxes.at<int>(i, cv::CC_STAT_AREA) / pixelsPerMm / pixelsPerMm;
    // Where strokes run together they look thicker than they are.
    const double stroke = std::clamp(2.0 * thick[static_cast<std::size_t>(i)] / pixelsPerMm, 0.3, 0.7);
    pieces.push_back(
        {i, middles.at<double>(i, 0),
         std::min(width, height) >= LeastMm && area / stroke >= MuchStroke * std::hypot(width, height)});
  }
  // A stroke among the numbers up the band is one of them.
  std::vector<std::uint8_t> isTaken(static_cast<std::size_t>(count), 0);
  for (const Piece& piece : pieces) {
    const auto beside = std::count_if(pieces.begin(), pieces.end(), [&](const Piece& other) {
      return other.IsLetter && std::abs(other.Middle - piece.Middle) < ColumnMm * pixelsPerMm;
    });
    const bool small = boxes.at<int>(piece.Label, cv::CC_STAT_WIDTH) < MostMm * pixelsPerMm;
    if (piece.IsLetter || (small && beside >= FewestInColumn))
      isTaken[static_cast<std::size_t>(piece.Label)] = 1;
  }
  cv::Mat taken = cv::Mat::zeros(inked.size(), CV_8U);
  for (int y = 0; y < labels.rows; ++y)
    for (int x = 0; x < labels.cols; ++x)
      if (isTaken[static_cast<std::size_t>(labels.at<int>(y, x))] != 0) taken.at<std::uint8_t>(y, x) = 255;
  const int around = 2 * static_cast<int>(std::lround(AroundMm * pixelsPerMm)) + 1;
  cv::dilate(taken, taken, cv::getStructuringElement(cv::MORPH_ELLIPSE, {around, around}));
  for (cv::Mat* of : {&ink.Raw, &ink.Ink, &ink.Steep}) of->setTo(0, taken);
  for (cv::Mat* of : {&ink.Hidden, &ink.SteepHidden}) of->setTo(1, taken);
}

}  // namespace hyetex
