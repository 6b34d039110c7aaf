// What an instrument's code tells. It is made of parts joined by "-", such as "NM-Hill Farm-AL0019": the
// initials of the core party and of its agency, the station's name, the station's own code.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "staging/lists/lists.h"

namespace hyetex {

/// At least one, which may be empty.
std::vector<std::string_view> CodeParts(std::string_view code);

/// What stands before the last "-": the key of the station in the database.
std::string StationKey(std::string_view code);

/// The station that a code tells of: its name is the code's second part, its core party and agency are the
/// first whose names begin with the letters of the first part. The agencies of a core party under "J" go by
/// the words METEO for "M" and WATER for "W". Nothing for a code without "-", or whose letters fit no agency.
std::optional<StationRecord> ResolveCode(std::string_view code, const ReferenceLists& lists);

/// Why a code tells the database too little: it has fewer than three parts. Nothing if it does not.
std::optional<std::string> CheckCodeParts(std::string_view code);

/// A code of the form above for a station of the lists, made of the names of its core party, agency and of
/// its own, and of what `typed` tells of its number, or else the first number that is free. Nothing where the
/// names give none that ResolveCode() takes, or none that fits.
std::optional<std::string> ProposeCode(const StationRecord& station, std::string_view typed,
                                       const ReferenceLists& lists);

}  // namespace hyetex
