#include "rain/windows/frmRainfall.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/store/instruments.h"
#include "platform/entry_box.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"
#include "rain/rain_graphs.h"
#include "rain/rain_leads.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Rainfall Results";
constexpr int AllYears = -1, ChosenDays = 0;  // beside the years themselves

}  // namespace

frmRainfall::frmRainfall(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                         RainServices services, QWidget* parent)
    : FormWindow("frmRainfall", WindowId::Rainfall, desk, settings, parent),
      dialogs_(dialogs),
      database_(database),
      services_(std::move(services)) {
  setWindowTitle(tr(Title));
  MakeLayout();
  FillInstruments();
  ShowNothing(tr("Choose an instrument"));
  Connect();
}

void frmRainfall::showEvent(QShowEvent* event) {
  // All of it in view, also in a small shell.
  if (auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget()); frame != nullptr && !wasShown_)
    frame->resize(frame->size().boundedTo(frame->mdiArea()->viewport()->size()));
  FormWindow::showEvent(event);
  // Behind the first drawing, since it may take a while.
  if (!std::exchange(wasShown_, true))
    QMetaObject::invokeMethod(this, &frmRainfall::Begin, Qt::QueuedConnection);
}

void frmRainfall::Closing() {
  // What cannot be kept is not worth a message.
  (void)settings_.Set(setting::RainDayBegins, comDayBegins->currentIndex());
  (void)settings_.Set(setting::RainDryHours, FromQt(txtDry->text()));
}

void frmRainfall::Tell(const std::string& text, BoxIcon icon) {
  dialogs_.MessageBox(Title, ShownText(text), BoxButtons::Ok, icon);
}

// ---- What is asked for

void frmRainfall::FillInstruments() {
  auto instruments = ListInstruments(database_);
  if (!instruments) return database_.Show(instruments.error());
  instruments_ = *std::move(instruments);
  for (const std::string& code : instruments_) cboInstrument->addItem(ToQt(code));
  cboInstrument->setCurrentIndex(-1);
}

const std::string& frmRainfall::Instrument() const {
  static const std::string none;
  const int index = cboInstrument->currentIndex();
  return index < 0 ? none : instruments_[static_cast<std::size_t>(index)];
}

bool frmRainfall::ChooseInstrument(const std::string& code) {
  const QSignalBlocker quiet(cboInstrument);
  const auto found = std::ranges::find_if(
      instruments_, [&](const std::string& one) { return EqualIgnoringCase(Trim(one), Trim(code)); });
  if (found == instruments_.end()) {
    instruments_.push_back(code);  // it has rain, whatever the list of instruments says
    cboInstrument->addItem(ToQt(code));
    cboInstrument->setCurrentIndex(cboInstrument->count() - 1);
  } else {
    cboInstrument->setCurrentIndex(static_cast<int>(found - instruments_.begin()));
  }
  return HasRain();
}

// Reads where the instrument's rain begins and ends; false where it has none.
bool frmRainfall::HasRain() {
  extent_.reset();
  hasYears_ = hasReview_ = false;
  before_.clear();
  const ClosedAfter closed(database_);
  const auto extent = FindRainExtent(database_, Instrument());
  const QSignalBlocker quiet(comYear);
  comYear->clear();
  comYear->addItem(tr("Chosen days"), ChosenDays);
  if (!extent) {
    database_.Show(extent.error());
    return false;
  }
  extent_ = *extent;
  if (extent_) {
    comYear->addItem(tr("All years"), AllYears);
    for (const int year : YearsOf(*extent_, LocalClock())) comYear->addItem(QString::number(year), year);
  }
  return extent_.has_value();
}

