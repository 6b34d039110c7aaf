#include "scan/scan_scale.h"

#include <array>
#include <charconv>
#include <cmath>

#include "core/files.h"
#include "core/numbers.h"
#include "core/program_files.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::string_view ScansFileName = "Scans.dat";
constexpr std::array<std::string_view, 3> SourceWords{"resolution", "marks", "width"};

bool CanBe(double pixelsPerMm) {
  const double dpi = pixelsPerMm * MmPerInch;
  return dpi >= LeastScanDpi && dpi <= MostScanDpi;
}

// What a scanner gives, to a tenth.
std::string DpiText(double pixelsPerMm) { return RoundedText(pixelsPerMm * MmPerInch, 1) + " dpi"; }

Result<ScanScale> Checked(const ScanScale& scale) {
  if (CanBe(scale.PixelsPerMm)) return scale;
  return Failure("That would be a scan of " + DpiText(scale.PixelsPerMm) + ", which no scanner has (" +
                 ShortText(LeastScanDpi) + " to " + ShortText(MostScanDpi) + ").");
}

// A paper longer than this is no paper; what is shorter than a tenth cannot be measured.
bool IsLength(double mm) { return mm >= 0.1 && mm <= 100'000; }

// The word at the beginning of a line, which is taken off with the blank behind it.
std::string_view TakeWord(std::string_view& line) {
  const std::size_t end = std::min(line.find(' '), line.size());
  const std::string_view word = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return word;
}

std::optional<double> TakeNumber(std::string_view& line) {
  const std::string_view word = TakeWord(line);
  double value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size() || !(value >= 0)) return std::nullopt;
  return value;
}

struct Remembered {
  std::string_view ChartType;
  ScanScale Scale;
};

// "marks 11.79 200 11.81 Daily siphon": the source, the scale, the millimetres, what the file said, and the
// chart type's name, which may hold anything and stands last.
std::optional<Remembered> ReadLine(std::string_view line) {
  const std::string_view word = TakeWord(line);
  for (std::size_t i = 0; i < SourceWords.size(); ++i) {
    if (word != SourceWords[i]) continue;
    const auto scale = TakeNumber(line), mm = TakeNumber(line), file = TakeNumber(line);
    if (!scale || !mm || !file || !CanBe(*scale) || (i > 0 && !IsLength(*mm))) return std::nullopt;
    return Remembered{line, {static_cast<ScanScale::Source>(i), *scale, *mm, CanBe(*file) ? *file : 0}};
  }
  return std::nullopt;
}

}  // namespace

std::string ScaleText(const ScanScale& scale) {
  const std::string dpi = DpiText(scale.PixelsPerMm), mm = RoundedText(scale.Mm, 1);
  switch (scale.From) {
    case ScanScale::Source::Marks:
      return dpi + " by two marks " + mm + " mm apart";
    case ScanScale::Source::PaperWidth:
      return dpi + " by a paper " + mm + " mm wide";
    default:
      return dpi + " by the file";
  }
}

Result<ScanScale> ScaleByMarks(double x1, double y1, double x2, double y2, double mm) {
  if (!IsLength(mm)) return Failure("The distance between the marks is given in millimetres, as 200.");
  // Nearer, and the hand's half millimetre would be more than a hundredth.
  constexpr double leastPixels = 50;
  const double pixels = std::hypot(x2 - x1, y2 - y1);
  if (!(pixels >= leastPixels))
    return Failure("The marks lie too close to each other; press two that are far apart.");
  return Checked({ScanScale::Source::Marks, pixels / mm, mm});
}

Result<ScanScale> ScaleByPaperWidth(int imageWidth, double mm) {
  if (!IsLength(mm)) return Failure("The paper's width is given in millimetres, as 442.");
  return Checked({ScanScale::Source::PaperWidth, imageWidth / mm, mm});
}

std::optional<ScanScale> RememberedScale(const std::string& programFolder, const std::string& chartType) {
  std::optional<ScanScale> scale;
  const auto text = ReadProgramFile(JoinPath(programFolder, ScansFileName));
  if (!text) return scale;
  for (const std::string_view line : EditedLines(*text))
    if (const auto read = ReadLine(line); read && read->ChartType == chartType) scale = read->Scale;
  return scale;
}

Result<void> RememberScale(const std::string& programFolder, const std::string& chartType,
                           const ScanScale& scale) {
  if (const auto why = CheckOneLine(chartType)) return Failure(*why);
  const std::string path = JoinPath(programFolder, ScansFileName);
  const auto text = ReadProgramFile(path);
  if (!text) return Failure(text.error());
  const std::string mine = std::string(SourceWords[static_cast<std::size_t>(scale.From)]) + " " +
                           ExactText(scale.PixelsPerMm) + " " + ExactText(scale.Mm) + " " +
                           ExactText(scale.FilePixelsPerMm) + " " + chartType;
  if (!ReadLine(mine)) return Failure("A scale of " + ScaleText(scale) + " cannot be remembered.");
  std::vector<std::string_view> lines;
  for (const std::string_view line : EditedLines(*text))
    if (const auto read = ReadLine(line); !read || read->ChartType != chartType) lines.push_back(line);
  lines.push_back(mine);
  return WriteLines(path, lines);
}

std::optional<ScanScale> InitialScale(const std::optional<ScanScale>& remembered, const ScanFacts& facts) {
  const double file = facts.PixelsPerMm.value_or(0);
  ScanScale scale{ScanScale::Source::Resolution, file, 0, file};
  if (remembered && remembered->From == ScanScale::Source::PaperWidth) {
    scale = {remembered->From, facts.Width / remembered->Mm, remembered->Mm, file};
  } else if (remembered && remembered->From == ScanScale::Source::Marks) {
    const double was = remembered->FilePixelsPerMm;
    scale = {remembered->From, was > 0 ? remembered->PixelsPerMm * file / was : 0, remembered->Mm, file};
  }
  if (!CanBe(scale.PixelsPerMm)) return std::nullopt;
  return scale;
}

}  // namespace hyetex
