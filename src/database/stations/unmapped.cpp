#include "database/stations/unmapped.h"

#include <map>
#include <set>

#include "core/program_files.h"
#include "core/text.h"
#include "staging/lists/instrument_codes.h"

namespace hyetex {
namespace {

constexpr const char* AddingTitle = "Adding a New Instrument from Existing Files in the Selected Folder";
constexpr const char* FilesAgainstList =
    "The files in the selected folder (hard drive) do not match the stations defined in Hyetex. Click the "
    "\"Synchronize Station Lists\" menu to correct this.";
constexpr const char* ListAgainstDatabase =
    "The stations as defined in Hyetex and the database do not all match.  Click \"Synchronize Stations "
    "Lists\" menu to correct this.";

// As they are compared. A station whose code is still to come has none.
std::set<std::string> ListedCodes(const ReferenceLists& lists) {
  std::set<std::string> codes;
  for (const StationRecord& station : lists.Stations)
    if (!station.InstrumentCode.empty() && !EqualIgnoringCase(station.InstrumentCode, "None"))
      codes.insert(ComparedCode(station.InstrumentCode));
  return codes;
}

// The files' codes that the list lacks, each in the first form that is met.
std::map<std::string, std::string> MissingCodes(std::span<const FileSummary> files,
                                                const ReferenceLists& lists) {
  const std::set<std::string> listed = ListedCodes(lists);
  std::map<std::string, std::string> missing;
  for (const FileSummary& file : files)
    if (std::string code = ComparedCode(file.Chart.InstrumentCode); !listed.contains(code))
      missing.emplace(std::move(code), file.Chart.InstrumentCode);
  return missing;
}

std::string Offer(const StationRecord& station, const ReferenceLists& lists) {
  return "To perform this action a new instrument(s) must be added to the list in Hyetex.\n"
         "The following Instrument will be added: \n\nCODE: " +
         ShownText(station.InstrumentCode) + "\nSTATION: " + ShownText(station.Name) +
         "\nAGENCY: " + ShownText(lists.Agencies[static_cast<std::size_t>(station.Agency)].Name) +
         "\n CORE: " + ShownText(lists.Cores[static_cast<std::size_t>(station.Core)]);
}

}  // namespace

std::vector<std::string> FindUnMappedCodes(std::span<const FileSummary> files, const ReferenceLists& lists,
                                           const std::set<std::string>* databaseCodes) {
  std::vector<std::string> warnings;
  if (!MissingCodes(files, lists).empty()) warnings.push_back(FilesAgainstList);
  if (databaseCodes != nullptr && *databaseCodes != ListedCodes(lists))
    warnings.push_back(ListAgainstDatabase);
  return warnings;
}

bool ReadUnMappedStations(std::span<const FileSummary> files, ReferenceLists& lists,
                          const std::string& programFolder, Dialogs& dialogs) {
  bool added = false;
  std::string notAdded;
  for (const auto& [compared, code] : MissingCodes(files, lists)) {
    const auto station = ResolveCode(code, lists);
    if (!station) {
      notAdded += "\n" + Quoted(code) + ": the code does not tell its core party and agency.";
      continue;
    }
    const BoxAnswer answer =
        dialogs.MessageBox(AddingTitle, Offer(*station, lists), BoxButtons::YesNoCancel, BoxIcon::Question);
    if (answer == BoxAnswer::Cancel) break;
    if (answer != BoxAnswer::Yes) continue;
    auto why = CheckRoom(lists.Stations);
    if (!why) why = CheckEntry(*station);
    if (why) {
      notAdded += "\n" + Quoted(code) + ": " + *why;
      continue;
    }
    lists.Stations.push_back(*station);
    added = true;
  }
  if (!notAdded.empty())
    dialogs.MessageBox(AddingTitle,
                       "These instruments of the files cannot be added here; the window \"Edit Information "
                       "Needed to Digitize Charts\" can add them:" +
                           notAdded,
                       BoxButtons::Ok, BoxIcon::Warning);
  if (!added) return false;
  if (const auto saved = SaveLists(programFolder, lists); !saved)
    dialogs.MessageBox(AddingTitle, saved.error(), BoxButtons::Ok, BoxIcon::Warning);
  return true;
}

}  // namespace hyetex
