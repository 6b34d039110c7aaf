#include "staging/manager/list_prompts.h"

#include <array>

namespace hyetex {
namespace {

constexpr std::array<ListTexts, 7> Texts{{
    {.AddCaption = "Add new core",
     .ChangeCaption = "Change the name of the core",
     .DeleteCaption = "Delete core",
     .Add = {{"Adding a core", "Please write the name of the new core"}, {}},
     .Change = {{"Changing a name", "Please write the new name for the core"}, {}}},
    {.AddCaption = "Add new Agency",
     .ChangeCaption = "Change the name of the Agency",
     .DeleteCaption = "Delete Agency",
     .Add = {{"Adding an Agency", "Please write the name of the new Agency"}, {}},
     .Change = {{"Changing a name", "Please write the new name for the Agency"}, {}}},
    {.AddCaption = "Add new station",
     .ChangeCaption = "Change the name of the station",
     .DeleteCaption = "Delete station",
     .Add = {{"Adding a station", "Please write the name of the new station"},
             {"Adding a station", "Please write the instrument_code_id for the new station"}},
     .Change = {{"Changing a name", "Please write the new name for the station"},
                {"Changing a name", "Please write the ID code of the station"}}},
    {.AddCaption = "Add new user",
     .ChangeCaption = "Change the name of the user",
     .DeleteCaption = "Delete user",
     .Add = {{"Adding a user", "Please write the name of the new user"},
             {"Adding a user", "Please write the password of the new user", true}},
     .Change = {{"Changing a name", "Please write the new name for the user"},
                {"Changing a password", "Please write the new password for the user", true}}},
    {.AddCaption = "Add new chart",
     .ChangeCaption = "Change the name of the chart",
     .DeleteCaption = "Delete chart",
     .Add = {{"Adding a chart", "Please write the name of the new chart"}, {}},
     .Change = {{"Changing a name", "Please write the new name for the chart"}, {}}},
    {.AddCaption = "Add new chart",
     .ChangeCaption = "Change the details of the chart",
     .DeleteCaption = "Delete chart",
     .Add = {},
     .Change = {}},
    {.AddCaption = "Add new Comment",
     .ChangeCaption = "Change the details of the Comment",
     .DeleteCaption = "Delete Comment",
     .Add = {{"Adding a Comment", "Please write the code of the new Comment"},
             {"Adding new Comment", "Please write the description of the new Comment"}},
     .Change = {{"Changing a Comment", "Please write a new code for the Comment"},
                {"Changing a Comment", "Please write a new description for the Comment"}}},
}};

}  // namespace

const ListTexts& TextsOf(ListKind kind) { return Texts[static_cast<std::size_t>(kind)]; }

}  // namespace hyetex