// What was converted last, and of that its greatest storm; the way back leads to all of its year.
void frmRainfall::Begin() {
  if (services_.First) return ShowDays(*services_.First);
  const auto last = FindLastConversion(database_);
  if (!last) return database_.Show(last.error());
  if (!*last) {
    if (instruments_.size() == 1) cboInstrument->setCurrentIndex(0);
    cboInstrument->setFocus();
    return;
  }
  txtHours->setText(ToQt(ShortText((*last)->GmtHours)));
  if (!ChooseInstrument((*last)->Instrument)) return ShowNoRain();
  const int year = ToCalendar(DayOf((*last)->Last - 1, LocalClock())).Year;
  SetDays(MakeDate(year, 1, 1), MakeDate(year, 12, 31), RainDays.Minutes);
  Read();
  if (!overview_) return;
  if (const auto storm = GreatestStorm(overview_->Storms))
    GoTo(DayOf(storm->Start, Asked().Clock), DayOf(std::max(storm->Start, storm->End - 1), Asked().Clock));
  picRain->setFocus();
}

void frmRainfall::ChangeInstrument() {
  if (isBusy_ || cboInstrument->currentIndex() < 0) return;
  // Nobody shall take the rain of one instrument for that of another.
  ShowNothing(tr("Reading"));
  const auto last = FindLastConversion(database_, Instrument());
  if (last && *last) txtHours->setText(ToQt(ShortText((*last)->GmtHours)));
  if (!HasRain()) return ShowNoRain();
  const int year = YearsOf(*extent_, LocalClock()).back();
  SetDays(MakeDate(year, 1, 1), MakeDate(year, 12, 31), RainDays.Minutes);
  Read();
}

void frmRainfall::ChangeYear() {
  const int year = comYear->currentData().toInt();
  if (isBusy_ || year == ChosenDays || !extent_) return;
  if (year == AllYears)
    GoTo(DayOf(extent_->First, Asked().Clock), DayOf(extent_->Last, Asked().Clock));
  else
    GoTo(MakeDate(year, 1, 1), MakeDate(year, 12, 31));
}

RainClock frmRainfall::LocalClock() const {
  const double hours =
      std::clamp(TypedOrLeading(FromQt(txtHours->text())), -MostHoursFromGmt, MostHoursFromGmt);
  return {.MinutesFromGmt = static_cast<int>(std::lround(hours * 60)),
          .DayBegins = comDayBegins->currentIndex() * 60};
}

RainQuestion frmRainfall::Asked() const {
  RainQuestion question{.Instrument = Instrument(),
                        .FromDay = FromQDate(dtpFrom->date()),
                        .ToDay = FromQDate(dtpTo->date()),
                        .StepMinutes = comStep->currentData().toInt(),
                        .Clock = LocalClock()};
  question.LocalMinutes = question.Clock.MinutesFromGmt;
  if (comTime->currentIndex() == 1) question.Clock.MinutesFromGmt = 0;
  question.StormDryHours = std::clamp(TypedOrLeading(FromQt(txtDry->text())), LeastDryHours, MostDryHours);
  return question;
}

void frmRainfall::SetDays(Date from, Date to, std::optional<int> step) {
  const QSignalBlocker quiet[] = {QSignalBlocker(dtpFrom), QSignalBlocker(dtpTo), QSignalBlocker(comStep)};
  dtpFrom->setDate(ToQDate(from));
  dtpTo->setDate(ToQDate(to));
  if (step) comStep->setCurrentIndex(std::max(0, comStep->findData(*step)));
}

void frmRainfall::GoTo(Date from, Date to) {
  if (isBusy_) return;
  if (overview_) before_.push_back(overview_->Question);
  SetDays(from, to, StepForDays(to - from + 1));
  Read();
}

void frmRainfall::GoBack() {
  if (isBusy_ || before_.empty()) return;
  const RainQuestion question = before_.back();
  before_.pop_back();
  SetDays(question.FromDay, question.ToDay, question.StepMinutes);
  Read();
}

void frmRainfall::ShowDays(const RainTarget& target) {
  wasShown_ = true;
  if (isBusy_) return;
  const bool hasRain = ChooseInstrument(target.Instrument);
  const auto last = FindLastConversion(database_, target.Instrument);
  if (last && *last) txtHours->setText(ToQt(ShortText((*last)->GmtHours)));
  if (!hasRain) return ShowNoRain();
  const Date from = std::floor(target.From), to = std::max(from, std::ceil(target.To) - 1);
  SetDays(from, to, StepForDays(to - from + 1));
  Read();
  picRain->setFocus();
}

