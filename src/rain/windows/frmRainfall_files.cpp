// What is taken away from the window of rain: files for other programs, pictures, pages, and rows of the
// database's tables.
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"
#include "platform/cairo/pictures.h"
#include "platform/qt_text.h"
#include "rain/rain_files.h"
#include "rain/rain_report.h"
#include "rain/rain_tables.h"
#include "rain/windows/frmRainfall.h"

namespace hyetex {
namespace {

constexpr double PicturePixelsPerInch = 150, PageMargin = 36, ReportMargin = 40;
constexpr int MostReportYears = 100;

}  // namespace

// "NM-Hill Farm-01-19980305-19980306.csv"
std::string frmRainfall::FileName(const std::string& ending) const {
  const auto day = [](Date date) { return DateCode(date).substr(0, 8); };
  const RainQuestion& question = overview_->Question;
  std::string name = question.Instrument + "-" + day(question.FromDay);
  if (question.ToDay != question.FromDay) name += "-" + day(question.ToDay);
  for (char& letter : name)
    if (letter == '/' || letter == '\\') letter = '_';
  return name + ending;
}

std::optional<std::string> frmRainfall::AskForFile(const std::string& what, const std::string& ending) {
  std::string folder = settings_.Get(setting::RainFolder);
  if (!FolderExists(folder)) folder = TargetFolder(settings_);
  auto path = dialogs_.ChooseFileToSave("Save " + what, JoinPath(folder, ShownText(FileName(ending))));
  if (path) Kept(*path);
  return path;
}

// The folder is proposed the next time.
void frmRainfall::Kept(const std::string& path) {
  const auto end = path.rfind('/');
  if (end != std::string::npos) (void)settings_.Set(setting::RainFolder, path.substr(0, end));
}

void frmRainfall::TellWritten(const std::vector<std::string>& paths, const std::vector<std::string>& notes) {
  std::string text;
  for (const std::string& path : paths) text += (text.empty() ? "Written: " : ", ") + path;
  labState->setText(ToQt(text));
  if (!notes.empty()) Tell(text + "\n" + FirstLines(notes, 10), BoxIcon::Information);
}

void frmRainfall::SaveCsv() {
  if (isBusy_ || !overview_) return;
  const auto path = AskForFile("the steps of rain", ".csv");
  if (!path) return;
  const RainQuestion question = overview_->Question;
  const auto written = Worked([&](Progress& progress) {
    const ClosedAfter closed(database_);
    return WriteRainCsv(database_, {.Instrument = question.Instrument, .Span = SpanOf(question)},
                        {.Minutes = overview_->StepMinutes}, question.Clock, *path, progress);
  });
  if (!written) return Tell(written.error());
  TellWritten(written->Paths, written->Notes);
}

void frmRainfall::SaveSef() {
  if (isBusy_ || !overview_) return;
  std::string start = settings_.Get(setting::RainFolder);
  if (!FolderExists(start)) start = TargetFolder(settings_);
  const auto folder = dialogs_.ChooseFolder("Folder for the files of the Station Exchange Format", start);
  if (!folder) return;
  (void)settings_.Set(setting::RainFolder, *folder);
  const RainQuestion question = overview_->Question;
  // Days have a file of their own.
  const int minutes = overview_->StepMinutes == RainDays.Minutes ? 60 : overview_->StepMinutes;
  const auto written = Worked([&](Progress& progress) {
    const ClosedAfter closed(database_);
    return WriteRainSef(database_, {.Instrument = question.Instrument, .Span = SpanOf(question)}, minutes,
                        question.Clock, *folder, progress);
  });
  if (!written) return Tell(written.error());
  TellWritten(written->Paths, written->Notes);
}

void frmRainfall::SavePicture(const std::string& ending) {
  if (isBusy_ || !overview_) return;
  const auto path = AskForFile("the picture", ending);
  if (!path) return;
  const PictureFormat format = ending == ".png"   ? PictureFormat::Png
                               : ending == ".svg" ? PictureFormat::Svg
                                                  : PictureFormat::Pdf;
  const auto picture = hyetex::MakePicture(format, A4Landscape, PageMargin, PicturePixelsPerInch,
                                           [this](Surface& surface) { picRain->DrawOn(surface); });
  if (!picture) return Tell(picture.error());
  if (const auto written = WriteWholeFile(*path, *picture); !written) return Tell(written.error());
  TellWritten({*path}, {});
}

void frmRainfall::FillTables() {
  if (isBusy_ || !overview_ || !services_.MayWrite()) return;
  const RainQuestion question = overview_->Question;
  const auto filled = Worked([&](Progress& progress) {
    const ClosedAfter closed(database_);
    return FillRainTables(database_, {.Instrument = question.Instrument, .Span = SpanOf(question)},
                          question.Clock, dialogs_, progress);
  });
  if (!filled) {
    labState->setText(ToQt("Nothing was filled: " + filled.error().Description));
    return Tell("Nothing was filled: " + filled.error().Description);
  }
  if (!filled->Done) return;
  labState->setText(ToQt(FilledMessage(*filled)));
  Tell(FilledMessage(*filled), BoxIcon::Information);
}

// Of all years that the shown days are a part of.
void frmRainfall::SaveReport() {
  if (isBusy_ || !overview_) return;
  const RainQuestion question = overview_->Question;
  const int first = ToCalendar(question.FromDay).Year, last = ToCalendar(question.ToDay).Year;
  if (last - first >= MostReportYears)
    return Tell("A report has at most " + std::to_string(MostReportYears) + " years. Choose fewer.");
  const auto path = AskForFile("the report", "-report.pdf");
  if (!path) return;
  const auto reports = Worked([&](Progress& progress) -> DbResult<std::vector<RainReport>> {
    const ClosedAfter closed(database_);
    std::vector<RainReport> read;
    for (int year = first; year <= last; ++year) {
      auto report = ReadRainReport(database_, question.Instrument, year, question.Clock,
                                   question.StormDryHours, progress);
      if (!report) return tl::unexpected(report.error());
      read.push_back(*std::move(report));
    }
    return read;
  });
  if (!reports) return Tell("No report was written: " + reports.error().Description);
  const int pages = RainReport().PageCount();
  const auto made = MakePages(
      A4Portrait, ReportMargin, static_cast<int>(reports->size()) * pages, [&](Surface& surface, int page) {
        DrawRainPage((*reports)[static_cast<std::size_t>(page / pages)], page % pages, surface);
      });
  if (!made) return Tell(made.error());
  if (const auto written = WriteWholeFile(*path, *made); !written) return Tell(written.error());
  TellWritten({*path}, {});
}

PageToPrint frmRainfall::Page() {
  return {"the rain", JoinPath(TargetFolder(settings_), FileName(".pdf")),
          [this](Surface& surface) { picRain->DrawOn(surface); }};
}

}  // namespace hyetex
