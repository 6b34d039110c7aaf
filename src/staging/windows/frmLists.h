// The lists manager: core parties, agencies and stations, users, chart types and comments.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "core/desk.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "platform/popup_menu.h"
#include "staging/manager/list_editor.h"
#include "staging/windows/station_view.h"

namespace hyetex {

/// What the lists manager needs of the rest of the program.
struct ListsServices {
  PopupMenu& Popup;
  std::function<std::string()> ConnectionText = {};
  /// Brings the stations and the database in line; without it there is no such command.
  std::function<void()> Synchronise = {};
};

class frmLists final : public FormWindow, public FocusListener {
  Q_OBJECT

 public:
  /// Works on `lists`; `currentUser` follows the operator's own entry. All references are kept.
  frmLists(Desk& desk, Dialogs& dialogs, Settings& settings, ReferenceLists& lists, std::int16_t& currentUser,
           ListsServices services, QWidget* parent = nullptr);

  /// Shows the lists anew, as they are now.
  void UpdateLists();
  /// Saves what is not saved yet, as reading stations would; false when the operator would rather not.
  bool SaveBeforeReading();
  /// The stations have been brought in line with the database, and the lists perhaps saved.
  void StationsRead(bool saved);

  void FocusChanged(bool focused) override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeLayout();
  QWidget* MakeUsers();
  QWidget* MakeChartTypes();
  /// Right button and menu key on a list show the popup menu.
  void OfferPopup(QAbstractItemView* list, std::function<bool()> takePlace);
  bool TakePlace(ListKind kind, int index);
  void ShowPopup(const QPoint& at);
  void Run(void (ListEditor::*command)());
  void SelectPlace();

  void StationClicked();
  void ShowUser();
  void ShowChartType();
  void UpdateButtons();
  /// The chart type that is selected; null for none.
  ChartTypeRecord* ChartType();
  void SetMethod(int method);
  /// Whether the height is one, which the operator has been told if not.
  bool TakeHeight();
  void AskForScale(int index);
  void SaveAndClose();

  Dialogs& dialogs_;
  ReferenceLists& lists_;
  std::int16_t& currentUser_;
  const ListsServices services_;
  ListEditor editor_;

  StationView* tvwStations;
  QListWidget *lstUsers, *lstChart, *lstComment;
  QComboBox *comLevel, *comMethod;
  QLineEdit* txtHeight;
  std::array<QPushButton*, 2> cmdScale;
  QPushButton *cmdSave, *cmdCancel, *cmdReadTable;
};

}  // namespace hyetex
