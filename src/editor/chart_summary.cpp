#include "editor/chart_summary.h"

#include <algorithm>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::size_t MostOfAComment = 60;  // characters
constexpr std::string_view Gap = "  ";

double Written(float value) { return LeadingNumber(ShortText(value)); }

std::string DepthOf(float depth) { return depth == NoDepth ? "unknown" : ShortText(depth); }

std::string FactorOf(double value, double standard) {
  if (value == NoDepth || standard == NoDepth || standard == 0) return "unknown";
  return RoundedText((value / standard - 1) * 100, 1);
}

struct SummaryColumn {
  std::string_view Above, Below;  // its heading
  bool ToTheRight;
  std::string (*TextOf)(const ChartRecord& chart);
};

const SummaryColumn Columns[] = {
    {"Start", "Date", false,
     [](const ChartRecord& c) {
       return c.StartTime == 0 ? std::string("unknown") : GeneralDateText(c.StartTime).substr(0, 10);
     }},
    {"Start", "Time", false,
     [](const ChartRecord& c) { return c.StartTime == 0 ? std::string("unknown") : TimeText(c.StartTime); }},
    {"Lapse", "", true,
     [](const ChartRecord& c) {
       return c.StartTime == 0 || c.EndTime == 0 ? std::string("unknown")
                                                 : RoundedText((c.EndTime - c.StartTime) * 24, 2);
     }},
    {"Dig.", "Time", true, [](const ChartRecord& c) { return ShortText(c.DigitizedTime); }},
    {"Eyed", "Depth", true, [](const ChartRecord& c) { return DepthOf(c.EyedDepth); }},
    {"Dig.", "Depth", true, [](const ChartRecord& c) { return DepthOf(c.DigitizedDepth); }},
    {"Man.", "Depth", true, [](const ChartRecord& c) { return DepthOf(c.ManualDepth); }},
    {"Sel.", "Depth", true, [](const ChartRecord& c) { return DepthOf(c.SelectedDepth); }},
    {"Man.", "Fact", true,
     [](const ChartRecord& c) { return FactorOf(Written(c.ManualDepth), Written(c.EyedDepth)); }},
    {"Dig.", "Fact", true,
     [](const ChartRecord& c) { return FactorOf(Written(c.DigitizedDepth), Written(c.EyedDepth)); }},
    {"Time", "Fact", true,
     [](const ChartRecord& c) {
       return c.StartTime == 0 || c.EndTime == 0
                  ? std::string("unknown")
                  : FactorOf((c.EndTime - c.StartTime) * 24, Written(c.DigitizedTime));
     }},
    {"General", "Comment", false, [](const ChartRecord& c) { return ShownText(c.GeneralComment); }},
    {"Dig.", "Comment", false, [](const ChartRecord& c) { return ShownText(c.DigitizerComment); }},
};

// In characters of UTF-8.
bool BeginsCharacter(char c) { return (c & 0xC0) != 0x80; }
std::size_t WidthOf(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, BeginsCharacter));
}

// On one line, and no longer than a comment may be.
std::string Cell(std::string text) {
  for (char& c : text)
    if (c >= 0 && c < ' ') c = ' ';
  if (WidthOf(text) <= MostOfAComment) return text;
  std::size_t at = 0;
  for (std::size_t characters = 0; at < text.size(); ++at)
    if (BeginsCharacter(text[at]) && ++characters > MostOfAComment - 3) break;
  return text.substr(0, at) + "...";
}

}  // namespace

bool ChartSummary::Add(const ChartRecord& chart) {
  if (rows_.size() == MostSummaryRows) return false;
  std::vector<std::string>& row = rows_.emplace_back();
  for (const SummaryColumn& column : Columns) row.push_back(Cell(column.TextOf(chart)));
  return true;
}

std::string ChartSummary::Text() const {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < std::size(Columns); ++i) {
    widths.push_back(std::max(Columns[i].Above.size(), Columns[i].Below.size()));
    for (const auto& row : rows_) widths.back() = std::max(widths.back(), WidthOf(row[i]));
  }
  std::string text;
  const auto addLine = [&](auto&& cellOf) {
    const std::size_t start = text.size();
    for (std::size_t i = 0; i < std::size(Columns); ++i) {
      const std::string_view cell = cellOf(i);
      const std::string blanks(widths[i] - WidthOf(cell), ' ');
      if (i > 0) text += Gap;
      if (Columns[i].ToTheRight) text += blanks;
      text += cell;
      if (!Columns[i].ToTheRight) text += blanks;
    }
    text.resize(std::max(start, text.find_last_not_of(' ') + 1));
    text += '\n';
  };
  addLine([](std::size_t i) { return Columns[i].Above; });
  addLine([](std::size_t i) { return Columns[i].Below; });
  for (const auto& row : rows_) addLine([&](std::size_t i) { return std::string_view(row[i]); });
  return text;
}

std::string LeftOutOfSummary(std::size_t charts) {
  if (charts == 0) return {};
  return std::to_string(charts) + (charts == 1 ? " chart is" : " charts are") +
         " left out: a summary holds at most " + std::to_string(MostSummaryRows) + ".";
}

}  // namespace hyetex
