// rain: an instrument's rows of CHART summed, as CSV, files and tables.
#include <cmath>
#include <filesystem>

#include "cli/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/temporary_file.h"
#include "database/store/instruments.h"
#include "database/store/stored_text.h"
#include "graph/draw.h"
#include "platform/cairo/pictures.h"
#include "rain/rain_files.h"
#include "rain/rain_graphs.h"
#include "rain/rain_report.h"
#include "rain/rain_storms.h"
#include "rain/rain_tables.h"
#include "rain/rain_text.h"

namespace hyetex::cli {
namespace {

constexpr double PixelsPerInch = 150, PageMargin = 28, ReportMargin = 40;
constexpr int SefMinutes = 60, MostReportYears = 100;

// Boxes of --fill: its question is answered by --overwrite.
class FillBoxes : public UnattendedDialogs {
 public:
  explicit FillBoxes(bool overwrite) { Agrees = overwrite; }
  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override {
    if (!Agrees) Say(text.substr(0, text.find("\n\nThose")));
    return UnattendedDialogs::MessageBox(title, text, buttons, icon);
  }
};

class RainCommand {
 public:
  RainCommand(const RainWords& words, HyetexPlotDB& database) : words_(words), database_(database) {
    clock_ = {static_cast<int>(std::lround(words.Local * 60)), words.DayBegins};
    choice_.Instrument = words.Instrument;
    if (words.From) choice_.Span.From = FromLocal(*words.From, clock_);
    if (words.To) choice_.Span.To = FromLocal(*words.To, clock_);
  }

  Exit Run() {
    extent_ = FindRainExtent(database_, words_.Instrument);
    if (!extent_) return Fail(extent_.error().Description);
    if (!*extent_)
      if (const Exit known = CheckInstrument(); known != Done) return known;
    for (const auto part : {&RainCommand::PrintLines, &RainCommand::WriteSef, &RainCommand::WritePictures,
                            &RainCommand::WriteReport, &RainCommand::FillTables})
      if (const Exit done = (this->*part)(); done != Done) return done;
    return Done;
  }

 private:
  Exit CheckInstrument() {
    const auto codes = ReadInstrumentCodes(database_);
    if (!codes) return Fail(codes.error().Description);
    if (!codes->contains(ComparedCode(words_.Instrument)))
      return Fail("There is no instrument " + words_.Instrument + " in the database");
    Say("CHART has no rows of " + words_.Instrument);
    return Done;
  }

  // What is odd about the rows is said once, however often they are read.
  void SayRemarks(const RainRemarks& remarks) {
    if (!std::exchange(said_, true))
      for (const std::string& line : remarks.Lines()) Say(line);
  }
  Exit Read(RainSink& sink) {
    const auto remarks = ReadRain(database_, choice_, {&sink}, progress_);
    if (!remarks) return Fail(remarks.error().Description);
    SayRemarks(*remarks);
    return Done;
  }

  Exit PrintLines() {
    if (words_.Step > 0 || words_.Daily) {
      Print(StepsHeading);
      const RainStepKind kind =
          words_.Daily ? RainDays : RainStepKind{RainStepKind::Unit::Minutes, words_.Step};
      RainSteps steps(kind, clock_, choice_.Span,
                      [&](const RainStep& step) { Print(StepLine(step, clock_)); });
      return Read(steps);
    }
    if (words_.Maxima) {
      RainMaxima maxima;
      if (const Exit done = Read(maxima); done != Done) return done;
      Print(MaximaHeading);
      for (const RainMaximum& maximum : maxima.Maxima()) Print(MaximumLine(maximum, clock_));
    }
    if (words_.Storms) {
      Print(StormsHeading);
      RainStorms storms(words_.Dry, [&](const RainStorm& storm) { Print(StormLine(storm, clock_)); });
      return Read(storms);
    }
    return Done;
  }

  static Exit WriteOut(const std::string& path, const std::string& bytes) {
    ClearTemporaries(std::filesystem::absolute(path).parent_path().string());
    const auto written = WriteWholeFile(path, bytes);
    return written ? Done : Fail(written.error());
  }

  Exit WriteSef() {
    if (words_.Sef.empty()) return Done;
    std::error_code failed;
    std::filesystem::create_directories(words_.Sef, failed);  // what cannot be made cannot be written into
    const auto written = WriteRainSef(database_, choice_, words_.Step > 0 ? words_.Step : SefMinutes, clock_,
                                      words_.Sef, progress_);
    if (!written) return Fail(written.error());
    SayRemarks(written->Remarks);
    for (const std::string& note : written->Notes) Say(note);
    for (const std::string& path : written->Paths) Say("Written: " + path);
    return Done;
  }

