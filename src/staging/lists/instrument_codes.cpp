#include "staging/lists/instrument_codes.h"

#include <algorithm>
#include <cstdint>

#include "core/text.h"

namespace hyetex {

std::vector<std::string_view> CodeParts(std::string_view code) {
  std::vector<std::string_view> parts;
  for (std::size_t dash; (dash = code.find('-')) != std::string_view::npos; code.remove_prefix(dash + 1))
    parts.push_back(code.substr(0, dash));
  parts.push_back(code);
  return parts;
}

std::string StationKey(std::string_view code) { return std::string(code.substr(0, code.rfind('-'))); }

std::optional<StationRecord> ResolveCode(std::string_view code, const ReferenceLists& lists) {
  const auto parts = CodeParts(code);
  const std::string initials = UpperAscii(parts[0]);
  if (parts.size() < 2 || initials.size() < 2) return std::nullopt;

  const auto beginsWith = [](std::string_view name, char letter) {
    return UpperAscii(name.substr(0, 1)) == std::string_view(&letter, 1);
  };
  const auto core = std::find_if(lists.Cores.begin(), lists.Cores.end(),
                                 [&](const std::string& name) { return beginsWith(name, initials[0]); });
  if (core == lists.Cores.end()) return std::nullopt;
  const auto coreIndex = static_cast<std::int16_t>(core - lists.Cores.begin());

  const auto isMeant = [&](const AgencyRecord& agency) {
    if (agency.Core != coreIndex) return false;
    if (initials[0] != 'J') return beginsWith(agency.Name, initials[1]);
    const std::string name = UpperAscii(agency.Name);
    return (initials[1] == 'M' && name.find("METEO") != std::string::npos) ||
           (initials[1] == 'W' && name.find("WATER") != std::string::npos);
  };
  const auto agency = std::find_if(lists.Agencies.begin(), lists.Agencies.end(), isMeant);
  if (agency == lists.Agencies.end()) return std::nullopt;
  return StationRecord{.Name = std::string(parts[1]),
                       .InstrumentCode = std::string(code),
                       .Core = coreIndex,
                       .Agency = static_cast<std::int16_t>(agency - lists.Agencies.begin())};
}

std::optional<std::string> CheckCodeParts(std::string_view code) {
  if (CodeParts(code).size() >= 3) return std::nullopt;
  return "The code does not tell its station; it would need three parts joined by \"-\".";
}

std::optional<std::string> ProposeCode(const StationRecord& station, std::string_view typed,
                                       const ReferenceLists& lists) {
  const auto& core = lists.Cores[static_cast<std::size_t>(station.Core)];
  const auto& agency = lists.Agencies[static_cast<std::size_t>(station.Agency)].Name;
  std::string initials = UpperAscii(core.substr(0, 1) + agency.substr(0, 1));
  const auto isLetter = [](char c) { return c > ' ' && c < 0x7F; };  // and no part of a longer character
  if (initials.size() < 2 || !std::ranges::all_of(initials, isLetter)) return std::nullopt;
  if (initials.starts_with('J'))
    initials[1] = UpperAscii(agency).find("METEO") != std::string::npos ? 'M' : 'W';
  std::string name = ShownText(station.Name);
  for (char& c : name)
    if (c == '-' || c == ',' || c == '/' || c == '\\') c = ' ';
  name = std::string(Trim(name));
  const std::string key = initials + "-" + name + "-";

  const auto isGood = [&](const std::string& code) {
    return ResolveCode(code, lists) && FindStationIgnoringCase(lists.Stations, code) < 0 &&
           !CheckEntry(StationRecord{station.Name, code, station.Core, station.Agency});
  };
  const auto parts = CodeParts(typed);
  const std::string number(parts.size() > 2 ? typed.substr(parts[0].size() + parts[1].size() + 2)
                                            : parts.back());
  if (!number.empty() && !EqualIgnoringCase(number, name) && isGood(key + number)) return key + number;
  for (int i = 1; i < 100; ++i)
    if (const std::string code = key + (i < 10 ? "0" : "") + std::to_string(i); isGood(code)) return code;
  return std::nullopt;
}

}  // namespace hyetex
