// The image of a scanned chart: a PNG, JPEG, BMP, a page of a TIFF or of a PDF. What a file says of itself is
// read first, from its head, so that no file is decoded that is too large or is no image; the decoded image
// is kept with half, quarter, ... sizes of itself, so that any part of it is shown at any size without
// reading more of it than the view has pixels.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "core/result.h"

namespace hyetex {

/// An image of more pixels is refused before it is decoded.
inline constexpr std::int64_t MostScanPixels = 500'000'000;
inline constexpr std::uint64_t MostScanBytes = (std::uint64_t{2} << 30) - 1;

/// What a file says of itself before it is decoded.
struct ScanFacts {
  std::string Format;  ///< "PNG", "JPEG", "TIFF", "BMP", "PDF"
  int Pages = 1;
  int Width = 0, Height = 0;  ///< of the page that was asked for, in pixels as Open() will give them
  /// By the file's resolution; nothing where it has none, or one that no scanner has (below 40 or above 4800
  /// dpi).
  std::optional<double> PixelsPerMm;
  std::string Remark;  ///< what the operator should know, as of a resolution that cannot be true; or empty
};
/// Fails, in words for the operator, on what is no image, is broken in its head, has no such page, or is too
/// large.
Result<ScanFacts> LookAtScan(const std::string& path, int page = 0);

/// How an image is shown; the file stays as it is.
struct ScanLook {
  int Brightness = 0;  ///< -100 to 100
  int Contrast = 0;    ///< -100 to 100
  int FadeGrid = 0;    ///< 0 to 100: how far coloured ink is faded into the paper, dark ink staying

  bool operator==(const ScanLook&) const = default;
};

/// Which part of an image a view shows: the image's place (in pixels from its left and top edges) under the
/// view's top-left corner, and the step for each pixel of the view to the right and down. Any turn and size.
struct ScanWindow {
  double X = 0, Y = 0;
  double RightX = 1, RightY = 0;
  double DownX = 0, DownY = 1;
};

class ScanImage {
 public:
  /// Decodes a page, from 0. Fails, in words for the operator, as LookAtScan() does, and on an image that
  /// breaks off. Pixels that are not square are made square.
  static Result<ScanImage> Open(const std::string& path, int page = 0);
  ScanImage(ScanImage&&) noexcept;
  ScanImage& operator=(ScanImage&&) noexcept;
  ~ScanImage();

  const std::string& Path() const;
  int Page() const;
  const std::string& Sha256() const;  ///< of the file's bytes, 64 lower-case hexadecimal digits
  int Width() const;
  int Height() const;
  std::optional<double> PixelsPerMm() const;  ///< as in ScanFacts
  std::size_t Bytes() const;                  ///< of memory that the image takes

  /// Fills a view of width x height pixels, row by row from the top, as 0xffRRGGBB. Where there is no image
  /// the view has the colour `around`.
  void Render(const ScanWindow& window, const ScanLook& look, std::uint32_t around,
              std::span<std::uint32_t> pixels, int width, int height) const;

 private:
  struct Data;
  explicit ScanImage(std::unique_ptr<Data> data);
  std::unique_ptr<Data> data_;
};

/// The SHA-256 of a file's bytes, as in ScanImage: whether a scan is still the one that was traced.
Result<std::string> Sha256OfFile(const std::string& path);

}  // namespace hyetex
