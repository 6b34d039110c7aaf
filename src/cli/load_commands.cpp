// load and extract: chart files into the database and out of it.
#include "cli/commands.h"
#include "cli/database.h"
#include "database/store/extracting.h"
#include "database/store/loading.h"
#include "staging/lists/lists.h"

namespace hyetex::cli {
namespace {

constexpr Option LoadOptions[] = {DbOption, FolderOption};
constexpr Option ToOption{"--to", "DIR", "the folder to write to; made when it is missing"};
constexpr Option InstrumentOption{"--instrument", "CODE", "only the charts of this instrument"};
constexpr Option ExtractOptions[] = {DbOption, FolderOption, ToOption, InstrumentOption};

Exit Load(const Words& words) {
  if (words.Rest().empty()) return Off("chart files are wanted");
  const auto lists = ReadLists(ProgramFolder(words));
  if (!lists) return Fail(lists.error());
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  UnwatchedProgress progress;
  const LoadResult result = LoadFiles(opened.Database, *lists, words.Rest(), progress);
  Print(LoadMessage(result) + "\n");
  return result.Report.IsClean() ? Done : Failed;
}

Exit Extract(const Words& words) {
  if (!words.Rest().empty()) return Off("no further words are wanted");
  const auto folder = words.Value(ToOption.Name);
  if (!folder) return Off("--to DIR is wanted");
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  UnwatchedProgress progress;
  const ExtractResult result =
      ExtractInstrument(opened.Database, words.Value(InstrumentOption.Name).value_or(""), *folder, progress);
  Print(ExtractMessage(result, *folder) + "\n");
  return result.Report.IsClean() ? Done : Failed;
}

}  // namespace

constinit const Command LoadCommand{
    "load", "FILE...",
    "Loads chart files into the database; a chart that is there is replaced.\n"
    "The instruments must be in the program folder's list of stations and in the database.",
    LoadOptions, Load};
constinit const Command ExtractCommand{
    "extract", "",
    "Writes the database's charts as files, as they were loaded. They stay in the database.\n"
    "Files of their names that are in the folder are replaced.",
    ExtractOptions, Extract};

}  // namespace hyetex::cli
