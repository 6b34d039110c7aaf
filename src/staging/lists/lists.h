// The reference lists that all of Hyetex picks from: chart types, core parties, agencies, stations, users and
// comment definitions, and their file `lists.dat` in the program folder.
//
// The file is a row of slots of 128 bytes: for each list one slot with its highest index, then one slot an
// entry. What stands in a slot behind its record, and in the file behind the last slot, means nothing and is
// left as it is.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/records.h"
#include "core/result.h"

namespace hyetex {

inline constexpr std::string_view ListsFileName = "lists.dat";

/// No list is ever empty.
struct ReferenceLists {
  std::vector<ChartTypeRecord> ChartTypes = std::vector<ChartTypeRecord>(1);
  std::vector<std::string> Cores = std::vector<std::string>(1);
  std::vector<AgencyRecord> Agencies = std::vector<AgencyRecord>(1);
  std::vector<StationRecord> Stations = std::vector<StationRecord>(1);
  std::vector<UserRecord> Users = std::vector<UserRecord>(1);
  std::vector<CommentRecord> Comments = std::vector<CommentRecord>(1);
  /// Not empty: these lists lack what a damaged file still holds, and must not be written over it.
  std::string WhyNotSaved = {};
};

/// Reads the lists. A missing file is created with length 0. A field that does not wholly stand before the
/// file's end reads as 0 or empty, so a missing file gives one empty entry a list. Fails, naming the slot, on
/// what no save writes: a highest index outside its table, a text longer than its slot, a user's text that
/// cannot be shifted back, a number that is not finite.
Result<ReferenceLists> ReadLists(const std::string& programFolder);

/// Writes the lists, all or nothing; a damaged file is copied beside itself first. Stations go to the file in
/// the order of name and instrument code, without regard to ASCII case, equal ones in the order of their
/// indices; `lists` keeps its own order. Fails, naming the entry, on whatever its slot or table cannot hold,
/// and on lists that must not be saved.
Result<void> SaveLists(const std::string& programFolder, const ReferenceLists& lists);

/// The text with `amount` added to each byte; nothing if a byte would leave 0 to 255. User names and
/// passwords stand in the file shifted by 20.
std::optional<std::string> ShiftText(std::string_view text, int amount);

/// Why an operator's entry cannot be kept: it does not fit its slot, cannot be shifted, holds a line break or
/// a NUL (its texts go into the lines of chart files), or a station's code cannot name files and tasks.
/// Nothing if it can. For the record of any list.
template <typename Record>
std::optional<std::string> CheckEntry(const Record& record);

/// Why an instrument code cannot name chart files and staged charts; nothing if it can.
std::optional<std::string> CheckInstrumentCode(std::string_view code);

/// Why a list, one of `lists`, can take no further entry; nothing if it can.
template <typename Record>
std::optional<std::string> CheckRoom(const std::vector<Record>& list);

/// Index of the last station with exactly this instrument code, or without regard to ASCII case; -1 if there
/// is none.
std::int16_t FindStation(std::span<const StationRecord> stations, std::string_view code);
std::int16_t FindStationIgnoringCase(std::span<const StationRecord> stations, std::string_view code);
/// Index of the first user with this name, without regard to ASCII case; -1 if there is none.
std::int16_t FindUser(const std::vector<UserRecord>& users, std::string_view name);

/// Names of a station's core party and agency, by the station's index; empty where an index points at
/// nothing.
std::string StationCoreName(const ReferenceLists& lists, int station);
std::string StationAgencyName(const ReferenceLists& lists, int station);

}  // namespace hyetex
