// load and extract: chart files into the database and out of it.
#include "cli/commands.h"
#include "cli/database.h"
#include "database/store/extracting.h"
#include "database/store/loading.h"
#include "staging/lists/lists.h"

namespace hyetex::cli {
Exit RunLoad(const LoadWords& words) {
  const auto lists = ReadLists(words.Folder);
  if (!lists) return Fail(lists.error());
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  SaidWaits progress;
  const LoadResult result = LoadFiles(opened.Database, *lists, words.Files, progress);
  Print(LoadMessage(result) + "\n");
  return result.Report.IsClean() ? Done : Failed;
}

Exit RunExtract(const ExtractWords& words) {
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  SaidWaits progress;
  const ExtractResult result = ExtractInstrument(opened.Database, words.Instrument, words.To, progress);
  Print(ExtractMessage(result, words.To) + "\n");
  return result.Report.IsClean() ? Done : Failed;
}

}  // namespace hyetex::cli
