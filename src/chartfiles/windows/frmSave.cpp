#include "chartfiles/windows/frmSave.h"

#include <QKeyEvent>
#include <utility>

#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "platform/controls.h"
#include "platform/qt_dates.h"
#include "platform/qt_surface.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr const char* SavingTitle = "Saving the digitation";
constexpr const char* PendingQuestion =
    "The times and depths that have been changed are not yet taken. Do you want to take them ?";
constexpr int BlinkMilliseconds = 500;

Rgb ToRgb(const QColor& colour) { return {colour.red(), colour.green(), colour.blue()}; }

}  // namespace

frmSave::frmSave(Desk& desk, Dialogs& dialogs, Settings& settings, Session& session, ChartOrigin origin,
                 SaveCallbacks callbacks, QWidget* parent)
    : FormWindow("frmSave", WindowId::Save, desk, settings, parent),
      dialogs_(dialogs),
      session_(session),
      origin_(std::move(origin)),
      callbacks_(std::move(callbacks)) {
  setWindowTitle("Save digitization");
  MakeLayout();
  txtComment->setText(ToQt(callbacks_.Comment));

  timPrompt = new QTimer(this);
  timPrompt->setObjectName("timPrompt");
  connect(timPrompt, &QTimer::timeout, this, &frmSave::Blink);

  if (const auto error = SessionError(session_))
    txtPrompt->setPlainText(ToQt(*error));
  else
    WriteReport();
  ShowDetails();
  comRain->setCurrentIndex(static_cast<int>(DepthChoice::Digitized));  // what the file will say
  ShowChosenDepth();
  timPrompt->start(BlinkMilliseconds);
}

// ---- What it shows

void frmSave::FocusChanged(bool focused) {
  if (focused) cmdSave->setFocus();
}

void frmSave::showEvent(QShowEvent* event) {
  FormWindow::showEvent(event);
  if (!event->spontaneous()) cmdSave->setFocus();
}

// In a box whose change has not been taken yet, Return takes it: saving would pass it over.
void frmSave::keyPressEvent(QKeyEvent* event) {
  if (IsReturn(*event) && !labPending->text().isEmpty())
    cmdDefiine->click();
  else
    FormWindow::keyPressEvent(event);
}

void frmSave::WriteReport() {
  hyetex::WriteReport(session_, report_);
  txtPrompt->setPlainText(ToQt(report_.Text));
  for (std::size_t i = 0; i < labPrompt.size(); ++i) labPrompt[i]->setText(ToQt(report_.Captions[i]));
}

void frmSave::ShowDetails() {
  const EditedDetails details = DetailsOf(session_.Chart);
  dtpBeginDate->setDate(ToQDate(session_.Chart.StartTime));
  dtpBeginTime->setTime(ToQTime(session_.Chart.StartTime));
  dtpEndDate->setDate(ToQDate(session_.Chart.EndTime));
  dtpEndTime->setTime(ToQTime(session_.Chart.EndTime));
  txtEyed->setText(ToQt(details.EyedDepth));
  txtManual->setText(ToQt(details.ManualDepth));
  comChart->setCurrentIndex(comChart->findData(static_cast<int>(session_.Chart.Reliability)));
  ShowFile();
}

// Under which name, and in which folder, Save would write it now.
void frmSave::ShowFile() {
  const std::string name = ChartFileName(origin_.InstrumentCode, session_.Chart.StartTime);
  labFile->setText("Chart file: " + ToQt(name));
  labFile->setToolTip(ToQt(JoinPath(TargetFolder(settings_), name)));
}

EditedDetails frmSave::ShownDetails() const {
  return {.BeginDate = FromQDate(dtpBeginDate->date()),
          .BeginTime = FromQTime(dtpBeginTime->time()),
          .EndDate = FromQDate(dtpEndDate->date()),
          .EndTime = FromQTime(dtpEndTime->time()),
          .EyedDepth = FromQt(txtEyed->text()),
          .ManualDepth = FromQt(txtManual->text())};
}

