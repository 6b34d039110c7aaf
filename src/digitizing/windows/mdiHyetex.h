// The program's main frame: all other windows stand inside it. Its menus and its status bar serve the
// digitizing window while that has the focus.
#pragma once

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMenu>
#include <QPointer>
#include <QProgressBar>
#include <array>
#include <functional>

#include "digitizing/shell_commands.h"
#include "platform/popup_menu.h"

namespace hyetex {

class mdiHyetex final : public QMainWindow, public Shell, public PopupMenu {
  Q_OBJECT

 public:
  explicit mdiHyetex(QWidget* parent = nullptr);
  ~mdiHyetex() override;

  QMdiArea& Area() { return *area_; }
  QMenu& Popup() { return *mnuPop; }  ///< of the lists, with its three commands
  /// Names the chart that is on the desk in the frame's title; empty: there is none.
  void ShowChart(const std::string& name);
  QAction& Fix() { return *mnuFix; }  ///< disabled until there are stations to synchronise

  void Digitizing(SessionCommands& commands) override;
  void NotDigitizing() override;
  bool PointsAreShown() const override { return mnuPoints->isChecked(); }
  void ShowScales(const ScaleCaptions& captions) override;
  void ShowModes(const DeskModes& modes) override;
  void ShowUndo(const UndoCaptions& captions) override;
  void ShowPanel(int panel, std::string_view text) override;
  std::string PanelText(int panel) const override;
  int ClientHeight() const override;

  void ShowPopup(QWidget& owner, const QPoint& at, PopupCommands commands) override;
  /// From now on the Definitions menu has its last entry, and so is there without a session too.
  void OfferDefaults();

 signals:
  void ExitChosen();  ///< by the menu or the frame's button: what is not saved is asked about first
  void HelpChosen();
  void DefaultsChosen();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QMenu* AddMenu(const char* name, const char* caption);
  /// Without `run` the entry only shows something.
  QAction* AddItem(QMenu* menu, const char* name, const char* caption, std::function<void()> run = {});
  void AddToolItem(const char* name, const char* caption, int tool);
  void MakeMenus();
  void ShowSessionMenus(bool shown);
  void AddPopupItem(const char* name, PopupCommand PopupCommands::*command);
  void MakeStatusBar();
  void TellFocus();
  void EnsureFocus();

  QMdiArea* area_;
  SessionCommands* commands_ = nullptr;
  QPointer<QWidget> focused_;
  PopupCommands popup_;
  QPointer<QWidget> popupOwner_;

  QMenu *mnuFile, *mnuView, *mnuDEf, *mnuTools, *mnuPop;
  QAction *mnuNew, *mnuSave, *mnuPoints, *mnuMagnifier, *mnuMagnify, *mnuOverlay, *mnuCorrect, *mnuTrace,
      *mnuAngle, *mnuVertical, *mnuHorizontal, *mnuDefaults, *mnuFix, *mnuUndo, *mnuRedo;
  std::array<QLabel*, 4> panels_;
  QProgressBar* prbThink;
};

}  // namespace hyetex
