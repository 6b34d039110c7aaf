#include "staging/lists/list_reading.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "core/program_files.h"
#include "staging/lists/list_slots.h"

namespace hyetex {
namespace {

constexpr const char* DamagedMark = " (damaged)";

// What stands in a damaged entry's place. The core of an agency is still to be found.
void Mark(ChartTypeRecord& r, std::string name) { r.Name = std::move(name); }
void Mark(std::string& core, std::string name) { core = std::move(name); }
void Mark(AgencyRecord& r, std::string name) { r = {std::move(name), -1}; }
void Mark(StationRecord& r, std::string name) { r = {std::move(name), "None", 0, 0}; }
void Mark(CommentRecord& r, std::string name) { r.Description = std::move(name); }

enum class Outcome { Whole, Damaged, CutShort };

// Takes the file apart slot by slot. Without salvaging it stops at the first damage.
class ListsReader {
 public:
  ListsReader(std::string_view bytes, bool salvages) : bytes_(bytes), salvages_(salvages) {}

  template <typename Record>
  bool operator()(std::vector<Record>& list) {
    const ListLimits kind = LimitsOf<Record>;
    const std::size_t count = ReadCount<Record>();
    list.clear();
    for (std::size_t i = 0; i < count && !HasStopped(); ++i) {
      Record record;
      const std::string name = std::string(kind.Name) + " " + std::to_string(i);
      const Outcome outcome = Next(record, name);
      if (outcome == Outcome::CutShort) break;
      if constexpr (std::is_same_v<Record, UserRecord>) {
        if (outcome == Outcome::Damaged) continue;
      } else {
        if (outcome == Outcome::Damaged) Mark(record = Record{}, name + DamagedMark);
      }
      list.push_back(std::move(record));
    }
    if constexpr (std::is_same_v<Record, UserRecord>) {
      UsersAreWhole = count > 0 && list.size() == count;
      UserCount = static_cast<int>(list.size());
    }
    if (list.empty()) list.emplace_back();
    return salvages_ || Damage.empty();
  }

  std::vector<std::string> Damage;
  bool UsersAreWhole = true;
  int UserCount = 0;

 private:
  // 0 when it cannot be known.
  template <typename Record>
  std::size_t ReadCount() {
    const ListLimits kind = LimitsOf<Record>;
    if (HasStopped()) return 0;
    const std::string header = "the " + std::string(kind.Name) + " list";
    std::int16_t highest = 0;
    Outcome outcome = Next(highest, header);
    if (outcome == Outcome::Whole && (highest < 0 || highest > kind.MaxIndex)) {
      AddDamage(header, "its highest index is " + std::to_string(highest));
      outcome = Outcome::Damaged;
    }
    if (outcome == Outcome::Whole) return static_cast<std::size_t>(highest) + 1;
    ended_ = true;
    return 0;
  }

  template <typename Record>
  Outcome Next(Record& record, const std::string& what) {
    SlotDecoder decoder(bytes_.substr(std::min(bytes_.size(), slot_ * SlotBytes)));
    ++slot_;
    VisitFields(record, decoder);
    if (decoder.Problem()) {
      AddDamage(what, *decoder.Problem());
      return Outcome::Damaged;
    }
    if (!salvages_ || bytes_.empty() || !decoder.IsCutShort()) return Outcome::Whole;
    AddDamage(what, "the file ends before it does");
    ended_ = true;
    return Outcome::CutShort;
  }

  bool HasStopped() const { return ended_ || (!salvages_ && !Damage.empty()); }
  void AddDamage(const std::string& what, const std::string& how) {
    Damage.push_back(what + " (slot " + std::to_string(slot_) + ") is damaged: " + how);
  }

  std::string_view bytes_;
  const bool salvages_;
  std::size_t slot_ = 0;  // slots read; so, counted from 1, the last one
  bool ended_ = false;    // nothing can be read any more
};

}  // namespace

Result<ReferenceLists> DecodeLists(std::string_view bytes) {
  ReferenceLists lists;
  ListsReader reader(bytes, false);
  if (!VisitLists(lists, reader)) return Failure(reader.Damage.front());
  return lists;
}

SalvagedLists SalvageLists(std::string_view bytes) {
  SalvagedLists salvaged;
  ListsReader reader(bytes, true);
  VisitLists(salvaged.Lists, reader);
  salvaged.Damage = std::move(reader.Damage);
  salvaged.UsersAreWhole = reader.UsersAreWhole;
  salvaged.UserCount = reader.UserCount;
  return salvaged;
}

std::vector<std::string> BringBackHidden(ReferenceLists& lists) {
  std::vector<std::string> moved;
  const auto pointsInto = [](const auto& list, int index) {
    return index >= 0 && static_cast<std::size_t>(index) < list.size();
  };
  const auto tell = [&](const char* kind, const std::string& name, const std::string& under) {
    moved.push_back(std::string("the place of the ") + kind + " " + Quoted(name) +
                    " is not known; it stands under " + Quoted(under) + " now");
  };
  for (std::size_t a = 0; a < lists.Agencies.size(); ++a) {
    AgencyRecord& agency = lists.Agencies[a];
    if (pointsInto(lists.Cores, agency.Core)) continue;
    agency.Core = 0;
    for (const StationRecord& station : lists.Stations)
      if (station.Agency == static_cast<int>(a) && pointsInto(lists.Cores, station.Core))
        agency.Core = station.Core;
    tell("agency", agency.Name, lists.Cores[static_cast<std::size_t>(agency.Core)]);
  }
  for (StationRecord& station : lists.Stations) {
    const bool isHidden = !pointsInto(lists.Agencies, station.Agency);
    if (isHidden) station.Agency = 0;
    const AgencyRecord& agency = lists.Agencies[static_cast<std::size_t>(station.Agency)];
    if (isHidden || !pointsInto(lists.Cores, station.Core)) station.Core = agency.Core;
    if (isHidden) tell("station", station.Name, agency.Name);
  }
  return moved;
}

}  // namespace hyetex