void frmSave::ShowChosenDepth() {
  const auto depth = ChosenDepth(session_, static_cast<DepthChoice>(comRain->currentIndex()));
  if (depth && (txtRain->text().isEmpty() || LeadingFloat(FromQt(txtRain->text())) != *depth))
    txtRain->setText(ToQt(ShortText(*depth)));
}

void frmSave::Blink() {
  for (std::size_t i = 0; i < labPrompt.size(); ++i) {
    const auto factor = static_cast<Factor>(i);
    if (factor == Factor::Manual) continue;
    QPalette colours = labPrompt[i]->palette();
    const Rgb fore = ToRgb(colours.color(QPalette::WindowText));
    const Rgb back = ToRgb(palette().color(QPalette::Window));
    const Rgb next = BlinkedColour(fore, back, FactorBlinks(factor, report_, session_.Chart));
    if (next == fore) continue;
    colours.setColor(QPalette::WindowText, ToQt(next));
    labPrompt[i]->setPalette(colours);
  }
}

// ---- What it does

bool frmSave::ResetDefinitions() {
  if (RefusesEntries(*this, dialogs_, SavingTitle)) return false;
  if (const auto refusal = TakeDetails(ShownDetails(), session_.Chart)) {
    dialogs_.MessageBox(FromQt(windowTitle()), *refusal, BoxButtons::Ok, BoxIcon::Warning);
    dtpEndDate->setFocus();
    return false;
  }
  MarkPendingDetails();
  ShowFile();
  ShowChosenDepth();
  if (const auto error = SessionError(session_))
    txtPrompt->setPlainText(ToQt(*error));
  else
    WriteReport();
  return true;
}

void frmSave::MarkPendingDetails() {
  labPending->setText(DetailsDiffer(ShownDetails(), session_.Chart) ? "Not yet taken:" : "");
}

bool frmSave::TakesPendingDetails() {
  if (labPending->text().isEmpty()) return true;
  return MayCloseAfter(dialogs_, SavingTitle,
                       std::string(PendingQuestion) + "\n\nNo saves the chart with those that it had.",
                       [this] { return ResetDefinitions(); });
}

bool frmSave::SaveFile() {
  if (RefusesEntries(*this, dialogs_, SavingTitle) || !TakesPendingDetails()) return false;
  const auto ask = [this](const std::string& text) {
    return dialogs_.MessageBox(SavingTitle, ShownText(text), BoxButtons::CancelUnlessOk, BoxIcon::Warning) ==
           BoxAnswer::Ok;
  };
  const auto despite = [&](const std::string& notes) {
    return ask(notes + "\n\nSave the chart all the same ?");
  };
  const auto otherFolder = [this](const std::string& why) -> std::optional<std::string> {
    if (dialogs_.MessageBox(SavingTitle,
                            ShownText(why) + "\n\nDo you want to save the chart in another folder ?",
                            BoxButtons::YesNo, BoxIcon::Warning) != BoxAnswer::Yes)
      return std::nullopt;
    return dialogs_.ChooseFolder(SavingTitle, settings_.Folder());
  };
  const auto outcome =
      SaveDigitization(session_, origin_, settings_, FromQt(txtComment->text()),
                       {.Overwrite = ask, .DespiteNotes = despite, .OtherFolder = otherFolder});
  if (!outcome)
    dialogs_.MessageBox(SavingTitle, ShownText(outcome.error()), BoxButtons::Ok, BoxIcon::Warning);
  return outcome && *outcome != SaveOutcome::NotWanted;
}

void frmSave::Save() {
  if (!SaveFile()) return;
  const auto newFile = callbacks_.NewFile;
  Leave();
  newFile();
}

void frmSave::Redigitize() {
  if (callbacks_.Redigitize()) Leave();
}

bool frmSave::MayLeave() {
  return labPending->text().isEmpty() ||
         MayCloseAfter(dialogs_, SavingTitle, PendingQuestion, [this] { return ResetDefinitions(); });
}

void frmSave::Closing() {
  if (callbacks_.KeepComment) callbacks_.KeepComment(FromQt(txtComment->text()));
  callbacks_.EnableDesk();
}

}  // namespace hyetex