// Once for all that changes together, behind the key that brought it about.
void frmRainfall::Ask() {
  if (std::exchange(asks_, true)) return;
  QMetaObject::invokeMethod(
      this,
      [this] {
        asks_ = false;
        if (!isBusy_ && overview_ && Asked() != overview_->Question) Read();
      },
      Qt::QueuedConnection);
}

// ---- What is shown

void frmRainfall::ShowNothing(const QString& why) {
  overview_.reset();
  hasYears_ = hasReview_ = false;
  Graph empty;
  empty.Notes = {FromQt(why)};
  picRain->Show(std::move(empty), {}, {});
  for (SheetView* grid : {grdDays, grdGage, grdMaxima, grdStorms, grdYears, grdCharts}) grid->Show({});
  txtRemarks->clear();
  labState->setText(why);
  labReview->clear();
  cmdBack->setEnabled(false);
  for (QPushButton* button : {cmdExport, cmdPrint, cmdFill}) button->setEnabled(false);
}

// Its charts may tell why.
void frmRainfall::ShowNoRain() {
  ShowNothing(tr("There are no rows of rain of this instrument."));
  FillTab();
}

void frmRainfall::ReadAnew() {
  if (isBusy_ || Instrument().empty()) return;
  hasYears_ = hasReview_ = false;
  if (overview_)
    Read();
  else
    ChangeInstrument();
}

void frmRainfall::Read() {
  const RainQuestion question = Asked();
  if (isBusy_ || question.Instrument.empty()) return;
  if (question.ToDay < question.FromDay) {
    labState->setText(tr("The last day lies before the first."));
    return;
  }
  labState->setText(tr("Reading"));
  auto overview = Worked([&](Progress& progress) { return ReadRainOverview(database_, question, progress); });
  if (!overview) {
    ShowNothing(ToQt(overview.error().Number == db_error::Cancelled ? "Stopped before the end."
                                                                    : overview.error().Description));
    if (overview.error().Number != db_error::Cancelled) database_.Show(overview.error());
    return;
  }
  Show(*std::move(overview));
}

void frmRainfall::Show(RainOverview overview) {
  const bool otherClock = !overview_ || overview_->Question.Clock != overview.Question.Clock;
  overview_ = std::move(overview);
  if (otherClock) hasYears_ = false;
  const RainQuestion& question = overview_->Question;
  {
    const QSignalBlocker quiet(comYear);
    int shown = ChosenDays;
    const CalendarTime from = ToCalendar(question.FromDay);
    if (question.FromDay == MakeDate(from.Year, 1, 1) && question.ToDay == MakeDate(from.Year, 12, 31))
      shown = from.Year;
    comYear->setCurrentIndex(std::max(0, comYear->findData(shown)));
  }
  std::string title = question.Instrument + ", " + GeneralDateText(question.FromDay);
  if (question.ToDay != question.FromDay) title += " - " + GeneralDateText(question.ToDay);
  picRain->Show(MakeRainGraph(overview_->Steps, {.Title = ShownText(title), .Clock = question.Clock}),
                overview_->Steps, question.Clock);
  grdDays->Show(SheetOfDays(*overview_));
  grdGage->Show(SheetOfGage(*overview_));
  grdMaxima->Show(SheetOfMaxima(*overview_));
  grdStorms->Show(SheetOfStorms(*overview_));
  const std::vector<std::string> lines = overview_->Lines();
  std::string text;
  for (const std::string& line : lines) text += ShownText(line) + "\n";
  txtRemarks->setPlainText(ToQt(lines.empty() ? "There is nothing odd about these rows." : text));
  tabTables->setTabText(Remarks, lines.empty() ? tr("Remarks") : tr("Remarks (%1)").arg(lines.size()));
  labState->setText(ToQt(OverviewInWords(*overview_)));
  cmdBack->setEnabled(!before_.empty());
  for (QPushButton* button : {cmdExport, cmdPrint, cmdFill}) button->setEnabled(true);
  FillTab();
}

