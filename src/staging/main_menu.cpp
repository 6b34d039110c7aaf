#include "staging/main_menu.h"

#include <array>

namespace hyetex {
namespace {

constexpr std::array<MenuCommand, 9> Commands{{
    {.Name = "cmdLists",
     .Caption = "Edit &Information Needed to Digitize Charts",
     .Opens = WindowId::Lists,
     .LeavesMenu = true},
    {.Name = "cmdTask",
     .Caption = "&Prepare and Digitize Charts",
     .Opens = WindowId::Tasks,
     .LeavesMenu = true},
    {.Name = "cmdEditor",
     .Caption = "&Quality Control of Digitized Charts",
     .Opens = WindowId::Editor,
     .Needs = Right::QualityControl,
     .LeavesMenu = true},
    {.Name = "cmdPopulate",
     .Caption = "&Load/Extract Digitized ASCII Files To/From Database",
     .Opens = WindowId::Load,
     .Needs = Right::Database,
     .NeedsDatabase = true,
     .LeavesMenu = true},
    {.Name = "cmdAlpha",
     .Caption = "Define &ALPHA Pen Skew ",
     .Opens = WindowId::Alpha,
     .Needs = Right::Database,
     .NeedsDatabase = true,
     .LeavesMenu = true},
    {.Name = "Command1",
     .Caption = "&Convert ASCII Data to Time-Depth Data",
     .Opens = WindowId::PrePop,
     .Needs = Right::Database,
     .NeedsDatabase = true,
     .LeavesMenu = true},
    {.Name = "cmdDataBase", .Caption = "&Select Database Source", .Opens = WindowId::Connection},
    {.Name = "cmdSelectDatabaseEdit", .Caption = "&Edit Database Records", .Opens = WindowId::SelectTable},
    {.Name = "cmdCompress",
     .Caption = "Export or Import &Rainfall Intensity Data as XML",
     .Opens = WindowId::Exchange},
}};

}  // namespace

std::span<const MenuCommand> MainMenuCommands() { return Commands; }

}  // namespace hyetex
