#include "scans/scan_file.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "core/text.h"

namespace hyetex {
namespace {

enum class Order { Big, Little };

std::string Number(std::uint32_t value, int bytes, Order order) {
  std::string text;
  for (int i = 0; i < bytes; ++i) {
    const int at = order == Order::Big ? bytes - 1 - i : i;
    text += static_cast<char>(value >> (8 * at) & 255);
  }
  return text;
}
std::uint32_t Whole(double value) { return static_cast<std::uint32_t>(std::lround(value)); }

bool IsBlackAndWhite(const cv::Mat& image) {
  if (image.channels() != 1) return false;
  return cv::countNonZero((image != 0) & (image != 255)) == 0;
}

std::uint32_t Crc(std::string_view bytes) {
  std::uint32_t crc = 0xffffffffU;
  for (const char c : bytes) {
    crc ^= static_cast<unsigned char>(c);
    for (int i = 0; i < 8; ++i) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320U : 0);
  }
  return ~crc;
}

Result<std::string> Encoded(const cv::Mat& image, const char* suffix, const std::vector<int>& words = {}) {
  std::vector<std::uint8_t> bytes;
  if (!cv::imencode(suffix, image, bytes, words)) return Failure("the image cannot be written");
  return std::string(bytes.begin(), bytes.end());
}

// The resolution stands in a chunk of its own behind the first, whose length is fixed.
Result<std::string> Png(const cv::Mat& image, std::optional<double> dpi) {
  auto bytes = Encoded(image, ".png",
                       IsBlackAndWhite(image)
                           ? std::vector<int>{cv::IMWRITE_PNG_BILEVEL, 1, cv::IMWRITE_PNG_COMPRESSION, 9}
                           : std::vector<int>{cv::IMWRITE_PNG_COMPRESSION, 6});
  if (!bytes || !dpi) return bytes;
  const std::string perMetre = Number(Whole(*dpi / 0.0254), 4, Order::Big);
  const std::string chunk = "pHYs" + perMetre + perMetre + '\x01';
  constexpr std::size_t behindHead = 33;
  bytes->insert(behindHead, Number(9, 4, Order::Big) + chunk + Number(Crc(chunk), 4, Order::Big));
  return bytes;
}

Result<std::string> Jpeg(const cv::Mat& image, std::optional<double> dpi, int quality) {
  auto bytes = Encoded(image, ".jpg", {cv::IMWRITE_JPEG_QUALITY, quality});
  constexpr std::size_t name = 6, unit = 13;
  if (!bytes || bytes->compare(name, 4, "JFIF") != 0) return bytes;
  // Without a resolution the two numbers are the proportions of a pixel.
  const std::string number = Number(dpi ? Whole(*dpi) : 1, 2, Order::Big);
  bytes->replace(unit, 5, std::string(1, dpi ? '\x01' : '\0') + number + number);
  return bytes;
}

Result<std::string> Bmp(const cv::Mat& image, std::optional<double> dpi) {
  auto bytes = Encoded(image, ".bmp");
  if (!bytes) return bytes;
  constexpr std::size_t perMetre = 38;
  const std::string number = Number(dpi ? Whole(*dpi / 0.0254) : 0, 4, Order::Little);
  bytes->replace(perMetre, 8, number + number);
  return bytes;
}

// Runs of bytes: a count of bytes that follow, or of how often the next one is repeated.
std::string Packed(const std::string& row) {
  std::string packed;
  for (std::size_t i = 0; i < row.size();) {
    std::size_t run = 1;
    while (run < 128 && i + run < row.size() && row[i + run] == row[i]) ++run;
    if (run > 1) {
      packed += static_cast<char>(257 - run);
      packed += row[i];
      i += run;
      continue;
    }
    std::size_t end = i + 1;
    while (end < row.size() && end - i < 128 && (end + 1 >= row.size() || row[end] != row[end + 1])) ++end;
    packed += static_cast<char>(end - i - 1);
    packed.append(row, i, end - i);
    i = end;
  }
  return packed;
}

// Written here, as the library writes neither one bit a pixel nor a file without a resolution.
std::string Tiff(const cv::Mat& image, std::optional<double> dpi) {
  const bool bits = IsBlackAndWhite(image);
  const int channels = image.channels();
  std::string strip;
  for (int y = 0; y < image.rows; ++y) {
    std::string row;
    if (bits) {
      row.assign((static_cast<std::size_t>(image.cols) + 7) / 8, '\0');
      const std::uint8_t* from = image.ptr<std::uint8_t>(y);
      for (int x = 0; x < image.cols; ++x)
        if (from[x] != 0) row[static_cast<std::size_t>(x) / 8] |= static_cast<char>(128 >> x % 8);
    } else {
      cv::Mat line = image.row(y);
      if (channels == 3) {
        line = line.clone();  // the caller's pixels stay as they are
        cv::cvtColor(line, line, cv::COLOR_BGR2RGB);
      }
      row.assign(line.ptr<char>(), static_cast<std::size_t>(line.cols) * static_cast<std::size_t>(channels));
    }
    strip += Packed(row);
  }
  if (strip.size() % 2 != 0) strip += '\0';

  constexpr std::uint32_t head = 8;
  const auto length = static_cast<std::uint32_t>(strip.size());
  std::string far, entries;  // what does not fit into an entry stands before them
  std::uint16_t count = 0;
  const auto little = [](std::uint32_t value, int bytes) { return Number(value, bytes, Order::Little); };
  const auto entry = [&](std::uint32_t tag, std::uint32_t type, std::uint32_t values, std::uint32_t value) {
    entries += little(tag, 2) + little(type, 2) + little(values, 4) + little(value, 4);
    ++count;
  };
  const auto place = [&](const std::string& bytes) {
    const auto at = head + length + static_cast<std::uint32_t>(far.size());
    far += bytes;
    return at;
  };
  constexpr std::uint32_t shortType = 3, longType = 4, ratioType = 5;
  entry(256, longType, 1, static_cast<std::uint32_t>(image.cols));
  entry(257, longType, 1, static_cast<std::uint32_t>(image.rows));
  if (channels == 3)
    entry(258, shortType, 3, place(little(8, 2) + little(8, 2) + little(8, 2)));
  else
    entry(258, shortType, 1, bits ? 1 : 8);
  entry(259, shortType, 1, 32773);                  // runs of bytes
  entry(262, shortType, 1, channels == 3 ? 2 : 1);  // colours, or black is 0
  entry(273, longType, 1, head);
  entry(277, shortType, 1, static_cast<std::uint32_t>(channels));
  entry(278, longType, 1, static_cast<std::uint32_t>(image.rows));
  entry(279, longType, 1, length);
  if (dpi) {
    const std::uint32_t at = place(little(Whole(*dpi * 100), 4) + little(100, 4));
    entry(282, ratioType, 1, at);
    entry(283, ratioType, 1, at);
    entry(296, shortType, 1, 2);  // for each inch
  }
  if (far.size() % 2 != 0) far += '\0';
  const auto directory = head + length + static_cast<std::uint32_t>(far.size());
  return "II*" + std::string(1, '\0') + little(directory, 4) + strip + far + little(count, 2) + entries +
         little(0, 4);
}

enum class Format { None, Png, Jpeg, Tiff, Bmp };

Format FormatOf(const std::string& name) {
  const std::size_t dot = name.rfind('.');
  const std::string suffix = dot == std::string::npos ? std::string() : UpperAscii(name.substr(dot + 1));
  if (suffix == "PNG") return Format::Png;
  if (suffix == "JPG" || suffix == "JPEG") return Format::Jpeg;
  if (suffix == "TIF" || suffix == "TIFF") return Format::Tiff;
  return suffix == "BMP" ? Format::Bmp : Format::None;
}

}  // namespace

Result<void> CheckScanName(const std::string& name) {
  if (FormatOf(name) == Format::None)
    return Failure(name + ": a scan is written as .png, .jpg, .tif or .bmp");
  return {};
}

Result<std::string> EncodeScan(const cv::Mat& image, const std::string& name, std::optional<double> dpi,
                               int jpegQuality) {
  switch (FormatOf(name)) {
    case Format::Png:
      return Png(image, dpi);
    case Format::Jpeg:
      return Jpeg(image, dpi, jpegQuality);
    case Format::Tiff:
      return Tiff(image, dpi);
    case Format::Bmp:
      return Bmp(image, dpi);
    case Format::None:
      break;
  }
  return Failure(CheckScanName(name).error());
}

}  // namespace hyetex
