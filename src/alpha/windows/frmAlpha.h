// The alpha window: the alpha values of an instrument's stored charts are looked over in a grid and a graph,
// bad charts are left out, and one value is written into the charts.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPageLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <array>
#include <string>
#include <vector>

#include "alpha/windows/alpha_model.h"
#include "alpha/windows/alpha_plot.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "platform/page_printing.h"

namespace hyetex {

class frmAlpha : public FormWindow {
  Q_OBJECT

 public:
  frmAlpha(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
           QWidget* parent = nullptr);

  /// Reads the charts of the chosen instrument; nothing happens while none is chosen.
  void LoadSS();
  void DrawGraph();

  QSize sizeHint() const override;

 private:
  // frmAlpha_layout.cpp
  void MakeLayout();
  void MakeGrid();
  QWidget* MakeGraphSide();
  QLayout* MakeButtons();
  QPushButton* MakeButton(const char* name, const char* caption, void (frmAlpha::*pressed)());

  void formatSS();
  void FillInstruments();
  void ShowState();
  void Flip(int row);
  void UseAverage();
  void WriteToDB();
  void Print();
  void Preview();
  void SaveAsPdf();
  PageToPrint Page() const;
  QPageLayout::Orientation Orientation() const;
  const AlphaReview& Review() const { return charts_->Review(); }

  Dialogs& dialogs_;
  HyetexPlotDB& database_;
  std::vector<std::string> instruments_;
  AlphaModel* charts_;
  bool isBusy_ = false;

  QComboBox* cboSelection;
  AlphaGrid* ss;
  AlphaPlot* picGraph;
  QCheckBox* chkGrid;
  std::array<QRadioButton*, 2> optPage;  // landscape, portrait
  QLineEdit *txtAlpha, *txtFontSize;
  QLabel *labRows, *labNotes;
  QProgressBar* prgCharts;
  QPushButton *cmdUseAverage, *cmdWriteToDB, *cmdPrint, *cmdDialog, *cmdPdf, *cmdDone, *cmdStop;
};

}  // namespace hyetex
