// Putting entries into the reference lists and taking them out, with every index that follows. A station
// always stays under its agency and core party, and no list goes empty or outgrows its table. Each operation
// is done as a whole or not at all; what cannot be done fails with one line for the operator.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/result.h"
#include "staging/lists/lists.h"
#include "staging/lists/login.h"
#include "staging/lists/station_tree.h"

namespace hyetex {

/// The entry that an operator points at.
struct ListPlace {
  ListKind Kind = ListKind::Core;
  std::int16_t Index = 0;
};

/// The highest index of a list; -1 for charts, which stand elsewhere.
int LastIndex(const ReferenceLists& lists, ListKind kind);
/// Whether the place is in its list.
bool IsIn(const ReferenceLists& lists, ListPlace place);

/// Why no entry of this kind can be added, with all that comes along; nothing if one can.
std::optional<std::string> CheckRoomFor(const ReferenceLists& lists, ListKind kind);

// Each puts the new entry directly behind the one at `behind`, and returns its index.
/// The core gets an agency and a station of its own, at the end of their tables.
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, std::string core);
/// Under the core of the one at `behind`, with a station of its own at the end of the stations.
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, AgencyRecord agency);
/// Under the core and agency of the one at `behind`.
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, StationRecord station);
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, UserRecord user);
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, ChartTypeRecord chartType);
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, CommentRecord comment);

/// Gives an agency that has no station one, and tells whether it did.
Result<bool> EnsureStation(ReferenceLists& lists, int agency);

/// Why the entry is the last one, or the last administrator, that may not go; nothing if it may.
std::optional<Refusal> CheckDelete(const ReferenceLists& lists, ListPlace place);
/// Takes out the entry with all that stands under it, unless CheckDelete() refuses. The place stays, or moves
/// to the last entry where it was behind it.
void DeleteEntry(ReferenceLists& lists, ListPlace& place);

}  // namespace hyetex
