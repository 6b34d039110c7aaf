#include "staging/lists/instrument_codes.h"

namespace hyetex {
namespace {

TEST(InstrumentCodes, FindTheirCoreAndAgencyByTheInitials) {
  ReferenceLists lists;
  lists.Cores = {"", "Northland", "jordan", "Nowhere"};
  lists.Agencies = {{"", 0},
                    {"Water Authority", 3},
                    {"Meteorology", 1},
                    {"water users", 1},
                    {"Ministry of Water", 2},
                    {"Dept. of Meteorology", 2},
                    {"Jungle", 2}};
  const auto resolved = [&](std::string_view code) -> std::string {
    const auto station = ResolveCode(code, lists);
    if (!station) return "none";
    EXPECT_EQ(station->InstrumentCode, code);
    return station->Name + " " + std::to_string(station->Core) + "/" + std::to_string(station->Agency);
  };
  const struct {
    const char *Code, *Resolved;
  } cases[] = {
      {"NM-Hill Farm-01", "Hill Farm 1/2"},
      {"nw-Dam-AL0019-2", "Dam 1/3"},  // not the agency of another core party, though it comes first
      {"JW-Zarqa-1", "Zarqa 2/4"},     // by the word, wherever it stands in the agency's name
      {"JM-Amman-1", "Amman 2/5"},
      {"JJ-Amman-1", "none"},  // under J letters other than M and W name nobody
      {"NX-Dam-1", "none"},
      {"XM-Dam-1", "none"},
      {"NM", "none"},
      {"None", "none"},
      {"", "none"},
      {"-Dam-1", "none"},  // the entry without a name is nobody's match
      {"N-Dam-1", "none"},
      {"NM-Dam", "Dam 1/2"},
      {"NM-", " 1/2"},
  };
  for (const auto& c : cases) EXPECT_EQ(resolved(c.Code), c.Resolved) << c.Code;
  EXPECT_EQ(StationKey("NW-Dam-AL0019-2"), "NW-Dam-AL0019");
}

}  // namespace
}  // namespace hyetex
