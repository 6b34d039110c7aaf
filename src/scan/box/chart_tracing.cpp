#include "scan/box/chart_tracing.h"

#include <chrono>
#include <filesystem>
#include <utility>

#include "chartfiles/saving.h"
#include "core/files.h"
#include "digitizing/action_machine.h"
#include "digitizing/journal.h"
#include "digitizing/resume.h"
#include "digitizing/scan_placement.h"
#include "scan/blank_form.h"
#include "scan/trace_picture.h"
#include "scan/trace_steps.h"

namespace hyetex {
namespace {

constexpr std::size_t MostWords = 16000;  // of one chart: a process hands them over in one go
constexpr std::size_t MostOfForm = 15;    // more make it no better
constexpr std::string_view Comment = "Traced from a scan by the program";

Result<void> WriteFiles(const BoxedChart& chart, const BoxWish& wish, const ScanTrace& trace,
                        const TracedSteps& steps) {
  const TabletType& tablet = TabletTypes()[ScanTablet];
  Session session(tablet.Extents, chart.Chart.ChartType, chart.Chart.Task);
  if (const auto refusal = CheckChartScales(session.Line.Scales())) return Failure(*refusal);
  SilentView view;
  ActionMachine machine(session, tablet, view);
  machine.Start();
  const std::string text = JournalOfTrace(steps, trace);
  const Journal journal = ReadJournal(text);
  if (journal.Error) return Failure(*journal.Error);
  if (const auto replayed = Replay(journal, machine); !replayed) return replayed;
  if (const auto error = SessionError(session)) return Failure(*error);
  const auto file = MakeChartText(session, chart.Origin, Comment);
  if (!file) return Failure(file.error());
  const std::string name = chart.Name();
  if (const auto written = WriteWholeFile(TraceJournalPath(wish.Target, name), text); !written)
    return written;
  if (trace.Verdict != TraceVerdict::Clean && !wish.Doubtful) return {};
  const auto path = WriteChartFile(file->Text, wish.Target, name, [](const std::string&) { return false; });
  if (!path) return Failure(path.error());
  return {};
}

std::string WordsOf(const std::vector<TraceDoubt>& doubts) {
  std::string words;
  for (const TraceDoubt& doubt : doubts)
    if (words.size() < MostWords) words += (words.empty() ? "" : " ") + doubt.Why;
  return words;
}

Result<void> WritePicture(const ScanImage& image, const ScanTrace& trace, const std::string& name) {
  const auto picture = PictureOfTrace(image, trace, name);
  if (!picture) return Failure(picture.error());
  return WriteWholeFile(name, *picture);
}

}  // namespace

std::string BoxedChart::Name() const { return ChartFileName(Origin.InstrumentCode, Chart.Task.StartTime); }

Result<BoxedChart> MakeBoxedChart(const ReferenceLists& lists, ActivatedChart chart, std::string user) {
  if (const auto refusal = CheckTraceable(chart.Task)) return Failure(*refusal);
  auto origin = OriginOfChart(lists, chart.Task, std::move(user));
  if (!origin) return Failure(origin.error());
  return BoxedChart{std::move(chart), *std::move(origin)};
}

TracedChart TraceChart(const BoxedChart& chart, const BoxWish& wish) {
  const auto begun = std::chrono::steady_clock::now();
  TraceWish known = WishOf(chart.Chart.ChartType, chart.Chart.Task);
  known.Start = wish.Start;
  known.Line = wish.Line;
  known.Form = wish.Form;
  ScanTrace trace;
  std::string trouble;
  const auto notTraced = [&](const std::string& why) {
    trace.Doubts.push_back({TraceDoubt::Kind::Chart, 0, known.Hours, 0, -1, why});
  };
  const auto image = ScanImage::Open(chart.Scan.Path, chart.Scan.Page);
  if (!image) {
    notTraced(image.error());
  } else if (const auto tracer = ScanTracer::Open(*image, known); !tracer) {
    notTraced("Not traced: " + tracer.error() + ".");
  } else {
    trace = tracer->Trace();
    if (IsOneOfTwoLines(trace, *image, known))
      trace.Doubts.insert(trace.Doubts.begin(),
                          {TraceDoubt::Kind::Chart, 0, known.Hours, 0, -1,
                           "Two lines lie on this sheet: trace the one of this chart by itself (--line)."});
    if (trace.Verdict != TraceVerdict::NotTraced) {
      const auto steps = StepsOfTrace(trace, *tracer, *image, known);
      const auto written =
          steps ? WriteFiles(chart, wish, trace, *steps) : Result<void>(Failure(steps.error()));
      if (!written) trouble = written.error();
    }
  }
  if (trouble.empty() && image && !wish.Picture.empty())
    if (const auto written = WritePicture(*image, trace, wish.Picture); !written) trouble = written.error();

  TracedChart traced{.What = trouble.empty() ? OutcomeOf(trace.Verdict) : TraceOutcome::Failed,
                     .Name = chart.Name(),
                     .Scan = chart.Scan.Path,
                     .RainMm = trace.RainMm,
                     .EyedDepth = chart.Chart.Task.EyedDepth,
                     .ManualDepth = chart.Chart.Task.ManualDepth,
                     .Emptyings = static_cast<int>(trace.EmptyingHours.size()),
                     .Confidence = trace.Confidence,
                     .Doubts = static_cast<int>(trace.Doubts.size()),
                     .Words = std::move(trouble)};
  if (const std::string words = WordsOf(trace.Doubts); !words.empty())
    traced.Words += (traced.Words.empty() ? "" : " ") + words;
  traced.Seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
  return traced;
}

Result<std::vector<std::string>> MakeKeptForm(std::span<const BoxedChart> charts,
                                              const std::string& programFolder, bool empty) {
  if (charts.empty()) return Failure("there is no scan to make a form of");
  std::vector<std::string> leftOut;
  std::vector<FormSheet> sheets;
  for (const BoxedChart& chart : charts) {
    if (sheets.size() == MostOfForm) break;
    const auto image = ScanImage::Open(chart.Scan.Path, chart.Scan.Page);
    auto sheet = image ? SheetForForm(*image, WishOf(chart.Chart.ChartType, chart.Chart.Task))
                       : Result<FormSheet>(Failure(image.error()));
    if (sheet)
      sheets.push_back(*std::move(sheet));
    else
      leftOut.push_back(chart.Name() + ": " + sheet.error());
  }
  if (empty && sheets.empty()) return Failure(leftOut.front());
  const auto form = empty ? Result<BlankForm>(BlankForm::OfBlank(sheets.front())) : BlankForm::Of(sheets);
  if (!form) return Failure(form.error() + (leftOut.empty() ? "" : " (" + leftOut.front() + ")"));
  const auto bytes = form->Bytes();
  if (!bytes) return Failure(bytes.error());
  const std::string path = BlankFormPath(programFolder, charts.front().Chart.ChartType.Name);
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
  if (const auto written = WriteWholeFile(path, *bytes); !written) return Failure(written.error());
  return leftOut;
}

// ---- What stands

std::string NameWithEnding(std::string_view chartFile, std::string_view ending) {
  return std::string(chartFile.substr(0, chartFile.rfind('.'))) + std::string(ending);
}

std::string TraceJournalPath(const std::string& target, std::string_view chartFile) {
  return JoinPath(target, NameWithEnding(chartFile, ".journal"));
}

Standing FindStanding(const std::string& target, std::string_view chartFile) {
  const bool digitized = FileExists(JoinPath(target, chartFile));
  Standing standing{digitized ? Standing::Of::Digitized : Standing::Of::Nothing};
  const std::string path = TraceJournalPath(target, chartFile);
  if (!FileExists(path)) return standing;
  const auto journal = ReadWholeFile(path, MostJournalBytes);
  const auto note = journal ? NoteOfJournal(*journal) : std::nullopt;
  if (note) standing.RainMm = note->RainMm;
  if (digitized) return standing;
  // One that cannot be read is not taken for one that may be written over.
  if (note && note->Verdict == ReviewedVerdict) {
    standing.What = Standing::Of::Reviewed;
  } else if (note && note->Verdict == VerdictText(TraceVerdict::Clean)) {
    standing.What = Standing::Of::Interrupted;
  } else {
    standing.What = Standing::Of::ToReview;
    if (!journal) return standing;
    const auto doubts = DoubtsOfJournal(*journal);
    standing.Doubts = static_cast<int>(doubts.size());
    standing.Words = WordsOf(doubts);
  }
  return standing;
}

bool IsToReview(std::string_view journal) {
  const auto note = NoteOfJournal(journal);
  return note && note->Verdict == VerdictText(TraceVerdict::ToReview);
}

std::string StandingText(Standing::Of what) {
  switch (what) {
    case Standing::Of::Digitized:
      return "its chart file stands";
    case Standing::Of::Reviewed:
      return "its journal stands, which was reviewed";
    case Standing::Of::ToReview:
      return "its journal stands, to be reviewed";
    case Standing::Of::Nothing:
    case Standing::Of::Interrupted:
      break;
  }
  return {};
}

bool IsBegunAtTheDesk(const std::string& programFolder, const ChartRecord& chart) {
  const auto unfinished = FindUnfinishedChart(programFolder);
  return unfinished && unfinished->Name == ChartName(chart);
}

Result<void> KeepReview(const std::string& traceJournal, std::string sessionJournal, double rainMm) {
  if (!FileExists(traceJournal)) return {};
  if (!sessionJournal.empty() && !sessionJournal.ends_with('\n')) sessionJournal += '\n';
  return WriteWholeFile(traceJournal, sessionJournal + "# " + NoteOfReview(rainMm) + "\n");
}

}  // namespace hyetex
