// What is known of the scan under the trace, and how it is shown: its scale, how it is turned, its
// brightness, contrast and the colour of its grid. It stands on the panel beside the chart view, and acts at
// once. The file stays as it is.
#pragma once

#include <QDoubleSpinBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QWidget>
#include <array>
#include <string>

#include "scan/scan_image.h"
#include "scan/scan_scale.h"

namespace hyetex {

class ScanControls : public QWidget {
  Q_OBJECT

 public:
  explicit ScanControls(QWidget* parent = nullptr);

  void ShowName(const std::string& name);
  void ShowScale(const std::string& text);
  void ShowAngle(double degrees);
  /// What has become of the file while it is traced; empty: it is as it was.
  void ShowTrouble(const std::string& why);
  /// Whether the scan may be turned and its scale changed; if not, why.
  void ShowFixed(const std::string& why);
  /// Whether the file says a resolution that can be.
  void OfferResolution(bool offered) { actResolution->setEnabled(offered); }

  /// The doubt that is looked at, above what can be done about it; empty: none.
  void ShowDoubt(const std::string& words);
  /// Shown while the scan is traced.
  QProgressBar& TraceBar() { return *prbTraceScan; }
  QPushButton& TraceCancel() { return *cmdTraceCancel; }

 signals:
  void LookChanged(const ScanLook& look);
  void AngleChosen(double degrees);
  void ScaleChosen(ScanScale::Source by);
  void TraceChosen();

 private:
  QSlider* AddSlider(const char* name, const char* caption, int least);
  void TellLook();

  QLabel *labScanName, *labScanScale, *labScanTrouble, *labScanFixed, *labScanDoubt;
  QProgressBar* prbTraceScan;
  QPushButton *cmdTraceScan, *cmdTraceCancel, *cmdScanScale, *cmdTurnLeft, *cmdTurnRight, *cmdLookReset;
  QAction* actResolution;
  QDoubleSpinBox* spnTurn;
  std::array<QSlider*, 3> sliders_{};
};

}  // namespace hyetex
