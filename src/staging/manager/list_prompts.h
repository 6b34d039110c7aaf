// What the popup menu and its input boxes say for each kind of entry.
#pragma once

#include <string_view>

#include "staging/lists/station_tree.h"

namespace hyetex {

struct Prompt {
  std::string_view Title, Text;
  bool IsSecret = false;  ///< what is typed is not shown
};

/// The questions of one command; a kind that has just one leaves the second empty.
struct Prompts {
  Prompt First, Second;
};

struct ListTexts {
  std::string_view AddCaption, ChangeCaption, DeleteCaption;  ///< of the popup menu
  Prompts Add, Change;                                        ///< none for charts
};

const ListTexts& TextsOf(ListKind kind);

/// What the operator is told when a new instrument code has been carried into the staged charts.
inline constexpr std::string_view CodeChangeTitle = "Changing an instrument code";

}  // namespace hyetex
