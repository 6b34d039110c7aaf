#include "scan/scan_heads.h"

#include <algorithm>
#include <cmath>

#include "scan/scan_scale.h"

namespace hyetex {
namespace {

// Resolutions this close are the same one, rounded.
constexpr double SameResolution = 0.005;

Result<ScanHead> BreaksOff() { return Failure("it breaks off in its head"); }

// Calls `take(type, at, length)` for each chunk's content until it returns false; whether it did.
template <typename Take>
bool ForEachPngChunk(const ScanBytes& bytes, Take&& take) {
  for (std::uint64_t at = 8; at + 12 <= bytes.Size();) {
    const std::uint32_t length = bytes.Number(at, 4, true).value_or(0);
    if (at + 12 + length > bytes.Size()) return false;
    if (!take(bytes.Text(at + 4, 4), at + 8, length)) return true;
    at += std::uint64_t{12} + length;
  }
  return false;
}

Result<ScanHead> ReadPngHead(const ScanBytes& bytes) {
  ScanHead head{.Format = "PNG"};
  const auto width = bytes.Number(16, 4, true), height = bytes.Number(20, 4, true),
             colour = bytes.Number(25, 1, true);
  if (!width || !height || !colour || bytes.Text(12, 4) != "IHDR") return BreaksOff();
  head.Width = *width;
  head.Height = *height;
  head.Alpha = *colour >= 4;
  ForEachPngChunk(bytes, [&](const std::string& type, std::uint64_t at, std::uint32_t length) {
    if (type == "tRNS") head.Alpha = true;
    if (type == "pHYs" && length == 9 && bytes.Number(at + 8, 1, true) == 1U) {
      head.DpiAcross = *bytes.Number(at, 4, true) * MmPerInch / 1000;
      head.DpiUp = *bytes.Number(at + 4, 4, true) * MmPerInch / 1000;
    }
    return type != "IDAT";
  });
  return head;
}

Result<ScanHead> ReadBmpHead(const ScanBytes& bytes) {
  ScanHead head{.Format = "BMP"};
  const auto size = bytes.Number(14, 4, false);
  if (!size) return BreaksOff();
  const bool old = *size == 12;
  const auto width = bytes.Number(18, old ? 2 : 4, false),
             height = bytes.Number(old ? 20 : 22, old ? 2 : 4, false);
  if (!width || !height) return BreaksOff();
  if (!old && *size < 40) return Failure("its head is none of a BMP picture");
  head.Width = old ? std::int64_t{*width} : std::int64_t{static_cast<std::int32_t>(*width)};
  // Rows from the top down have a negative height.
  head.Height = old ? std::int64_t{*height} : std::abs(std::int64_t{static_cast<std::int32_t>(*height)});
  if (!old) {
    head.DpiAcross = bytes.Number(38, 4, false).value_or(0) * MmPerInch / 1000;
    head.DpiUp = bytes.Number(42, 4, false).value_or(0) * MmPerInch / 1000;
  }
  return head;
}

bool IsWholeBmp(const ScanBytes& bytes, const ScanHead& head) {
  const auto start = bytes.Number(10, 4, false), headSize = bytes.Number(14, 4, false);
  const bool old = headSize == 12U;
  const auto bits = bytes.Number(old ? 24 : 28, 2, false);
  const std::uint32_t packed = old ? 0 : bytes.Number(30, 4, false).value_or(0);
  if (!start || !bits) return false;
  if (packed == 1 || packed == 2) return *start < bytes.Size();  // run lengths; only decoding tells
  const std::uint64_t row = (static_cast<std::uint64_t>(head.Width) * *bits + 31) / 32 * 4;
  return *start + row * static_cast<std::uint64_t>(head.Height) <= bytes.Size();
}

std::string DpiText(double dpi) { return std::to_string(std::llround(std::min(dpi, 1e9))); }

}  // namespace

Result<ScanHead> ReadScanHead(const ScanBytes& bytes, int page) {
  const std::string first = bytes.Text(0, 1024);
  if (first.empty()) return Failure("the file is empty");
  const std::string_view text = first;
  Result<ScanHead> head = Failure("it is neither a PNG, JPEG, TIFF or BMP picture nor a PDF");
  if (text.starts_with("\x89PNG\r\n\x1a\n"))
    head = ReadPngHead(bytes);
  else if (text.starts_with("\xff\xd8\xff"))
    head = ReadJpegHead(bytes);
  else if (text.starts_with("II") || text.starts_with("MM"))
    head = ReadTiffHead(bytes, page);
  else if (text.starts_with("BM"))
    head = ReadBmpHead(bytes);
  else if (text.find("%PDF-") != std::string_view::npos)
    return ScanHead{.Format = "PDF"};
  else if (text.starts_with("GIF8"))
    return Failure("it is a GIF picture; scans are PNG, JPEG, TIFF, BMP or PDF files");
  else if (text.starts_with("RIFF") && text.substr(0, 12).ends_with("WEBP"))
    return Failure("it is a WebP picture; scans are PNG, JPEG, TIFF, BMP or PDF files");
  if (!head) return head;
  if (page < 0 || page >= head->Pages)
    return Failure("it has no page " + std::to_string(page + 1) +
                   (head->Pages == 1 ? ", only one" : ", only " + std::to_string(head->Pages)));
  return head;
}

bool IsWhole(const ScanBytes& bytes, const ScanHead& head) {
  if (head.Format == "PNG")
    return ForEachPngChunk(
        bytes, [](const std::string& type, std::uint64_t, std::uint32_t) { return type != "IEND"; });
  if (head.Format == "JPEG") return IsWholeJpeg(bytes);
  if (head.Format == "TIFF") return IsWholeTiff(bytes, head);
  if (head.Format == "BMP") return IsWholeBmp(bytes, head);
  return true;
}

Result<ScanFacts> FactsOf(const ScanHead& head) {
  std::int64_t width = head.Width, height = head.Height;
  double across = head.DpiAcross, up = head.DpiUp;
  if (head.Orientation >= 5) {
    std::swap(width, height);
    std::swap(across, up);
  }
  if (width <= 0 || height <= 0) return Failure("it says that it is without any pixel");
  if (width == 1 && height == 1) return Failure("it is a single pixel, on which nothing can be traced");
  ScanFacts facts;
  facts.Format = head.Format;
  facts.Pages = head.Pages;
  const auto canBe = [](double dpi) { return dpi >= LeastScanDpi && dpi <= MostScanDpi; };
  if (canBe(across) && canBe(up)) {
    const double finer = std::max(across, up);
    if (std::abs(across - up) > SameResolution * finer) {
      width = std::llround(static_cast<double>(width) * finer / across);
      height = std::llround(static_cast<double>(height) * finer / up);
      facts.Remark = "The scan has " + DpiText(across) + " dpi across and " + DpiText(up) +
                     " dpi up; it is shown at " + DpiText(finer) + " dpi both ways.";
    }
    facts.PixelsPerMm = finer / MmPerInch;
  } else if (across > 0 || up > 0) {
    facts.Remark = "The file says " + DpiText(canBe(across) ? up : across) +
                   " dpi, which no scanner has; set the scale by two marks or the paper's width.";
  } else {
    facts.Remark = "The file does not say its resolution; set the scale by two marks or the paper's width.";
  }
  constexpr std::int64_t longest = 1 << 20;  // of a side, for the decoders
  if (width > longest || height > longest || width * height > MostScanPixels)
    return Failure("it has " + std::to_string(width) + " x " + std::to_string(height) +
                   " pixels, more than the " + std::to_string(MostScanPixels / 1'000'000) +
                   " million that are taken");
  facts.Width = static_cast<int>(width);
  facts.Height = static_cast<int>(height);
  return facts;
}

}  // namespace hyetex
