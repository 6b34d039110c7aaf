#include "staging/manager/entry_checks.h"

#include <algorithm>

#include "core/numbers.h"
#include "core/program_files.h"
#include "core/text.h"
#include "staging/lists/login.h"

namespace hyetex {
namespace {

bool SameName(const std::string& a, const std::string& b) {
  return EqualIgnoringCase(Trim(ShownText(a)), Trim(ShownText(b)));
}

// Of each kind: its list, whether two are one to whoever picks from it, and how the other one is told.
const auto& ListOf(const ReferenceLists& lists, const std::string&) { return lists.Cores; }
const auto& ListOf(const ReferenceLists& lists, const AgencyRecord&) { return lists.Agencies; }
const auto& ListOf(const ReferenceLists& lists, const StationRecord&) { return lists.Stations; }
const auto& ListOf(const ReferenceLists& lists, const UserRecord&) { return lists.Users; }
const auto& ListOf(const ReferenceLists& lists, const ChartTypeRecord&) { return lists.ChartTypes; }
const auto& ListOf(const ReferenceLists& lists, const CommentRecord&) { return lists.Comments; }

bool AreOne(const std::string& a, const std::string& b) { return SameName(a, b); }
bool AreOne(const AgencyRecord& a, const AgencyRecord& b) {
  return a.Core == b.Core && SameName(a.Name, b.Name);
}
bool AreOne(const StationRecord& a, const StationRecord& b) {
  return HasInstrumentCode(a) && SameName(a.InstrumentCode, b.InstrumentCode);
}
bool AreOne(const UserRecord& a, const UserRecord& b) { return SameName(a.Name, b.Name); }
bool AreOne(const ChartTypeRecord& a, const ChartTypeRecord& b) { return SameName(a.Name, b.Name); }
bool AreOne(const CommentRecord& a, const CommentRecord& b) { return a.Code == b.Code; }

std::string Told(const std::string& core) { return "There is a core " + Quoted(core); }
std::string Told(const AgencyRecord& agency) { return "The core has an agency " + Quoted(agency.Name); }
std::string Told(const StationRecord& station) {
  return "The station " + Quoted(station.Name) + " has the code \"" + ShownText(station.InstrumentCode) +
         "\"";
}
std::string Told(const UserRecord& user) { return "There is a user " + Quoted(user.Name); }
std::string Told(const ChartTypeRecord& type) { return "There is a chart type " + Quoted(type.Name); }
std::string Told(const CommentRecord& comment) {
  return "There is a comment with the code " + ShortText(comment.Code);
}

bool IsAdministrator(const UserRecord& user) { return IsAllowed(Right::Users, user.Level); }

}  // namespace

template <typename Record>
std::optional<std::string> CheckUnique(const ReferenceLists& lists, const Record& record, int self) {
  const auto& list = ListOf(lists, record);
  if (self >= 0 && AreOne(record, list[static_cast<std::size_t>(self)])) return std::nullopt;
  const auto other = std::ranges::find_if(list, [&](const Record& each) { return AreOne(record, each); });
  if (other == list.end()) return std::nullopt;
  return Told(*other) + " already.";
}

template std::optional<std::string> CheckUnique(const ReferenceLists&, const std::string&, int);
template std::optional<std::string> CheckUnique(const ReferenceLists&, const AgencyRecord&, int);
template std::optional<std::string> CheckUnique(const ReferenceLists&, const StationRecord&, int);
template std::optional<std::string> CheckUnique(const ReferenceLists&, const UserRecord&, int);
template std::optional<std::string> CheckUnique(const ReferenceLists&, const ChartTypeRecord&, int);
template std::optional<std::string> CheckUnique(const ReferenceLists&, const CommentRecord&, int);

bool HasInstrumentCode(const StationRecord& station) {
  return !station.InstrumentCode.empty() && !EqualIgnoringCase(station.InstrumentCode, "None");
}

bool IsUnnamed(const UserRecord& user) { return Trim(user.Name).empty(); }

int NamedAdministrator(const std::vector<UserRecord>& users) {
  const auto found = std::ranges::find_if(
      users, [](const UserRecord& user) { return IsAdministrator(user) && !IsUnnamed(user); });
  return found == users.end() ? -1 : static_cast<int>(found - users.begin());
}

bool IsLastAdministrator(const std::vector<UserRecord>& users, int user) {
  const UserRecord& meant = users[static_cast<std::size_t>(user)];
  return IsAdministrator(meant) && std::ranges::none_of(users, [&](const UserRecord& other) {
           return &other != &meant && IsAdministrator(other) && !IsUnnamed(other);
         });
}

}  // namespace hyetex
