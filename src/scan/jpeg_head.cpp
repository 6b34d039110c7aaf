#include "scan/scan_heads.h"

namespace hyetex {
namespace {

enum Marker : std::uint32_t {
  FirstFrame = 0xc0,
  LastFrame = 0xcf,
  Restart = 0xd0,
  EndOfImage = 0xd9,
  Scan = 0xda,
  App0 = 0xe0,
  App1 = 0xe1
};

// Of the markers among the frames' three are none.
bool IsFrame(std::uint32_t marker) {
  return marker >= FirstFrame && marker <= LastFrame && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

struct Segment {
  std::uint32_t Marker = 0;
  std::uint64_t At = 0;      // of its content
  std::uint32_t Length = 0;  // of its content
};

// The segment whose marker stands at `at`, after fill bytes.
std::optional<Segment> SegmentAt(const ScanBytes& bytes, std::uint64_t at) {
  if (bytes.Number(at, 1, true) != 0xffU) return std::nullopt;
  auto marker = bytes.Number(++at, 1, true);
  while (marker == 0xffU) marker = bytes.Number(++at, 1, true);
  if (!marker) return std::nullopt;
  if (*marker == EndOfImage || *marker == 0x01 || (*marker & 0xf8) == Restart)
    return Segment{*marker, at + 1, 0};
  const auto length = bytes.Number(at + 1, 2, true);
  if (!length || *length < 2) return std::nullopt;
  return Segment{*marker, at + 3, *length - 2};
}

// Where the first marker stands in the pixels that begin at `at`.
std::optional<std::uint64_t> NextMarker(const ScanBytes& bytes, std::uint64_t at) {
  constexpr std::size_t piece = std::size_t{1} << 16;
  for (; at < bytes.Size(); at += piece - 1) {
    const std::string part = bytes.Text(at, piece);
    for (std::size_t i = part.find('\xff'); i < part.size() - 1; i = part.find('\xff', i + 1)) {
      const auto after = static_cast<unsigned char>(part[i + 1]);
      if (after != 0 && after != 0xff && (after & 0xf8) != Restart) return at + i;
    }
  }
  return std::nullopt;
}

}  // namespace

Result<ScanHead> ReadJpegHead(const ScanBytes& bytes) {
  ScanHead head{.Format = "JPEG"};
  std::optional<TiffTags> exif;
  for (std::uint64_t at = 2;;) {
    const auto segment = SegmentAt(bytes, at);
    if (!segment || segment->Marker == Scan || segment->Marker == EndOfImage)
      return Failure("it breaks off in its head");
    if (segment->Marker == App0 && segment->Length >= 12 &&
        bytes.Text(segment->At, 5) == std::string("JFIF\0", 5)) {
      const std::uint32_t unit = bytes.Number(segment->At + 7, 1, true).value_or(0);
      const double perInch = unit == 1 ? 1 : unit == 2 ? CmPerInch : 0;
      head.DpiAcross = bytes.Number(segment->At + 8, 2, true).value_or(0) * perInch;
      head.DpiUp = bytes.Number(segment->At + 10, 2, true).value_or(0) * perInch;
    }
    if (segment->Marker == App1 && !exif && bytes.Text(segment->At, 6) == std::string("Exif\0\0", 6))
      exif = ReadExif(bytes, segment->At + 6);
    if (IsFrame(segment->Marker)) {
      const auto height = bytes.Number(segment->At + 1, 2, true),
                 width = bytes.Number(segment->At + 3, 2, true);
      if (!height || !width) return Failure("it breaks off in its head");
      head.Height = *height;
      head.Width = *width;
      break;
    }
    at = segment->At + segment->Length;
  }
  if (exif) {
    head.Orientation = exif->Head.Orientation;
    if (head.DpiAcross == 0 || head.DpiUp == 0) {
      head.DpiAcross = exif->Head.DpiAcross;
      head.DpiUp = exif->Head.DpiUp;
    }
  }
  return head;
}

// A decoder makes up what is missing at the end, so the end's marker has to be there. The picture that
// cameras put into the head has one too, which does not count.
bool IsWholeJpeg(const ScanBytes& bytes) {
  for (std::uint64_t at = 2;;) {
    const auto segment = SegmentAt(bytes, at);
    if (!segment) return false;
    if (segment->Marker == EndOfImage) return true;
    at = segment->At + segment->Length;
    if (segment->Marker != Scan) continue;
    const auto next = NextMarker(bytes, at);
    if (!next) return false;
    at = *next;
  }
}

}  // namespace hyetex
