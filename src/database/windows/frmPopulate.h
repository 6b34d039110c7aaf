// The populate window: an instrument's stored charts, which depth counts for each, and their conversion into
// rows of CHART.
#pragma once

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QStatusBar>
#include <QTableView>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "database/conversion/populate_choice.h"
#include "database/windows/populate_model.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

/// What stands around the window.
struct PopulateParts {
  std::string User;             ///< who converts
  std::string Instrument = {};  ///< chosen from the beginning, where there is one
  /// Shows the rain of an instrument between two moments, local; without it nothing is offered.
  std::function<void(const std::string& instrument, Date from, Date to)> ShowRain = {};
};

class frmPopulate : public FormWindow {
  Q_OBJECT

 public:
  /// The variables go back to none when the window closes. What is converted is written down under the user's
  /// name.
  frmPopulate(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
              const ReferenceLists& lists, ComputationVariables& variables, PopulateParts parts,
              QWidget* parent = nullptr);

  /// Shows the charts of the chosen instrument; nothing happens while none is chosen.
  void LoadGrid();
  void WriteChartRecords();
  /// Shows the charts of an instrument; nothing happens where the database does not know it.
  void ChooseInstrument(const std::string& code);

  QSize sizeHint() const override;

 protected:
  void Closing() override;

 private:
  void MakeControls();
  void MakeGrid();
  void MakeLayout();
  void FillInstruments();
  void EnableCommands();

  ChosenRows Chosen() const;
  int SourceRow(int shownRow) const;
  void ChangeSelectedDepth();
  void ViewSelected();
  void TellOutcome(const ConversionResult& result);
  void ShowConvertedRain();
  void ShowConversion();
  void ShowText(const std::string& path);

  Dialogs& dialogs_;
  HyetexPlotDB& database_;
  const ReferenceLists& lists_;
  ComputationVariables& variables_;
  const PopulateParts parts_;
  std::vector<std::string> instruments_;  // as the database spells them
  struct Converted {
    std::string Instrument;
    Date From = 0, To = 0;
  };
  std::optional<Converted> converted_;  // by the last run
  PopulateModel* charts_;
  PopulateOrder* order_;

  QComboBox* cboSelection;
  QCheckBox *chkShowAll, *chkDataLog, *chkOverwrite;
  QTableView* spFiles;
  QAction *mnuChangeSelectedDepth, *mnuPopulateViewSelected;
  QPushButton *cmdWrite, *cmdRain, *cmdBack, *cmdExit, *cmdCancel;
  QLabel* labConverted;
  QStatusBar* StatusBar1;
  QProgressBar* barProgress;
};

}  // namespace hyetex
