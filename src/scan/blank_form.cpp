#include "scan/blank_form.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "core/files.h"
#include "core/numbers.h"
#include "scan/ink.h"

namespace hyetex {
namespace {

constexpr std::string_view FileMark = "hyetex blank form 1 ";
constexpr double Scale = 8;               // pixels for each mm, as charts are laid flat
constexpr std::size_t FewestOfPlace = 3;  // sheets that have a place, for what they have in common
constexpr int MostPixels = 60'000'000;
constexpr double MostMm = 1e5;  // of paper, from midnight
constexpr std::size_t MostBytes = 256U << 20;
const cv::Scalar Bare(255, 255, 255);

int Pixels(double mm) { return static_cast<int>(std::lround(mm * Scale)); }

// Columns and rows from the form's first ones to the sheet's.
cv::Point Offset(const FormSheet& sheet, double leftMm, double topMm) {
  return {Pixels(sheet.StartMm + sheet.Flat.LeftMm - leftMm), Pixels(topMm - sheet.Flat.TopMm)};
}

}  // namespace

Result<BlankForm> BlankForm::Of(std::span<const FormSheet> sheets) {
  if (sheets.size() < FewestSheets)
    return Failure("a blank form wants " + std::to_string(FewestSheets) + " charts at least, there are " +
                   std::to_string(sheets.size()));
  BlankForm form;
  form.leftMm_ = 1e9;
  form.topMm_ = -1e9;
  for (const FormSheet& sheet : sheets) {
    form.leftMm_ = std::min(form.leftMm_, sheet.StartMm + sheet.Flat.LeftMm);
    form.topMm_ = std::max(form.topMm_, sheet.Flat.TopMm);
  }
  struct Placed {
    cv::Mat Light;
    cv::Point At;
  };
  std::vector<Placed> placed;
  cv::Size size(0, 0);
  for (const FormSheet& sheet : sheets) {
    placed.push_back({LightOfPaper(sheet.Flat), Offset(sheet, form.leftMm_, form.topMm_)});
    size.width = std::max(size.width, placed.back().At.x + placed.back().Light.cols);
    size.height = std::max(size.height, placed.back().At.y + placed.back().Light.rows);
  }
  if (static_cast<double>(size.width) * size.height > MostPixels)
    return Failure("the charts start at hours too far from each other for one form");
  form.light_ = cv::Mat(size, CV_8UC3, Bare);
  std::array<std::vector<std::uint8_t>, 3> values;
  for (int y = 0; y < size.height; ++y)
    for (int x = 0; x < size.width; ++x) {
      for (auto& channel : values) channel.clear();
      for (const auto& [light, at] : placed) {
        const cv::Point place(x - at.x, y - at.y);
        if (!place.inside(cv::Rect({}, light.size()))) continue;
        const auto& pixel = light.at<cv::Vec3b>(place);
        for (std::size_t i = 0; i < 3; ++i) values[i].push_back(pixel[static_cast<int>(i)]);
      }
      if (values[0].size() < FewestOfPlace) continue;
      for (std::size_t i = 0; i < 3; ++i) {
        const auto middle = values[i].begin() + static_cast<std::ptrdiff_t>(values[i].size() / 2);
        std::nth_element(values[i].begin(), middle, values[i].end());
        form.light_.at<cv::Vec3b>(y, x)[static_cast<int>(i)] = *middle;
      }
    }
  return form;
}

BlankForm BlankForm::OfBlank(const FormSheet& sheet) {
  BlankForm form;
  form.light_ = LightOfPaper(sheet.Flat);
  form.leftMm_ = sheet.StartMm + sheet.Flat.LeftMm;
  form.topMm_ = sheet.Flat.TopMm;
  return form;
}

Result<std::string> BlankForm::Bytes() const {
  std::vector<std::uint8_t> picture;
  if (!cv::imencode(".png", light_, picture)) return Failure("the blank form cannot be written as a picture");
  return std::string(FileMark) + RoundedText(leftMm_, 4) + " " + RoundedText(topMm_, 4) + "\n" +
         std::string(picture.begin(), picture.end());
}

Result<BlankForm> BlankForm::Read(std::string_view bytes) {
  const std::size_t end = bytes.find('\n');
  if (!bytes.starts_with(FileMark) || end == std::string_view::npos) return Failure("it is no blank form");
  const std::string_view numbers = bytes.substr(FileMark.size(), end - FileMark.size());
  const std::size_t blank = std::min(numbers.find(' '), numbers.size());
  BlankForm form;
  form.leftMm_ = LeadingNumber(numbers.substr(0, blank));
  form.topMm_ = LeadingNumber(numbers.substr(blank));
  if (std::abs(form.leftMm_) > MostMm || std::abs(form.topMm_) > MostMm)
    return Failure("it is no blank form");
  const std::vector<std::uint8_t> picture(bytes.begin() + static_cast<std::ptrdiff_t>(end) + 1, bytes.end());
  try {
    if (!picture.empty()) form.light_ = cv::imdecode(picture, cv::IMREAD_COLOR);
  } catch (const cv::Exception&) {
    form.light_.release();
  }
  if (form.light_.empty() || form.light_.total() > MostPixels)
    return Failure("the blank form's picture is damaged");
  return form;
}

cv::Mat BlankForm::On(const FormSheet& sheet) const {
  cv::Mat light(sheet.Flat.Colours.size(), CV_8UC3, Bare);
  const cv::Point at = Offset(sheet, leftMm_, topMm_);
  const cv::Rect there = cv::Rect(at, light.size()) & cv::Rect({}, light_.size());
  if (there.empty()) return light;
  cv::Mat part = light(there - at);
  light_(there).copyTo(part);
  // Sheets lie on each other to within a pixel.
  cv::erode(light, light, cv::Mat::ones(3, 3, CV_8U));
  return light;
}

std::string BlankFormPath(const std::string& programFolder, const std::string& chartType) {
  std::string name;
  for (const char c : chartType) {
    const bool plain =
        (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == ' ';
    char code[8];
    std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
    name += plain ? std::string(1, c) : code;
  }
  return JoinPath(JoinPath(programFolder, "FORMS"), name + ".form");
}

Result<std::shared_ptr<const BlankForm>> KeptBlankForm(const std::string& programFolder,
                                                       const std::string& chartType) {
  const std::string path = BlankFormPath(programFolder, chartType);
  if (!FileExists(path)) return std::shared_ptr<const BlankForm>();
  const auto bytes = ReadWholeFile(path, MostBytes);
  if (!bytes) return Failure(bytes.error());
  auto form = BlankForm::Read(*bytes);
  if (!form) return Failure("The chart type's form cannot be used, " + form.error() + ": " + path);
  return std::make_shared<const BlankForm>(*std::move(form));
}

}  // namespace hyetex
