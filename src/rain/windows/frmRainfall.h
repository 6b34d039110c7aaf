// Rainfall Results: an instrument's rain in chosen days as a picture, beside it the tables that sum it up,
// and what ails its charts. From here it is taken away as files.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "platform/date_box.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "platform/page_printing.h"
#include "platform/shown_progress.h"
#include "rain/chart_review.h"
#include "rain/rain_overview.h"
#include "rain/windows/rain_view.h"
#include "rain/windows/sheet_view.h"

namespace hyetex {

/// Some days of an instrument's rain, local.
struct RainTarget {
  std::string Instrument;
  Date From = 0, To = 0;
};

/// What the window needs of the rest of the program.
struct RainServices {
  const std::vector<StationRecord>& Stations;
  std::optional<RainTarget> First = {};  ///< what to show first; else what was converted last
  /// Each opens the window that mends something, or tells the operator why it does not.
  std::function<void(const std::string& instrument, Date chartDate)> OpenChart;
  std::function<void(const std::string& instrument, Date from, Date to)> Stage;
  std::function<void(const std::string& instrument)> Convert;
  /// Whether the operator may write to the database; the operator has been told if not.
  std::function<bool()> MayWrite;
};

class frmRainfall : public FormWindow {
  Q_OBJECT

 public:
  frmRainfall(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database, RainServices services,
              QWidget* parent = nullptr);

  /// Shows some days of an instrument, with steps that make a picture of them.
  void ShowDays(const RainTarget& target);
  /// What is shown; nothing before something was read.
  const std::optional<RainOverview>& Shown() const { return overview_; }

  QSize sizeHint() const override;

 protected:
  void showEvent(QShowEvent* event) override;
  void Closing() override;

 private:
  /// The place of a tab.
  enum Tab { Days, Gage, Maxima, Storms, Years, Charts, Remarks };

  // frmRainfall_layout.cpp
  void MakeLayout();
  QWidget* MakeChoice();
  QWidget* MakePicture();
  QWidget* MakeTables();
  QLayout* MakeButtons();
  void MakeMenus();
  void Connect();

  // What is asked for
  void Begin();
  void FillInstruments();
  bool ChooseInstrument(const std::string& code);
  void ChangeInstrument();
  void ChangeYear();
  void Ask();
  RainClock LocalClock() const;
  RainQuestion Asked() const;
  void SetDays(Date from, Date to, std::optional<int> step = {});
  void GoTo(Date from, Date to);
  void GoBack();
  const std::string& Instrument() const;

  // What is shown
  void Read();
  void Show(RainOverview overview);
  void ShowNothing(const QString& why);
  void ShowNoRain();
  void ReadAnew();
  void FillTab();
  void ReadYears();
  void ReadReview();
  void Choose(Tab tab, int row);
  void OpenStep(std::size_t step);
  void Mend(int row);
  void ShowMending(int row);
  bool HasRain();
  /// One piece of work after the other; while it lasts only its own button is heard.
  template <typename Work>
  auto Worked(Work&& work) {
    isBusy_ = true;
    auto done = [&] {
      ShownProgress progress(*prgRain, *cmdStop);
      return work(progress);
    }();
    isBusy_ = false;
    return done;
  }

  // What is taken away: frmRainfall_files.cpp
  std::optional<std::string> AskForFile(const std::string& what, const std::string& ending);
  void Kept(const std::string& path);
  void TellWritten(const std::vector<std::string>& paths, const std::vector<std::string>& notes);
  void SaveCsv();
  void SaveSef();
  void SavePicture(const std::string& ending);
  void SaveReport();
  void FillTables();
  PageToPrint Page();
  std::string FileName(const std::string& ending) const;
  void Tell(const std::string& text, BoxIcon icon = BoxIcon::Warning);

  Dialogs& dialogs_;
  HyetexPlotDB& database_;
  const RainServices services_;
  std::vector<std::string> instruments_;
  std::optional<RainExtent> extent_;  // of the instrument
  std::optional<RainOverview> overview_;
  std::vector<RainQuestion> before_;  // what was shown, for the way back
  std::vector<RainPeriod> years_;
  ChartReview review_;
  bool hasYears_ = false, hasReview_ = false;  // of what is asked for now
  bool isBusy_ = false, asks_ = false, wasShown_ = false;

  QComboBox *cboInstrument, *comYear, *comStep, *comTime, *comDayBegins;
  DateBox *dtpFrom, *dtpTo;
  QLineEdit *txtHours, *txtDry;
  QPushButton *cmdBack, *cmdExport, *cmdPrint, *cmdFill, *cmdExit, *cmdMend, *cmdStop;
  RainView* picRain;
  QLabel *labReadOut, *labState, *labReview;
  QTabWidget* tabTables;
  SheetView *grdDays, *grdGage, *grdMaxima, *grdStorms, *grdYears, *grdCharts;
  QPlainTextEdit* txtRemarks;
  QProgressBar* prgRain;
};

}  // namespace hyetex
