// What the windows read the lists with: a damaged `lists.dat` is kept, what can be read of it is used, and
// the operator is told.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/result.h"
#include "staging/lists/lists.h"

namespace hyetex {

struct RecoveredLists {
  ReferenceLists Lists;
  /// What the operator is told of the damage; empty when there is none.
  std::string Notice;
  /// No user could be read of a damaged file: AdmitByName() lets somebody in.
  bool NobodyIsKnown = false;
};

/// Reads the lists. A damaged file is copied beside itself at once (once, however often it is read). Lists of
/// which no administrator could be read may be used but not saved, since nobody could open them to the
/// administrators again. Fails on a file that cannot be read at all.
Result<RecoveredLists> RecoverLists(const std::string& programFolder);

/// Reads the lists anew for windows that open later. Lists in memory stay as they are while the file is
/// damaged, and when the operator's entry no longer stands at its place in it: nobody becomes somebody else
/// by a change of the file. Fails on a file that cannot be read at all.
Result<void> RereadLists(const std::string& programFolder, ReferenceLists& lists, std::int16_t currentUser);

/// Makes the name the one user, with the rights of a digitizer operator: charts can be digitized while the
/// lists wait to be mended, and nobody becomes an administrator by damage.
void AdmitByName(ReferenceLists& lists, std::string_view name, std::string_view password);

}  // namespace hyetex
