#include "staging/lists/lists.h"

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>

#include "core/files.h"
#include "core/program_files.h"
#include "core/text.h"
#include "staging/lists/list_reading.h"
#include "staging/lists/list_slots.h"

namespace hyetex {
namespace {

template <typename Record>
std::string EntryName(std::size_t index) {
  return std::string(LimitsOf<Record>.Name) + " " + std::to_string(index);
}

// The texts of a record; the first one is what an operator knows it by.
template <typename Record>
std::vector<std::string> Texts(Record record) {
  struct {
    std::vector<std::string> All;
    void operator()(std::string_view, const std::string& text) { All.push_back(text); }
    void operator()(std::string_view, ShiftedText text) { All.push_back(text.Plain); }
    void operator()(std::string_view, float) {}
  } texts;
  VisitFields(record, texts);
  return texts.All;
}

// Why the file cannot hold the list; nothing if it can.
template <typename Record>
std::optional<std::string> Unfit(const std::vector<Record>& list) {
  const ListLimits kind = LimitsOf<Record>;
  if (list.empty()) return "There must be at least one " + std::string(kind.Name) + ".";
  if (list.size() > static_cast<std::size_t>(kind.MaxIndex) + 1)
    return "There is no room for " + EntryName<Record>(static_cast<std::size_t>(kind.MaxIndex) + 1) + ".";
  for (std::size_t i = 0; i < list.size(); ++i)
    if (const auto why = Encoded(list[i]).Problem())
      return EntryName<Record>(i) + ", " + Quoted(Texts(list[i]).front()) + ": " + *why;
  return std::nullopt;
}

std::vector<StationRecord> Sorted(const std::vector<StationRecord>& stations) {
  std::vector<std::pair<std::string, const StationRecord*>> order;
  for (const StationRecord& station : stations)
    order.emplace_back(UpperAscii(station.Name + "---" + station.InstrumentCode + "---"), &station);
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<StationRecord> sorted;
  for (const auto& [key, station] : order) sorted.push_back(*station);
  return sorted;
}

template <typename Matches>
std::int16_t LastStation(std::span<const StationRecord> stations, Matches&& matches) {
  for (std::size_t i = stations.size(); i-- > 0;)
    if (matches(stations[i].InstrumentCode)) return static_cast<std::int16_t>(i);
  return -1;
}

template <typename Record>
const Record* EntryAt(const std::vector<Record>& list, int index) {
  return index >= 0 && static_cast<std::size_t>(index) < list.size() ? &list[static_cast<std::size_t>(index)]
                                                                     : nullptr;
}

}  // namespace

std::optional<std::string> ShiftText(std::string_view text, int amount) {
  std::string shifted(text);
  for (char& c : shifted) {
    const int code = static_cast<unsigned char>(c) + amount;
    if (code < 0 || code > std::numeric_limits<unsigned char>::max()) return std::nullopt;
    c = static_cast<char>(code);
  }
  return shifted;
}

Result<ReferenceLists> ReadLists(const std::string& programFolder) {
  const std::string path = JoinPath(programFolder, ListsFileName);
  CreateIfMissing(path);
  const Result<std::string> bytes = ReadProgramFile(path);
  if (!bytes) return Failure(bytes.error());
  auto lists = DecodeLists(*bytes);
  if (!lists) return Failure("Cannot read " + path + ": " + lists.error());
  return lists;
}

Result<void> SaveLists(const std::string& programFolder, const ReferenceLists& lists) {
  if (!lists.WhyNotSaved.empty()) return Failure("The lists cannot be saved: " + lists.WhyNotSaved);
  std::optional<std::string> unfit;
  VisitLists(lists, [&](const auto& list) { return !(unfit = Unfit(list)); });
  if (unfit) return Failure("The lists cannot be saved: " + *unfit);

  const std::string path = JoinPath(programFolder, ListsFileName);
  Result<std::string> bytes = ReadProgramFile(path);
  if (!bytes) return Failure(bytes.error());
  if (!SalvageLists(*bytes).Damage.empty())
    if (const auto kept = KeepCopy(path); !kept) return Failure("The lists cannot be saved: " + kept.error());
  std::size_t start = 0;
  const auto put = [&](const auto& record) {
    const std::string encoded = Encoded(record).Bytes();
    if (bytes->size() < start + SlotBytes) bytes->resize(start + SlotBytes);
    bytes->replace(start, encoded.size(), encoded);
    start += SlotBytes;
  };
  ReferenceLists inFileOrder = lists;
  inFileOrder.Stations = Sorted(lists.Stations);
  VisitLists(inFileOrder, [&](const auto& list) {
    put(static_cast<std::int16_t>(list.size() - 1));
    for (const auto& record : list) put(record);
    return true;
  });
  return WriteWholeFile(path, *bytes, OwnerOnly);
}

std::optional<std::string> CheckInstrumentCode(std::string_view code) {
  if (const auto why = CheckOneLine(code)) return why;
  if (code.find(',') != std::string_view::npos) return "An instrument code must not hold a comma.";
  if (HasSeparator(code)) return "An instrument code names files, so it must not hold \"/\" or \"\\\".";
  return std::nullopt;
}

template <typename Record>
std::optional<std::string> CheckEntry(const Record& record) {
  for (const std::string& text : Texts(record))
    if (const auto why = CheckOneLine(text)) return why;
  if constexpr (std::is_same_v<Record, StationRecord>)
    if (const auto why = CheckInstrumentCode(record.InstrumentCode)) return why;
  return Encoded(record).Problem();
}

template <typename Record>
std::optional<std::string> CheckRoom(const std::vector<Record>& list) {
  const ListLimits kind = LimitsOf<Record>;
  if (list.size() <= static_cast<std::size_t>(kind.MaxIndex)) return std::nullopt;
  return "There is no room for another " + std::string(kind.Name) + ": the list holds at most " +
         std::to_string(kind.MaxIndex + 1) + ".";
}

template std::optional<std::string> CheckEntry(const ChartTypeRecord&);
template std::optional<std::string> CheckEntry(const std::string&);
template std::optional<std::string> CheckEntry(const AgencyRecord&);
template std::optional<std::string> CheckEntry(const StationRecord&);
template std::optional<std::string> CheckEntry(const UserRecord&);
template std::optional<std::string> CheckEntry(const CommentRecord&);
template std::optional<std::string> CheckRoom(const std::vector<ChartTypeRecord>&);
template std::optional<std::string> CheckRoom(const std::vector<std::string>&);
template std::optional<std::string> CheckRoom(const std::vector<AgencyRecord>&);
template std::optional<std::string> CheckRoom(const std::vector<StationRecord>&);
template std::optional<std::string> CheckRoom(const std::vector<UserRecord>&);
template std::optional<std::string> CheckRoom(const std::vector<CommentRecord>&);

std::int16_t FindStation(std::span<const StationRecord> stations, std::string_view code) {
  return LastStation(stations, [&](const std::string& own) { return own == code; });
}

std::int16_t FindStationIgnoringCase(std::span<const StationRecord> stations, std::string_view code) {
  return LastStation(stations, [&](const std::string& own) { return EqualIgnoringCase(own, code); });
}

std::int16_t FindUser(const std::vector<UserRecord>& users, std::string_view name) {
  for (std::size_t i = 0; i < users.size(); ++i)
    if (EqualIgnoringCase(users[i].Name, name)) return static_cast<std::int16_t>(i);
  return -1;
}

std::string StationCoreName(const ReferenceLists& lists, int station) {
  const StationRecord* of = EntryAt(lists.Stations, station);
  const std::string* core = of ? EntryAt(lists.Cores, of->Core) : nullptr;
  return core ? *core : std::string();
}

std::string StationAgencyName(const ReferenceLists& lists, int station) {
  const StationRecord* of = EntryAt(lists.Stations, station);
  const AgencyRecord* agency = of ? EntryAt(lists.Agencies, of->Agency) : nullptr;
  return agency ? agency->Name : std::string();
}

}  // namespace hyetex