  // Of the length that the words give, or one that leaves bars to see.
  int StepOfPicture() const {
    if (words_.Step > 0) return words_.Step;
    if (words_.Daily || !*extent_) return MinutesPerDay;
    const RainTime from = choice_.Span.From.value_or((*extent_)->First),
                   to = choice_.Span.To.value_or((*extent_)->Last);
    return to - from > 60 * DaySeconds ? MinutesPerDay : to - from > 3 * DaySeconds ? 60 : 5;
  }
  Exit WritePictures() {
    if (words_.Png.empty() && words_.Svg.empty()) return Done;
    std::vector<RainStep> steps;
    RainSteps sink({RainStepKind::Unit::Minutes, StepOfPicture()}, clock_, choice_.Span,
                   [&](const RainStep& step) { steps.push_back(step); });
    if (const Exit done = Read(sink); done != Done) return done;
    const Graph graph = MakeRainGraph(steps, {.Title = "Rain of " + words_.Instrument, .Clock = clock_});
    for (const auto& [format, path] :
         {std::pair(PictureFormat::Png, &words_.Png), {PictureFormat::Svg, &words_.Svg}}) {
      if (path->empty()) continue;
      const auto made = MakePicture(format, A4Landscape, PageMargin, PixelsPerInch,
                                    [&](Surface& surface) { Draw(graph, surface); });
      if (!made) return Fail(*path + ": " + made.error());
      if (const Exit done = WriteOut(*path, *made); done != Done) return done;
    }
    return Done;
  }

  int YearOf(RainTime time) const {
    return ToCalendar(ToLocal(StepBegin(time, RainYears, clock_), clock_)).Year;
  }
  Exit WriteReport() {
    if (words_.Pdf.empty()) return Done;
    if (!*extent_) return Fail("There is no rain to report");
    const int first = YearOf(choice_.Span.From.value_or((*extent_)->First));
    const int last = YearOf(choice_.Span.To ? *choice_.Span.To - 1 : (*extent_)->Last);
    if (last - first >= MostReportYears)
      return Fail("A report of more than 100 years is none that anybody reads");
    std::vector<RainReport> reports;
    for (int year = first; year <= last; ++year) {
      auto report = ReadRainReport(database_, words_.Instrument, year, clock_, words_.Dry, progress_);
      if (!report) return Fail(report.error().Description);
      for (const std::string& line : report->Remarks.Lines()) Say(std::to_string(year) + ": " + line);
      reports.push_back(*std::move(report));
    }
    const int pages = RainReport().PageCount();
    const auto made = MakePages(
        A4Portrait, ReportMargin, static_cast<int>(reports.size()) * pages, [&](Surface& surface, int page) {
          DrawRainPage(reports[static_cast<std::size_t>(page / pages)], page % pages, surface);
        });
    if (!made) return Fail(words_.Pdf + ": " + made.error());
    return WriteOut(words_.Pdf, *made);
  }

  Exit FillTables() {
    if (!words_.Fill) return Done;
    FillBoxes boxes(words_.Overwrite);
    const auto filled = FillRainTables(database_, choice_, clock_, boxes, progress_);
    if (!filled) return Fail(filled.error().Description);
    SayRemarks(filled->Remarks);
    Say(FilledMessage(*filled));
    if (!filled->Done) return Fail("--overwrite replaces them");
    return Done;
  }

  const RainWords& words_;
  HyetexPlotDB& database_;
  RainClock clock_;
  RainChoice choice_;
  DbResult<std::optional<RainExtent>> extent_;
  SaidWaits progress_;
  bool said_ = false;
};

}  // namespace

Exit RunRain(const RainWords& words) {
  if (words.Step == 0 && !words.Daily && !words.Maxima && !words.Storms && words.Sef.empty() &&
      words.Pdf.empty() && words.Png.empty() && words.Svg.empty() && !words.Fill)
    return Off(
        "one of --step, --daily, --maxima, --storms, --sef, --pdf, --png, --svg and --fill is required");
  if (words.From && words.To && *words.To <= *words.From) return Off("--to must lie behind --from");
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  return RainCommand(words, opened.Database).Run();
}

}  // namespace hyetex::cli
