// What holds until another is chosen: the chart type that charts are taken to be on, and the serial devices
// on which the tablet is looked for.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QStringList>
#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "platform/serial_line.h"
#include "staging/lists/lists.h"

namespace hyetex {

class frmProgramDefaults : public FormWindow {
  Q_OBJECT

 public:
  /// `currentChart` is the index of the default chart type; `chosen` hears of a new one.
  frmProgramDefaults(Desk& desk, Dialogs& dialogs, Settings& settings, const ReferenceLists& lists,
                     std::int16_t& currentChart, std::function<void()> chosen = {},
                     QWidget* parent = nullptr);

 private:
  void FillPorts();
  /// False if something was told, or the operator would rather correct it.
  bool KeepPorts();
  void ShowChartType(int index);
  bool Take();
  /// The chart type's index and the devices, as the boxes have them.
  QStringList Shown() const;
  bool MayLeave() override;

  Dialogs& dialogs_;
  const ReferenceLists& lists_;
  std::int16_t& currentChart_;
  const std::function<void()> chosen_;
  QStringList opened_;  // what was shown first

  QComboBox* comChartType;
  /// Empty: the machine's own device of that number.
  std::array<QComboBox*, LastSearchedPort - FirstSearchedPort + 1> cboPort;
  QLabel *labHeightScale, *labDepthScale, *labHeight;
  QPushButton *cmdDone, *cmdCancel;
};

}  // namespace hyetex
