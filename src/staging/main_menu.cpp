#include "staging/main_menu.h"

#include <array>

namespace hyetex {
namespace {

constexpr std::array<MenuCommand, 10> Commands{{
    {.Name = "cmdLists",
     .Caption = "Edit &Information Needed to Digitize Charts",
     .Group = MenuGroup::Digitize,
     .Opens = WindowId::Lists,
     .LeavesMenu = true},
    {.Name = "cmdTask",
     .Caption = "&Prepare and Digitize Charts",
     .Group = MenuGroup::Digitize,
     .Opens = WindowId::Tasks,
     .LeavesMenu = true},
    {.Name = "cmdEditor",
     .Caption = "&Quality Control of Digitized Charts",
     .Group = MenuGroup::Digitize,
     .Opens = WindowId::Editor,
     .Needs = Right::QualityControl,
     .LeavesMenu = true},
    {.Name = "cmdPopulate",
     .Caption = "&Load/Extract Digitized ASCII Files To/From Database",
     .Group = MenuGroup::Populate,
     .Opens = WindowId::Load,
     .Needs = Right::Database,
     .NeedsDatabase = true,
     .LeavesMenu = true},
    {.Name = "cmdAlpha",
     .Caption = "Define &ALPHA Pen Skew ",
     .Group = MenuGroup::Populate,
     .Opens = WindowId::Alpha,
     .Needs = Right::Database,
     .NeedsDatabase = true,
     .LeavesMenu = true},
    {.Name = "Command1",
     .Caption = "&Convert ASCII Data to Time-Depth Data",
     .Group = MenuGroup::Populate,
     .Opens = WindowId::PrePop,
     .Needs = Right::Database,
     .NeedsDatabase = true,
     .LeavesMenu = true},
    {.Name = "cmdDataBase",
     .Caption = "&Select Database Source",
     .Group = MenuGroup::Select,
     .Opens = WindowId::Connection},
    {.Name = "cmdSelectDatabaseEdit",
     .Caption = "&Edit Database Records",
     .Group = MenuGroup::Select,
     .Opens = WindowId::SelectTable},
    {.Name = "cmdCompress",
     .Caption = "Export or Import &Rainfall Intensity Data as XML",
     .Group = MenuGroup::Share,
     .Opens = WindowId::Exchange},
    {.Name = "cmdRainfall",
     .Caption = "Rainfall Resul&ts",
     .Group = MenuGroup::Share,
     .Opens = WindowId::Rainfall,
     .NeedsDatabase = true,
     .LeavesMenu = true},
}};

}  // namespace

std::span<const MenuCommand> MainMenuCommands() { return Commands; }

}  // namespace hyetex
