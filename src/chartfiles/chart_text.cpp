#include "chartfiles/chart_text.h"

#include <array>
#include <cmath>
#include <utility>

#include "chartfiles/chart_lines.h"
#include "chartfiles/chart_scan.h"
#include "core/comments.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::string_view LineEnd = "\r\n";

// A line end in a typed text would make a line of its own.
void AddLine(std::string& text, std::string_view line) { text.append(OneLine(line)).append(LineEnd); }

void AddLine(std::string& text, ChartLine kind, std::string_view value = {}) {
  text.append(LabelOf(kind));
  AddLine(text, value);
}

std::string_view ChartMethodText(int method) {
  switch (method) {
    case 1:
      return "1 - Non-Linear";
    case 2:
      return "2 - Tipping-Bucket";
    default:
      return "0 - Linear";
  }
}

// The lines in which the file of a traced chart and the empty form differ.
struct HeadValues {
  std::string Start, End;
  double Hours = 0;
  std::string DigitizedDepth;
  int Points = 0;
  std::string Reliability;
  std::optional<ScanReference> Scan = {};
};

void AddHead(std::string& text, const ChartRecord& chart, int method, const ChartOrigin& origin,
             const HeadValues& values) {
  AddLine(text, "HYETEX88 ASCII FILE");
  AddLine(text, ChartLine::Core, origin.Core);
  AddLine(text, ChartLine::Agency, origin.Agency);
  AddLine(text, ChartLine::Station, origin.Station);
  AddLine(text, ChartLine::Instrument, origin.InstrumentCode);
  AddLine(text, ChartLine::User, origin.User);
  AddLine(text, ChartLine::Method, ChartMethodText(method));
  AddLine(text, ChartLine::Start, values.Start);
  AddLine(text, ChartLine::End, values.End);
  AddLine(text, ChartLine::DigitizedTime, RoundedText(values.Hours, 2));
  AddLine(text, ChartLine::EyedDepth, ShortText(chart.EyedDepth));
  AddLine(text, ChartLine::DigitizedDepth, values.DigitizedDepth);
  AddLine(text, ChartLine::SelectedDepth, values.DigitizedDepth);
  AddLine(text, ChartLine::ManualDepth, ShortText(chart.ManualDepth));
  AddLine(text, ChartLine::PointCount, ShortText(values.Points));
  AddLine(text, ChartLine::Reliability, values.Reliability);
  if (values.Scan) AddLine(text, ChartLine::Scan, ScanLineText(*values.Scan));
  AddLine(text, ChartLine::PointsHeading);
}

// The hours between two dates, as the 32-bit float that the file's number is made from.
double HoursBetween(Date start, Date end) {
  return static_cast<double>(static_cast<float>(end - start)) * 24;
}

bool IsFirstOfPaper(const Trace& line, int point) {
  for (int paper = 1; paper <= line.CurrentPaper(); ++paper)
    if (line.Paper(paper).FirstPoint == point) return true;
  return false;
}

void AddPointLine(ChartText& file, const Trace& line, int i) {
  const DigitizedPoint& point = line.Point(i);
  std::string comment = point.Comment;
  if (point.StartsSegment())
    AddCode(comment, CodeText(IsFirstOfPaper(line, i) ? CodeNewSheet : CodeNewSegment));

  const TabletExtents& tablet = line.Scales().Tablet;
  const double mmPerUnit = static_cast<double>(tablet.TabletWidthMm) / tablet.TabletWidthUnits;
  const int paper = line.PaperOfPoint(i);
  AddLine(file.Text, RoundedText(line.TimeAlong(i, paper) * mmPerUnit, 2) + "," +
                         RoundedText(line.HeightOf(i, paper) * mmPerUnit, 2) + "," + comment);
}

void AddAlphaLines(ChartText& file, const Trace& line) {
  int count = 0;
  for (int i = 1; i <= line.LastPoint(); ++i) {
    if (!HasCode(line.Point(i).Comment, CodeAlpha)) continue;
    ++count;
    const int paper = line.PaperOfPoint(i);
    const double along = static_cast<double>(line.TimeAlong(i, paper)) - line.TimeAlong(i - 1, paper);
    const double rise = static_cast<double>(line.HeightOf(i, paper)) - line.HeightOf(i - 1, paper);
    if (rise == 0) {
      file.Notes.push_back("Alpha " + ShortText(count) + " (point " + ShortText(i) +
                           ") has no value: the pen did not drop there.");
    } else {
      AddLine(file.Text, ChartLine::Alpha, ShortText(count) + " : " + RoundedText(std::abs(along / rise), 6));
    }
  }
  if (count > MaxAlpha)
    file.Notes.push_back("The chart has " + ShortText(count) +
                         " alpha points: readers of the file keep the first " + ShortText(MaxAlpha) + ".");
}

std::optional<ScanReference> ScanOf(const Session& session) {
  if (!session.Scan) return std::nullopt;
  return ScanReference{session.Scan->Path, session.Scan->Page, session.Scan->Sha256};
}

