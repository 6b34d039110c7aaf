// The Main Menu's commands that open a window, one row each.
#pragma once

#include <span>
#include <string_view>

#include "core/desk.h"
#include "staging/lists/login.h"

namespace hyetex {

/// The frames of the Main Menu in which commands stand.
enum class MenuGroup : int { Digitize, Populate, Select, Share };

struct MenuCommand {
  std::string_view Name;     ///< of the button
  std::string_view Caption;  ///< "&" stands before the letter of its shortcut
  MenuGroup Group;
  WindowId Opens;
  Right Needs = Right::Everyone;
  bool NeedsDatabase = false;  ///< refused when the database cannot be opened
  bool LeavesMenu = false;     ///< the Main Menu closes behind it
};

/// In the order in which they stand in the menu.
std::span<const MenuCommand> MainMenuCommands();

/// Where the editor finds its charts; also the index of the answer's button.
enum class ChartSourceKind : int { HardDrive = 0, Database = 1 };

/// Behind the site of the settings.
inline constexpr std::string_view HelpPagePath = "/hy/documentation/hyetex_instructions_part1.htm";

}  // namespace hyetex
