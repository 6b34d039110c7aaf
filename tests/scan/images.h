// Images as files that scanners write, and some that they do not.
#pragma once

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <string>
#include <vector>

namespace hyetex::test {

inline std::string Encoded(const cv::Mat& image, const std::string& ending,
                           const std::vector<int>& how = {}) {
  std::vector<std::uint8_t> bytes;
  cv::imencode(ending, image, bytes, how);
  return {bytes.begin(), bytes.end()};
}

/// Each pixel another grey, so that one that is out of its place shows.
inline cv::Mat Gradient(int width, int height) {
  cv::Mat image(height, width, CV_8UC1);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) image.at<std::uint8_t>(y, x) = static_cast<std::uint8_t>(y * 37 + x * 11);
  return image;
}

inline std::string Number(std::uint32_t value, int bytes, bool bigEndian) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * (bigEndian ? bytes - 1 - i : i));
  return text;
}

/// `bytes` with a number in the place of those at `at`.
inline std::string With(std::string bytes, std::size_t at, std::uint32_t value, int count, bool bigEndian) {
  return bytes.replace(at, static_cast<std::size_t>(count), Number(value, count, bigEndian));
}

inline std::string PngChunk(const std::string& type, const std::string& content) {
  std::uint32_t crc = ~0U;
  for (const char c : type + content) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xedb88320U : 0);
  }
  return Number(static_cast<std::uint32_t>(content.size()), 4, true) + type + content + Number(~crc, 4, true);
}
/// With a chunk behind the head.
inline std::string PngWith(std::string png, const std::string& type, const std::string& content) {
  return png.insert(33, PngChunk(type, content));
}
inline std::string PngWithDpi(const cv::Mat& image, double across, double up) {
  const auto perMetre = [](double dpi) {
    return Number(static_cast<std::uint32_t>(dpi / 0.0254 + 0.5), 4, true);
  };
  return PngWith(Encoded(image, ".png"), "pHYs", perMetre(across) + perMetre(up) + '\1');
}

struct TiffPage {
  cv::Mat Image;  // grey
  int Orientation = 1;
  double Across = 300, Up = 300;
  int Unit = 2;  // 1 none, 2 inch, 3 cm
};
/// Plain pages behind each other. The first directory's place stands at byte 4.
inline std::string Tiff(const std::vector<TiffPage>& pages, bool bigEndian = false) {
  const auto number = [&](std::uint32_t value, int bytes) { return Number(value, bytes, bigEndian); };
  std::string file = bigEndian ? "MM" : "II";
  file += number(42, 2);
  std::size_t link = file.size();
  file += number(0, 4);
  for (const TiffPage& page : pages) {
    const auto pixels = static_cast<std::uint32_t>(file.size());
    const cv::Mat whole = page.Image.clone();
    file.append(reinterpret_cast<const char*>(whole.data), whole.total());
    const auto resolutions = static_cast<std::uint32_t>(file.size());
    for (const double dpi : {page.Across, page.Up})
      file += number(static_cast<std::uint32_t>(dpi * 100), 4) + number(100, 4);
    if (file.size() % 2 != 0) file += '\0';
    file.replace(link, 4, number(static_cast<std::uint32_t>(file.size()), 4));
    file += number(11, 2);
    const auto entry = [&](std::uint32_t tag, std::uint32_t type, std::uint32_t value) {
      file += number(tag, 2) + number(type, 2) + number(1, 4);
      file += type == 3 ? number(value, 2) + number(0, 2) : number(value, 4);
    };
    entry(256, 4, static_cast<std::uint32_t>(whole.cols));
    entry(257, 4, static_cast<std::uint32_t>(whole.rows));
    entry(258, 3, 8);
    entry(259, 3, 1);
    entry(262, 3, 1);
    entry(273, 4, pixels);
    entry(274, 3, static_cast<std::uint32_t>(page.Orientation));
    entry(279, 4, static_cast<std::uint32_t>(whole.total()));
    entry(282, 5, resolutions);
    entry(283, 5, resolutions + 8);
    entry(296, 3, static_cast<std::uint32_t>(page.Unit));
    link = file.size();
    file += number(0, 4);
  }
  return file;
}

}  // namespace hyetex::test
