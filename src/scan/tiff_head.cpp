#include <set>

#include "scan/scan_heads.h"

namespace hyetex {
namespace {

constexpr std::size_t MostPages = 10'000;

enum Tag : std::uint32_t {
  ImageWidth = 256,
  ImageLength = 257,
  StripOffsets = 273,
  Orientation = 274,
  StripByteCounts = 279,
  XResolution = 282,
  YResolution = 283,
  ResolutionUnit = 296,
  TileOffsets = 324,
  TileByteCounts = 325,
  ExtraSamples = 338
};

int BytesOf(std::uint32_t type) { return type == 3 ? 2 : type == 4 ? 4 : type == 5 ? 8 : 1; }

struct Entry {
  std::uint32_t Tag = 0, Type = 0, Count = 0;
  std::uint64_t At = 0;  // of its first value

  std::optional<std::uint32_t> Value(const ScanBytes& bytes, bool bigEndian, std::uint32_t index = 0) const {
    if (index >= Count || (Type != 1 && Type != 3 && Type != 4)) return std::nullopt;
    const int size = BytesOf(Type);
    return bytes.Number(At + std::uint64_t{index} * static_cast<unsigned>(size), size, bigEndian);
  }
  double Rational(const ScanBytes& bytes, bool bigEndian) const {
    if (Type != 5 || Count == 0) return Value(bytes, bigEndian).value_or(0);
    const auto above = bytes.Number(At, 4, bigEndian), below = bytes.Number(At + 4, 4, bigEndian);
    return above && below && *below != 0 ? static_cast<double>(*above) / *below : 0;
  }
};

// Calls `take(entry)` for all of a directory, and gives where the next one lies.
template <typename Take>
std::optional<std::uint32_t> ForEachEntry(const ScanBytes& bytes, std::uint64_t base, std::uint32_t at,
                                          bool bigEndian, Take&& take) {
  const auto count = bytes.Number(base + at, 2, bigEndian);
  if (!count) return std::nullopt;
  std::uint64_t from = base + at + 2;
  for (std::uint32_t i = 0; i < *count; ++i, from += 12) {
    const auto tag = bytes.Number(from, 2, bigEndian), type = bytes.Number(from + 2, 2, bigEndian),
               values = bytes.Number(from + 4, 4, bigEndian), place = bytes.Number(from + 8, 4, bigEndian);
    if (!tag || !type || !values || !place) return std::nullopt;
    const bool inside = std::uint64_t{*values} * static_cast<unsigned>(BytesOf(*type)) <= 4;
    take(Entry{*tag, *type, *values, inside ? from + 8 : base + *place});
  }
  return bytes.Number(from, 4, bigEndian);
}

}  // namespace

std::optional<TiffTags> ReadTiffTags(const ScanBytes& bytes, std::uint64_t base, std::uint32_t at,
                                     bool bigEndian) {
  TiffTags tags;
  ScanHead& head = tags.Head;
  head.Directory = at;
  head.BigEndian = bigEndian;
  double perInch = 1;
  const auto next = ForEachEntry(bytes, base, at, bigEndian, [&](const Entry& entry) {
    const std::uint32_t value = entry.Value(bytes, bigEndian).value_or(0);
    switch (entry.Tag) {
      case ImageWidth:
        head.Width = value;
        break;
      case ImageLength:
        head.Height = value;
        break;
      case Orientation:
        if (value < 1 || value > 8 || entry.Type != 3) break;
        head.Orientation = static_cast<int>(value);
        head.OrientationAt = static_cast<std::uint32_t>(entry.At);
        break;
      case XResolution:
        head.DpiAcross = entry.Rational(bytes, bigEndian);
        break;
      case YResolution:
        head.DpiUp = entry.Rational(bytes, bigEndian);
        break;
      case ResolutionUnit:
        perInch = value == 2 ? 1 : value == 3 ? CmPerInch : 0;
        break;
      case ExtraSamples:
        head.Alpha = value == 1 || value == 2;
        break;
      case TileOffsets:
        tags.Tiled = true;
        break;
      default:
        break;
    }
  });
  if (!next) return std::nullopt;
  head.DpiAcross *= perInch;
  head.DpiUp *= perInch;
  tags.Next = *next;
  return tags;
}

std::optional<TiffTags> ReadExif(const ScanBytes& bytes, std::uint64_t base) {
  const std::string order = bytes.Text(base, 2);
  if (order != "II" && order != "MM") return std::nullopt;
  const bool bigEndian = order == "MM";
  const auto at = bytes.Number(base + 4, 4, bigEndian);
  if (!at) return std::nullopt;
  return ReadTiffTags(bytes, base, *at, bigEndian);
}

Result<ScanHead> ReadTiffHead(const ScanBytes& bytes, int page) {
  const bool bigEndian = bytes.Text(0, 2) == "MM";
  const auto version = bytes.Number(2, 2, bigEndian);
  if (version == 43U) return Failure("it is a BigTIFF, which is not read; store it as a plain TIFF");
  if (version != 42U) return Failure("it is neither a PNG, JPEG, TIFF or BMP picture nor a PDF");
  ScanHead head;
  std::set<std::uint32_t> seen;
  for (auto at = bytes.Number(4, 4, bigEndian); at != 0U;) {
    const auto tags = at ? ReadTiffTags(bytes, 0, *at, bigEndian) : std::nullopt;
    if (!tags) return Failure("it breaks off in the directory of page " + std::to_string(seen.size() + 1));
    if (!seen.insert(*at).second) return Failure("it is broken: its pages go round in a circle");
    if (seen.size() > MostPages) return Failure("it has more than " + std::to_string(MostPages) + " pages");
    if (static_cast<int>(seen.size()) == page + 1) head = tags->Head;
    at = tags->Next;
  }
  if (seen.empty()) return Failure("it has no page");
  head.Format = "TIFF";
  head.Pages = static_cast<int>(seen.size());
  return head;
}

bool IsWholeTiff(const ScanBytes& bytes, const ScanHead& head) {
  Entry starts, lengths;
  ForEachEntry(bytes, 0, head.Directory, head.BigEndian, [&](const Entry& entry) {
    if (entry.Tag == StripOffsets || entry.Tag == TileOffsets) starts = entry;
    if (entry.Tag == StripByteCounts || entry.Tag == TileByteCounts) lengths = entry;
  });
  if (starts.Count == 0 || std::uint64_t{starts.Count} > bytes.Size()) return false;
  for (std::uint32_t i = 0; i < starts.Count; ++i) {
    const auto start = starts.Value(bytes, head.BigEndian, i);
    if (!start) return false;
    // Old writers leave the lengths of a single strip out.
    const std::uint64_t length = lengths.Value(bytes, head.BigEndian, i).value_or(1);
    if (*start + length > bytes.Size()) return false;
  }
  return true;
}

}  // namespace hyetex
