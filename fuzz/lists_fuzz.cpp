// Any bytes as the reference lists: what reads whole is written and read back the same, and of what is
// damaged no list comes out empty.
#include "program_folder.h"
#include "staging/lists/list_reading.h"
#include "staging/lists/list_recovery.h"

namespace {

using namespace hyetex;

void CheckWhole(const ReferenceLists& lists) {
  fuzz::Must(!lists.ChartTypes.empty() && !lists.Cores.empty() && !lists.Agencies.empty() &&
             !lists.Stations.empty() && !lists.Users.empty() && !lists.Comments.empty());
  for (std::size_t i = 0; i < lists.Stations.size(); ++i) {
    (void)StationCoreName(lists, static_cast<int>(i));
    (void)StationAgencyName(lists, static_cast<int>(i));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ProgramFolder folder;
  const std::string_view bytes = fuzz::Text(data, size);
  folder.Hold(ListsFileName, bytes);
  const auto recovered = RecoverLists(folder.Path());
  if (recovered) CheckWhole(recovered->Lists);
  const auto read = DecodeLists(bytes);
  if (!read) return 0;
  CheckWhole(*read);
  fuzz::Must(recovered.has_value());
  // A list may hold what a later version refuses to write.
  if (!SaveLists(folder.Path(), *read)) return 0;
  const auto again = ReadLists(folder.Path());
  fuzz::Must(again && again->Stations.size() == read->Stations.size() &&
             again->Users.size() == read->Users.size() && again->Comments.size() == read->Comments.size());
  return 0;
}
