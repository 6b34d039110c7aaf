#include "staging/manager/list_editing.h"

#include <algorithm>
#include <array>
#include <utility>

#include "staging/manager/entry_checks.h"

namespace hyetex {
namespace {

const AgencyRecord NewAgency{"New Agency", 0};
const StationRecord NewStation{"New Station", "None", 0, 0};

// By ListKind. A core counts in its list, an agency in its core, a station in its agency.
constexpr std::array<Refusal, 7> LastOnes{{
    {"Deleting a core", "you cannot delete all the cores"},
    {"Deleting an Agency",
     "you cannot delete all the agencies in the core, however, you can delete the core"},
    {"Deleting a station",
     "you cannot delete all the stations in the Agency, however, you can delete the Agency"},
    {"Deleting a user", "you cannot delete all the users"},
    {"Deleting a chart", "you cannot delete all the charts"},
    {},
    {"Deleting a Comment", "you cannot delete all the comments"},
}};

// The indices from `from` on point one place further on, or back.
void Follow(std::int16_t& index, int from, int by) {
  if (index >= from) index = static_cast<std::int16_t>(index + by);
}

template <typename Lists, typename Take>
void WithList(Lists& lists, ListKind kind, Take&& take) {
  switch (kind) {
    case ListKind::Core:
      return take(lists.Cores);
    case ListKind::Agency:
      return take(lists.Agencies);
    case ListKind::Station:
      return take(lists.Stations);
    case ListKind::User:
      return take(lists.Users);
    case ListKind::ChartType:
      return take(lists.ChartTypes);
    case ListKind::Comment:
      return take(lists.Comments);
    case ListKind::Task:
      return;
  }
}

std::int16_t LastOf(const auto& list) { return static_cast<std::int16_t>(list.size() - 1); }

template <typename Record>
Result<std::int16_t> Insert(std::vector<Record>& list, int behind, Record record) {
  if (const auto why = CheckRoom(list)) return Failure(*why);
  if (const auto why = CheckEntry(record)) return Failure(*why);
  const int at = std::clamp(behind + 1, 0, static_cast<int>(list.size()));
  list.insert(list.begin() + at, std::move(record));
  return static_cast<std::int16_t>(at);
}

// Room for both has been checked.
void AddAgency(ReferenceLists& lists, std::int16_t core) {
  lists.Agencies.push_back({NewAgency.Name, core});
  lists.Stations.push_back({NewStation.Name, NewStation.InstrumentCode, core, LastOf(lists.Agencies)});
}

void RemoveAgency(ReferenceLists& lists, int agency) {
  std::erase_if(lists.Stations, [&](const StationRecord& station) { return station.Agency == agency; });
  lists.Agencies.erase(lists.Agencies.begin() + agency);
  for (StationRecord& station : lists.Stations) Follow(station.Agency, agency + 1, -1);
}

void RemoveCore(ReferenceLists& lists, int core) {
  for (int a = LastOf(lists.Agencies); a >= 0; --a)
    if (lists.Agencies[static_cast<std::size_t>(a)].Core == core) RemoveAgency(lists, a);
  lists.Cores.erase(lists.Cores.begin() + core);
  for (AgencyRecord& agency : lists.Agencies) Follow(agency.Core, core + 1, -1);
  for (StationRecord& station : lists.Stations) Follow(station.Core, core + 1, -1);
  // What is left may have no agency, or none with a station.
  if (lists.Agencies.empty()) lists.Agencies.push_back(NewAgency);
}

}  // namespace

int LastIndex(const ReferenceLists& lists, ListKind kind) {
  int last = -1;
  WithList(lists, kind, [&](const auto& list) { last = LastOf(list); });
  return last;
}

bool IsIn(const ReferenceLists& lists, ListPlace place) {
  return place.Index >= 0 && place.Index <= LastIndex(lists, place.Kind);
}

std::optional<std::string> CheckRoomFor(const ReferenceLists& lists, ListKind kind) {
  // A core brings an agency along, and an agency a station.
  const int first = static_cast<int>(kind);
  const int last = std::max(first, static_cast<int>(ListKind::Station));
  std::optional<std::string> why;
  for (int each = first; each <= last && !why; ++each)
    WithList(lists, static_cast<ListKind>(each), [&](const auto& list) { why = CheckRoom(list); });
  return why;
}

Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, std::string core) {
  if (const auto why = CheckRoomFor(lists, ListKind::Core)) return Failure(*why);
  const auto at = Insert(lists.Cores, behind, std::move(core));
  if (!at) return at;
  for (AgencyRecord& agency : lists.Agencies) Follow(agency.Core, *at, 1);
  for (StationRecord& station : lists.Stations) Follow(station.Core, *at, 1);
  AddAgency(lists, *at);
  return at;
}

Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, AgencyRecord agency) {
  if (const auto why = CheckRoomFor(lists, ListKind::Agency)) return Failure(*why);
  const std::int16_t core = agency.Core = lists.Agencies[static_cast<std::size_t>(behind)].Core;
  const auto at = Insert(lists.Agencies, behind, std::move(agency));
  if (!at) return at;
  for (StationRecord& station : lists.Stations) Follow(station.Agency, *at, 1);
  lists.Stations.push_back({NewStation.Name, NewStation.InstrumentCode, core, *at});
  return at;
}

Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, StationRecord station) {
  const StationRecord& current = lists.Stations[static_cast<std::size_t>(behind)];
  station.Core = current.Core;
  station.Agency = current.Agency;
  return Insert(lists.Stations, behind, std::move(station));
}

Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, UserRecord user) {
  return Insert(lists.Users, behind, std::move(user));
}
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, ChartTypeRecord chartType) {
  return Insert(lists.ChartTypes, behind, std::move(chartType));
}
Result<std::int16_t> InsertEntry(ReferenceLists& lists, int behind, CommentRecord comment) {
  return Insert(lists.Comments, behind, std::move(comment));
}

