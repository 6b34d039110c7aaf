// What the bytes of a `lists.dat` say, and what of a damaged one can still be used.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "staging/lists/lists.h"

namespace hyetex {

/// The lists as they stand in the bytes; what stands behind their end reads as 0 or empty. Fails, naming the
/// slot, on the first damage.
Result<ReferenceLists> DecodeLists(std::string_view bytes);

struct SalvagedLists {
  ReferenceLists Lists;
  std::vector<std::string> Damage;  ///< one line each, in file order; none in a whole file
  bool UsersAreWhole = true;
  int UserCount = 0;  ///< that could be read; with none of them `Lists` holds an empty one
};

/// Reads on behind damage as far as that can be done. A damaged entry keeps its place, so that indices stay
/// right, under a name that says so; a damaged user is left out. Behind a damaged highest index no entry's
/// place is known, so all that follows is lost. Bytes that end before their last entry are damaged too, no
/// bytes at all are not. Nothing is read past the end.
SalvagedLists SalvageLists(std::string_view bytes);

/// Puts agencies and stations whose index points at nothing, and which no tree would show, where their
/// stations stand or else under the first core or agency. Tells which, one line each.
std::vector<std::string> BringBackHidden(ReferenceLists& lists);

}  // namespace hyetex
