#include "chartfiles/saving.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/chart_length.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr Rgb Red{255, 0, 0};

Date Joined(Date date, Date time) { return std::floor(date) + (time - std::floor(time)); }

ChartRecord WithDetails(const EditedDetails& edited, ChartRecord chart) {
  chart.StartTime = Joined(edited.BeginDate, edited.BeginTime);
  chart.EndTime = Joined(edited.EndDate, edited.EndTime);
  chart.EyedDepth = static_cast<float>(TypedOrLeading(edited.EyedDepth));
  chart.ManualDepth = static_cast<float>(TypedOrLeading(edited.ManualDepth));
  return chart;
}

// The task list shows the row of this setting as the next chart to digitize; 0 is no row. A settings file
// that cannot be written does not undo the chart file.
void RaiseTaskRow(Settings& settings) {
  const int row = settings.Get(setting::TaskRow);
  if (row != 0) (void)settings.Set(setting::TaskRow, row + 1);
}

std::string JoinedLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(text.empty() ? "" : "\n").append(line);
  return text;
}

}  // namespace

Result<ChartOrigin> OriginOfChart(const ReferenceLists& lists, const ChartRecord& chart, std::string user) {
  const int station = chart.InstrumentIndex;
  if (station < 0)
    return Failure("No station has the task's instrument code \"" + ShownText(chart.InstrumentCode) + "\"");
  const StationRecord& record = lists.Stations[static_cast<std::size_t>(station)];
  if (record.InstrumentCode.empty()) return Failure("The task's station has no instrument code");
  if (const auto why = CheckInstrumentCode(record.InstrumentCode)) return Failure(*why);
  return ChartOrigin{StationCoreName(lists, station), StationAgencyName(lists, station), record.Name,
                     record.InstrumentCode, std::move(user)};
}

EditedDetails DetailsOf(const ChartRecord& chart) {
  return {.BeginDate = std::floor(chart.StartTime),
          .BeginTime = chart.StartTime - std::floor(chart.StartTime),
          .EndDate = std::floor(chart.EndTime),
          .EndTime = chart.EndTime - std::floor(chart.EndTime),
          .EyedDepth = ShortText(chart.EyedDepth),
          .ManualDepth = ShortText(chart.ManualDepth)};
}

std::optional<std::string> TakeDetails(const EditedDetails& edited, ChartRecord& chart) {
  const ChartRecord taken = WithDetails(edited, chart);
  if (!HasLength(taken)) return std::string(NoLengthRefusal);
  chart = taken;
  return std::nullopt;
}

bool DetailsDiffer(const EditedDetails& edited, const ChartRecord& chart) {
  const ChartRecord taken = WithDetails(edited, chart);
  const auto differ = [](Date a, Date b) { return DateText(a) != DateText(b) || TimeText(a) != TimeText(b); };
  return taken.EyedDepth != chart.EyedDepth || taken.ManualDepth != chart.ManualDepth ||
         differ(taken.StartTime, chart.StartTime) || differ(taken.EndTime, chart.EndTime);
}

std::optional<float> ChosenDepth(const Session& session, DepthChoice choice) {
  const float eyed = session.Chart.EyedDepth;
  const double digitized = Round(session.TotalDepth(session.Line.LastPoint()), 1);
  switch (choice) {
    case DepthChoice::Eyed:
      return eyed;
    case DepthChoice::Digitized:
      return static_cast<float>(digitized);
    case DepthChoice::Average:
      return eyed == NoDepth ? NoDepth : static_cast<float>(Round((digitized + eyed) / 2, 1));
    case DepthChoice::Manual:
      return session.Chart.ManualDepth;
    case DepthChoice::Other:
      break;
  }
  return std::nullopt;
}

bool FactorBlinks(Factor factor, const ChartReport& report, const ChartRecord& chart) {
  if (factor == Factor::Manual) return false;
  const float value =
      factor == Factor::Time ? static_cast<float>(chart.EndTime - chart.StartTime) : chart.EyedDepth;
  const std::int16_t percent = report.Factors[static_cast<std::size_t>(factor)];
  return FactorAlert(static_cast<float>(std::abs(percent)) / 100, value, factor);
}

Rgb BlinkedColour(Rgb fore, Rgb back, bool alert) { return alert && fore == back ? Red : back; }

Result<std::optional<std::string>> WriteChartFile(std::string_view text, const std::string& folder,
                                                  const std::string& name, const Confirm& mayOverwrite) {
  const std::string path = JoinPath(folder, name);
  if (FileExists(path) && !mayOverwrite(OverwriteQuestion(name))) return std::nullopt;
  if (const auto written = WriteWholeFile(path, text); !written) return Failure(written.error());
  return path;
}

Result<SaveOutcome> SaveDigitization(Session& session, const ChartOrigin& origin, Settings& settings,
                                     std::string_view digitizerComment, const SaveQuestions& questions) {
  if (SessionError(session)) return Failure("There is no chart to save.");
  if (!HasLength(session.Chart)) return Failure(NoLengthRefusal);
  const auto file = MakeChartText(session, origin, digitizerComment);
  if (!file) return Failure(file.error());
  if (!file->Notes.empty() && !questions.DespiteNotes(JoinedLines(file->Notes)))
    return SaveOutcome::NotWanted;

  const std::string name = ChartFileName(origin.InstrumentCode, session.ChartStart());
  const auto writeInto = [&](const std::string& folder) {
    return WriteChartFile(file->Text, folder, name, questions.Overwrite);
  };
  const auto target = ReadTargetFolder(settings);
  if (!target) return Failure(target.error());
  const std::string stored = settings.Get(setting::TargetFolder);
  const bool isAway = questions.OtherFolder && !stored.empty() && !FolderExists(stored);
  auto path = isAway ? Failure("There is no folder " + stored) : writeInto(*target);
  while (!path && questions.OtherFolder) {
    const auto other = questions.OtherFolder(path.error());
    if (!other) return SaveOutcome::NotWanted;
    path = writeInto(*other);
  }
  if (!path) return Failure(path.error());
  if (!*path) return SaveOutcome::KeptOldFile;
  RaiseTaskRow(settings);
  session.Saved = true;
  return SaveOutcome::Written;
}

}  // namespace hyetex
