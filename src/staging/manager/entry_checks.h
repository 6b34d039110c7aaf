// What an entry must be beside the others of its list. Only new and changed entries are held to it: lists
// that were made before may hold doubles, and stay as they are.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "staging/lists/lists.h"

namespace hyetex {

/// Why the entry cannot stand beside the others: another one has its name, or its code. A core, a user and a
/// chart type go by their name, an agency by its name in its core, a station by its instrument code (several
/// instruments may stand at one station), a comment by its code. Names and instrument codes are compared
/// without regard to ASCII case. `self` is the entry's own index, -1 for a new one; an entry that keeps its
/// name or code is not refused. For the record of any list.
template <typename Record>
std::optional<std::string> CheckUnique(const ReferenceLists& lists, const Record& record, int self = -1);

/// Whether there is a code at all; a station without one has "None".
bool HasInstrumentCode(const StationRecord& station);

bool IsUnnamed(const UserRecord& user);
/// Whether the lists would be closed to everybody without this user. Who has no name does not count: that
/// entry is for the time before there are users.
bool IsLastAdministrator(const std::vector<UserRecord>& users, int user);
/// The first administrator who has a name; -1 if there is none.
int NamedAdministrator(const std::vector<UserRecord>& users);

}  // namespace hyetex