// The years and the charts are read when somebody wants to see them.
void frmRainfall::FillTab() {
  if (isBusy_ || Instrument().empty()) return;
  if (tabTables->currentIndex() == Years && !hasYears_ && extent_) ReadYears();
  if (tabTables->currentIndex() == Charts && !hasReview_) ReadReview();
}

void frmRainfall::ReadYears() {
  const auto years = Worked(
      [&](Progress& progress) { return ReadRainYears(database_, Instrument(), Asked().Clock, progress); });
  hasYears_ = years.has_value();
  years_ = years.value_or(std::vector<RainPeriod>());
  grdYears->Show(SheetOfYears(years_));
  if (!hasYears_ && years.error().Number != db_error::Cancelled) database_.Show(years.error());
}

void frmRainfall::ReadReview() {
  const auto review = Worked([&](Progress& progress) {
    return ReviewCharts(database_, Instrument(), services_.Stations, progress);
  });
  hasReview_ = review && !review->Stopped;
  review_ = review.value_or(ChartReview());
  grdCharts->Show(SheetOfReview(review_));
  QString text =
      tr("%1 charts looked at, %2 things to look after").arg(review_.Charts).arg(review_.Lines.size());
  if (review_.Stopped) text += tr("; stopped before the last chart");
  if (!review_.TellsConverted) text += tr("; the database does not tell which charts were converted");
  labReview->setText(text);
  if (!review) database_.Show(review.error());
}

void frmRainfall::Choose(Tab tab, int row) {
  // What was there when the row was chosen may have made way for something else.
  if (isBusy_ || (tab < Years && !overview_)) return;
  const auto at = static_cast<std::size_t>(row);
  const RainClock clock = Asked().Clock;
  const auto show = [&](RainTime from, RainTime to) {
    GoTo(DayOf(from, clock), DayOf(std::max(from, to - 1), clock));
  };
  switch (tab) {
    case Days:
      return show(overview_->Days[at].Start, overview_->Days[at].End);
    case Gage:
      return show(overview_->Compared[at].Start, overview_->Compared[at].End);
    case Maxima:
      if (const auto& start = overview_->Maxima[at].Start)
        show(*start, *start + RainTime{overview_->Maxima[at].Minutes} * 60);
      return;
    case Storms:
      return show(overview_->Storms[at].Start, overview_->Storms[at].End);
    case Years:
      return GoTo(MakeDate(years_[at].Year, 1, 1), MakeDate(years_[at].Year, 12, 31));
    case Charts:
      return Mend(row);
    case Remarks:
      return;
  }
}

void frmRainfall::OpenStep(std::size_t step) {
  if (isBusy_ || !overview_ || step >= overview_->Steps.size()) return;
  const RainStep& rain = overview_->Steps[step];
  const auto chart = FindChartOfRain(database_, Instrument(), rain.Start, rain.End, LocalClock());
  if (!chart) return database_.Show(chart.error());
  if (*chart)
    services_.OpenChart(Instrument(), **chart);
  else
    labState->setText(tr("No stored chart has this time."));
}

void frmRainfall::ShowMending(int row) {
  const bool any = row >= 0 && row < static_cast<int>(review_.Lines.size());
  cmdMend->setEnabled(any);
  if (any)
    cmdMend->setText(tr(MendingName(WhereMended(review_.Lines[static_cast<std::size_t>(row)].Trouble))));
}

void frmRainfall::Mend(int row) {
  if (isBusy_ || row < 0) return;
  const ReviewLine line = review_.Lines[static_cast<std::size_t>(row)];
  const std::string instrument = Instrument();
  switch (WhereMended(line.Trouble)) {
    case MendedIn::Staging:
      return services_.Stage(instrument, line.From, line.To);
    case MendedIn::Editor:
      return services_.OpenChart(instrument, line.ChartDate);
    case MendedIn::Populating:
      return services_.Convert(instrument);
  }
}

}  // namespace hyetex
