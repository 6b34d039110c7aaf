// populate: from stored charts to rows of rain, without questions.
#include <vector>

#include "cli/database.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "database/conversion/populate_grid.h"
#include "database/conversion/population.h"
#include "database/store/instruments.h"
#include "database/store/stored_text.h"

namespace hyetex::cli {
namespace {

void PrintCount(std::string_view what, std::int64_t count) {
  Print(std::string(what) + ": " + std::to_string(count) + "\n");
}

DbResult<bool> Knows(HyetexPlotDB& database, const ReferenceLists& lists, const std::string& code) {
  if (FindStationIgnoringCase(lists.Stations, code) >= 0) return true;
  const auto codes = ReadInstrumentCodes(database);
  if (!codes) return tl::unexpected(codes.error());
  return codes->contains(ComparedCode(code));
}

}  // namespace

Exit RunPopulate(const PopulateWords& words) {
  const std::string& folder = words.Folder;
  if (!FolderExists(folder)) return Fail("There is no program folder " + folder);
  std::optional<FolderLock> lock;  // for the data log
  if (words.Log) {
    auto taken = FolderLock::Take(folder);
    if (!taken) return Fail(taken.error());
    lock.emplace(*std::move(taken));
  }
  const auto lists = ReadLists(folder);
  if (!lists) return Fail(lists.error());
  const auto user = Settings(folder).Read(setting::UserName);
  if (!user) return Fail(user.error());
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());

  const ConversionOptions options{.Variables = {.UseAlpha = words.Alpha,
                                                .MinimalLapse = static_cast<float>(words.Lapse),
                                                .GmtShift = static_cast<float>(words.Gmt) / 24,
                                                .DefaultDepthManual = words.Manual},
                                  .Overwrite = words.Overwrite,
                                  .Log = words.Log,
                                  .LogFolder = folder,
                                  .User = *user};
  SaidWaits progress;
  const auto rows =
      LoadGrid(opened.Database, words.Instrument, words.All, options.Variables, *lists, progress);
  if (!rows) return Fail(rows.error().Description);
  if (rows->empty()) {
    const auto known = Knows(opened.Database, *lists, words.Instrument);
    if (!known) return Fail(known.error().Description);
    if (!*known)
      return Fail("There is no instrument " + words.Instrument +
                  ", neither in the lists nor in the database");
  }
  std::vector<ChartToConvert> charts;
  for (const PopulateRow& row : *rows) charts.push_back({row.ChartDate, row.Manual});

  const ConversionResult result =
      WriteChartRecords(opened.Database, *lists, words.Instrument, charts, options, opened.Boxes, progress);
  for (const std::string& problem : result.Problems) Say(problem);
  PrintCount("Charts converted", result.ChartsConverted);
  PrintCount("Charts skipped", result.ChartsSkipped);
  PrintCount("Charts not converted", result.ChartsFailed);
  PrintCount("Rows written", result.RowsWritten);
  if (result.ChartsSkipped > 0)
    Say("charts whose rows are in CHART already were skipped; --overwrite replaces them");
  return !result.Failed && result.ChartsSkipped + result.ChartsFailed == 0 ? Done : Failed;
}

}  // namespace hyetex::cli
