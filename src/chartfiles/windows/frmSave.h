// The save window: how the trace compares with the chart's details, the details once more for changing, and
// the way to the chart file. While it is open the digitizing window waits.
#pragma once

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTimeEdit>
#include <QTimer>
#include <array>
#include <functional>

#include "chartfiles/saving.h"
#include "platform/date_box.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

/// What the save window asks of the digitizing window.
struct SaveCallbacks {
  std::function<void()> EnableDesk;  ///< the save window is closing
  std::function<void()> NewFile;     ///< ends the session, with its question if the chart is not saved
  /// Takes all points away, as the tool of that name does, after its question; false if they stay.
  std::function<bool()> Redigitize;
  std::string Comment = {};  ///< the digitizer's, as an earlier save window of this chart left it
  std::function<void(std::string comment)> KeepComment = {};
};

class frmSave : public FormWindow, public FocusListener {
  Q_OBJECT

 public:
  /// Session and callbacks must outlive the window.
  frmSave(Desk& desk, Dialogs& dialogs, Settings& settings, Session& session, ChartOrigin origin,
          SaveCallbacks callbacks, QWidget* parent = nullptr);

  /// Whether the window may go: the file is written, or the operator keeps the one that was there.
  bool SaveFile();
  void WriteReport();

  void FocusChanged(bool focused) override;

 protected:
  bool MayLeave() override;
  void Closing() override;
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void MakeLayout();
  void AddDetails(QGridLayout& layout);
  void AddChoices(QGridLayout& layout);
  void ShowOnly(QLineEdit* box);
  /// In the window's own colour, also after the desktop has gone dark.
  void ShadeShownOnly();
  void AddRow(QGridLayout& layout, const char* caption, QWidget* buddy, QWidget* shown = nullptr);
  QWidget* MakeButtons();
  QWidget* MakeStepped(QLineEdit*& box, const char* name, double step, std::optional<double> lowest);
  void SetTabOrder();

  void ShowDetails();
  void ShowFile();
  EditedDetails ShownDetails() const;
  /// Takes the edited details; false if they cannot be, which the operator has been told.
  bool ResetDefinitions();
  /// Before the chart is saved: whether what has been edited is taken, or passed over as the operator wants.
  bool TakesPendingDetails();
  void MarkPendingDetails();
  void ShowChosenDepth();
  void Blink();
  void Save();
  void Redigitize();

  Dialogs& dialogs_;
  Session& session_;
  ChartOrigin origin_;
  SaveCallbacks callbacks_;
  ChartReport report_;

  QPlainTextEdit* txtPrompt;
  std::array<QLabel*, 3> labPrompt;
  QLineEdit *txtEyed, *txtManual, *txtRain = nullptr, *txtAlpha = nullptr, *txtComment;
  DateBox *dtpBeginDate, *dtpEndDate;
  QTimeEdit *dtpBeginTime, *dtpEndTime;
  QComboBox *comRain, *comChart;
  QPushButton *cmdDefiine, *cmdSave, *cmdRedigitize, *cmdCancel, *cmdBack, *cmdNext;
  QLabel *labPending, *labFile;
  QTimer* timPrompt;
};

}  // namespace hyetex