Result<bool> EnsureStation(ReferenceLists& lists, int agency) {
  const auto isItsOwn = [&](const StationRecord& station) { return station.Agency == agency; };
  if (std::any_of(lists.Stations.begin(), lists.Stations.end(), isItsOwn)) return false;
  if (const auto why = CheckRoomFor(lists, ListKind::Station)) return Failure(*why);
  const std::int16_t core = lists.Agencies[static_cast<std::size_t>(agency)].Core;
  lists.Stations.push_back(
      {NewStation.Name, NewStation.InstrumentCode, core, static_cast<std::int16_t>(agency)});
  return true;
}

std::optional<Refusal> CheckDelete(const ReferenceLists& lists, ListPlace place) {
  const auto index = static_cast<std::size_t>(place.Index);
  bool isLast = LastIndex(lists, place.Kind) <= 0;
  if (place.Kind == ListKind::Agency) {
    isLast = std::count_if(lists.Agencies.begin(), lists.Agencies.end(), [&](const AgencyRecord& each) {
               return each.Core == lists.Agencies[index].Core;
             }) <= 1;
  } else if (place.Kind == ListKind::Station) {
    isLast = std::count_if(lists.Stations.begin(), lists.Stations.end(), [&](const StationRecord& each) {
               return each.Agency == lists.Stations[index].Agency;
             }) <= 1;
  }
  if (!isLast && place.Kind == ListKind::User && IsLastAdministrator(lists.Users, place.Index))
    return Refusal{"Deleting a user", "you cannot delete the last administrator"};
  if (!isLast) return std::nullopt;
  return LastOnes[static_cast<std::size_t>(place.Kind)];
}

void DeleteEntry(ReferenceLists& lists, ListPlace& place) {
  if (!IsIn(lists, place) || CheckDelete(lists, place)) return;
  if (place.Kind == ListKind::Core)
    RemoveCore(lists, place.Index);
  else if (place.Kind == ListKind::Agency)
    RemoveAgency(lists, place.Index);
  else
    WithList(lists, place.Kind, [&](auto& list) { list.erase(list.begin() + place.Index); });
  if (lists.Stations.empty())
    lists.Stations.push_back({NewStation.Name, NewStation.InstrumentCode, lists.Agencies.front().Core, 0});
  place.Index = std::min(place.Index, static_cast<std::int16_t>(LastIndex(lists, place.Kind)));
}

}  // namespace hyetex