Result<void> CheckTexts(const ChartOrigin& origin, std::string_view generalComment,
                        std::string_view digitizerComment) {
  if (const auto refusal = CheckOneLine(origin.InstrumentCode))
    return Failure("The instrument code: " + *refusal);
  const std::array<std::pair<std::string_view, std::string_view>, 6> texts{
      {{"core party's name", origin.Core},
       {"agency's name", origin.Agency},
       {"station's name", origin.Station},
       {"user's name", origin.User},
       {"general comment", generalComment},
       {"digitizer comment", digitizerComment}}};
  for (const auto& [what, text] : texts)
    if (const auto refusal = CheckOneLine(OneLine(text)))
      return Failure("The " + std::string(what) + ": " + *refusal);
  return {};
}

// The database keeps a file behind a line with its name, and its readers take no more either.
Result<ChartText> CheckedLength(ChartText file, const ChartOrigin& origin, Date start) {
  if (ChartFileName(origin.InstrumentCode, start).size() + LineEnd.size() + file.Text.size() <=
      MostChartBytes)
    return file;
  return Failure("The chart's file would be longer than " +
                 ShortText(static_cast<int>(MostChartBytes >> 20)) +
                 " MB, and nothing could read it: shorten its comments.");
}

}  // namespace

std::string_view ReliabilityText(int reliability) {
  static constexpr std::array<std::string_view, 4> texts{"Unknown", "Acceptable", "Marginal", "Unreliable"};
  return reliability >= 0 && reliability < 4 ? texts[static_cast<std::size_t>(reliability)] : texts[0];
}

Result<ChartText> MakeChartText(const Session& session, const ChartOrigin& origin,
                                std::string_view digitizerComment) {
  const ChartRecord& chart = session.Chart;
  if (auto texts = CheckTexts(origin, chart.GeneralComment, digitizerComment); !texts)
    return Failure(texts.error());

  const Trace& line = session.Line;
  const int last = line.LastPoint();
  ChartText file;
  AddHead(file.Text, chart, line.Scales().ChartType.ChartMethod, origin,
          {DateText(chart.StartTime), DateText(chart.EndTime),
           HoursBetween(chart.StartTime, session.PointTime(last)), RoundedText(session.TotalDepth(last), 1),
           last + 1, ShortText(chart.Reliability) + "-" + std::string(ReliabilityText(chart.Reliability)),
           ScanOf(session)});
  for (int i = 0; i <= last; ++i) AddPointLine(file, line, i);
  if (last + 1 > MaxPoint)
    file.Notes.push_back("The chart has " + ShortText(last + 1) +
                         " points: readers of the file keep the first " + ShortText(MaxPoint) + ".");
  AddLine(file.Text, ChartLine::GeneralComment, chart.GeneralComment);
  AddLine(file.Text, ChartLine::DigitizerComment, digitizerComment);
  AddAlphaLines(file, line);
  AddLine(file.Text, ChartLine::AlphaSelected, "None");
  return CheckedLength(std::move(file), origin, chart.StartTime);
}

Result<ChartText> MakeEmptyChartText(const ChartRecord& task, int chartMethod, const ChartOrigin& origin) {
  if (auto texts = CheckTexts(origin, task.GeneralComment, {}); !texts) return Failure(texts.error());
  ChartText file;
  AddHead(file.Text, task, chartMethod, origin,
          {GeneralDateText(task.StartTime), GeneralDateText(task.EndTime),
           HoursBetween(task.StartTime, task.EndTime), ShortText(task.EyedDepth), 0, "3 - Unreliable"});
  AddLine(file.Text, "0,0,");
  AddLine(file.Text, ChartLine::GeneralComment, task.GeneralComment);
  AddLine(file.Text, ChartLine::DigitizerComment, "NOT DIGITIZED");
  AddLine(file.Text, ChartLine::AlphaSelected, "None");
  return CheckedLength(std::move(file), origin, task.StartTime);
}

std::string ChartFileName(std::string_view instrumentCode, Date start) {
  return std::string(instrumentCode) + "-" + DateCode(start) + ".dat";
}

std::optional<ParsedChartFileName> ParseChartFileName(std::string_view name) {
  constexpr std::string_view form = "-YYYYMMDD-HHMM.dat";
  name = BaseName(name);
  if (name.size() < form.size() || !EqualIgnoringCase(name.substr(name.size() - 4), ".dat"))
    return std::nullopt;
  const std::string_view stamp = name.substr(name.size() - form.size());
  const auto number = [&](std::size_t at, std::size_t length) {
    int value = 0;
    for (char c : stamp.substr(at, length)) {
      if (c < '0' || c > '9') return -1;
      value = value * 10 + (c - '0');
    }
    return value;
  };
  const int year = number(1, 4), month = number(5, 2), day = number(7, 2), hour = number(10, 2),
            minute = number(12, 2);
  if (stamp[0] != '-' || stamp[9] != '-' || year < 100 || month < 1 || month > 12 || day < 1 || day > 31 ||
      hour < 0 || hour > 23 || minute < 0 || minute > 59)
    return std::nullopt;
  return ParsedChartFileName{std::string(name.substr(0, name.size() - form.size())),
                             MakeDate(year, month, day, hour, minute)};
}

std::string OverwriteQuestion(std::string_view name) {
  return "There is an existing file by the name of " + std::string(name) +
         ". The programme will overwrite it.";
}

}  // namespace hyetex
