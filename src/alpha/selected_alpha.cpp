#include "alpha/selected_alpha.h"

#include "chartfiles/chart_file_lines.h"
#include "chartfiles/chart_lines.h"
#include "chartfiles/chart_reader.h"
#include "chartfiles/chart_text.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/store/light_reader.h"
#include "database/store/stored_text.h"

namespace hyetex {
namespace {

// By its label, or with blanks or words of another version before the label's.
bool HoldsSelectedAlpha(std::string_view line) {
  const ChartLine kind = KindOfChartLine(line).Kind;
  return (kind == ChartLine::AlphaSelected || kind == ChartLine::NoAlphaSelected) && !BeginsAsPoint(line) &&
         UpperAscii(line).find("ALPHA VALUE SELECTED") != std::string::npos;
}

}  // namespace

std::string SelectedAlpha::Text() const { return Value ? ShortText(*Value) : std::string(NoAlphaText); }

Result<SelectedAlpha> ReadSelectedAlpha(std::string_view typed) {
  typed = Trim(typed);
  if (typed.empty()) return Failure("There is no alpha value.");
  const auto number = TypedNumber(typed);
  const bool isWords = !number && typed.find('0') == std::string_view::npos;
  if (isWords) return SelectedAlpha{};
  if (const auto why = CheckNumber(typed, AlphaEntry)) return Failure(*why);
  return SelectedAlpha{number};
}

Result<std::string> RewriteSelectedAlpha(std::string_view storedText, const SelectedAlpha& alpha) {
  const std::string_view bytes = SplitStoredText(storedText).Bytes;
  const std::string label(LabelOf(ChartLine::AlphaSelected)), line = label + alpha.Text();
  ChartFileLines lines(bytes);
  bool found = false;
  for (std::size_t i = 0; i < lines.Count(); ++i) {
    const std::string_view old = lines.At(i);
    if (!HoldsSelectedAlpha(old)) continue;
    found = true;
    // Where line ends are mixed, a part of one may stand on the line.
    lines.Replace(i, line + std::string(old.substr(old.find_last_not_of("\r\n") + 1)));
  }
  if (!found) {
    if (!BeginsAsChart(bytes)) return Failure("its text is no chart");
    // A last line would make it look whole.
    ChartReading reading;
    ReadStoredChart(storedText, {}, reading);
    if (!reading.CutOff.empty()) return Failure("its text is cut off: " + reading.CutOff);
    lines.Insert(lines.Count(), line);
  }
  std::string made(storedText.substr(0, storedText.size() - bytes.size()));
  made += lines.Bytes();
  if (made.size() > MostChartBytes)
    return Failure("its text would be longer than " + std::to_string(MostChartBytes >> 20) +
                   " MB, and nothing could read it");
  const float wanted = alpha.Value ? LeadingFloat(alpha.Text()) : NoAlpha;
  if (ReadHead(SplitStoredText(made).Bytes, {}, {}).SelectedAlpha != wanted)
    return Failure("a line of its text, which is not one of ours, says another selected alpha");
  return made;
}

}  // namespace hyetex
