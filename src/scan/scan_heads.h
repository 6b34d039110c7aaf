// What the head of an image file says: its format, which is told by its bytes and never by its name, how many
// pages it has, and the size and resolution of one. Nothing is decoded.
#pragma once

#include "scan/scan_bytes.h"
#include "scan/scan_image.h"

namespace hyetex {

inline constexpr double CmPerInch = 2.54;

/// Of one page of a file, as it is stored.
struct ScanHead {
  std::string Format;
  int Pages = 1;
  std::int64_t Width = 0, Height = 0;
  double DpiAcross = 0, DpiUp = 0;  ///< 0 where the file does not say
  /// How the stored rows and columns lie on the page, as the tag "Orientation" numbers it, 1 to 8; from 5 on
  /// rows are columns.
  int Orientation = 1;
  bool Alpha = false;
  // Of a TIFF only: where the page's directory lies, and where in the file its orientation, if anywhere.
  std::uint32_t Directory = 0, OrientationAt = 0;
  bool BigEndian = false;
};

/// Fails, in words without the file's name, on what is no scan. Of a PDF only the format is filled in.
Result<ScanHead> ReadScanHead(const ScanBytes& bytes, int page);
Result<ScanHead> ReadJpegHead(const ScanBytes& bytes);
Result<ScanHead> ReadTiffHead(const ScanBytes& bytes, int page);

/// What TIFF files and the data of cameras in JPEG and PNG files say in a directory of tags.
struct TiffTags {
  ScanHead Head;
  bool Tiled = false;
  std::uint32_t Next = 0;  ///< where the next page's directory lies; 0 after the last
};
/// The directory at `base` + `at`; nothing where the file ends before it does.
std::optional<TiffTags> ReadTiffTags(const ScanBytes& bytes, std::uint64_t base, std::uint32_t at,
                                     bool bigEndian);
/// The first directory of the data of a camera at `base`, with its orientation and resolution.
std::optional<TiffTags> ReadExif(const ScanBytes& bytes, std::uint64_t base);

/// Whether the page that the head is of lies whole in the file, as far as that can be told without decoding.
bool IsWhole(const ScanBytes& bytes, const ScanHead& head);
bool IsWholeJpeg(const ScanBytes& bytes);
bool IsWholeTiff(const ScanBytes& bytes, const ScanHead& head);

/// What Open() will make of it: turned upright and with square pixels. Fails on an image that is too large
/// or too small.
Result<ScanFacts> FactsOf(const ScanHead& head);

}  // namespace hyetex
