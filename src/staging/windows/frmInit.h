// The Main Menu: every other window is opened from here and returns here.
#pragma once

#include <QLabel>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "core/result.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "staging/main_menu.h"

namespace hyetex {

struct MainMenuServices {
  std::function<std::int16_t()> Level;  ///< the operator's, as the lists have it now
  std::function<bool()> DatabaseOpens;
  std::function<std::optional<ChartSourceKind>()> AskForSource;
  std::function<void(ChartSourceKind)> SetSource;  ///< of the editor, before it opens
  std::function<void()> Help;
  /// Opens a text file in the system's editor; fails where there is none.
  std::function<Result<void>(const std::string& path)> OpenText;
};

class frmInit : public FormWindow {
  Q_OBJECT

 public:
  /// Takes the stored database source into `connectionText`.
  frmInit(Desk& desk, Dialogs& dialogs, Settings& settings, std::string& connectionText,
          MainMenuServices services, QWidget* parent = nullptr);

  /// Writes the database source into its label, without its password, with `before` in front.
  void ShowConnection(std::string_view before = {});

 private:
  QPushButton* MakeButton(const MenuCommand& command);
  void MakeLayout();
  void Run(const MenuCommand& command);
  bool PrepareEditor();

  Dialogs& dialogs_;
  std::string& connectionText_;
  MainMenuServices services_;

  QLabel* labDataBase;
  QPushButton *cmdViewSettings, *cmdHelp, *cmdExit;
};

}  // namespace hyetex
