// populate: from stored charts to rows of rain, without questions.
#include <charconv>
#include <cmath>
#include <vector>

#include "cli/database.h"
#include "core/files.h"
#include "database/conversion/populate_grid.h"
#include "database/conversion/population.h"

namespace hyetex::cli {
namespace {

// A number of an option, as it stands there whole.
Result<float> FloatOf(const Words& words, std::string_view option, float otherwise, float least) {
  const auto text = words.Value(option);
  if (!text) return otherwise;
  float value = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
  if (error != std::errc{} || end != text->data() + text->size() || !(std::abs(value) < 1e6F) ||
      value < least)
    return Failure(std::string(option) + " wants a number, not \"" + *text + "\"");
  return value;
}

void PrintCount(std::string_view what, std::int64_t count) {
  Print(std::string(what) + ": " + std::to_string(count) + "\n");
}

Exit Populate(const Words& words) {
  if (!words.Rest().empty()) return Off("no further words are wanted");
  const auto instrument = words.Value("--instrument");
  if (!instrument || instrument->empty()) return Off("--instrument is missing");
  const auto lapse = FloatOf(words, "--lapse", 0, 0), gmt = FloatOf(words, "--gmt", 2, -1e6F);
  if (!lapse || !gmt) return Off(lapse ? gmt.error() : lapse.error());

  const std::string folder = ProgramFolder(words);
  if (!FolderExists(folder)) return Fail("There is no program folder " + folder);
  const auto lists = ReadLists(folder);
  if (!lists) return Fail(lists.error());
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());

  const ConversionOptions options{.Variables = {.UseAlpha = words.Has("--alpha"),
                                                .MinimalLapse = *lapse,
                                                .GmtShift = *gmt / 24,
                                                .DefaultDepthManual = words.Has("--manual")},
                                  .Overwrite = words.Has("--overwrite"),
                                  .Log = words.Has("--log"),
                                  .LogFolder = folder};
  UnwatchedProgress progress;
  const auto rows =
      LoadGrid(opened.Database, *instrument, words.Has("--all"), options.Variables, *lists, progress);
  if (!rows) return Fail(rows.error().Description);
  std::vector<ChartToConvert> charts;
  for (const PopulateRow& row : *rows) charts.push_back({row.ChartDate, row.IsManual()});

  const ConversionResult result =
      WriteChartRecords(opened.Database, *lists, *instrument, charts, options, opened.Boxes, progress);
  for (const std::string& problem : result.Problems) Say(problem);
  PrintCount("Charts converted", result.ChartsConverted);
  PrintCount("Charts skipped", result.ChartsSkipped);
  PrintCount("Charts not converted", result.ChartsFailed);
  PrintCount("Rows written", result.RowsWritten);
  if (result.ChartsSkipped > 0)
    Say("charts whose rows are in CHART already were skipped; --overwrite replaces them");
  return result.ChartsSkipped + result.ChartsFailed == 0 ? Done : Failed;
}

constexpr Option PopulateOptions[] = {
    DbOption,
    FolderOption,
    {"--instrument", "CODE", "the instrument whose charts are converted"},
    {"--all", "", "charts that were converted before, too"},
    {"--alpha", "", "take the pen's skew out with each chart's selected alpha"},
    {"--lapse", "MINUTES", "join steps that are shorter"},
    {"--gmt", "HOURS", "taken off local time to get GMT (default: 2)"},
    {"--manual", "", "scale to the manual gage's depth, not the digitized one"},
    {"--overwrite", "", "replace rows that are there; without it such charts are skipped"},
    {"--log", "", "write datalog.txt in the program folder"},
};

}  // namespace

constinit const Command PopulateCommand{
    "populate", "",
    "Converts an instrument's stored charts into rows of CHART, in GMT, one row a step.\n"
    "Each chart is converted wholly or not at all. The status is 1 if a chart was skipped or\n"
    "could not be converted; the others are converted all the same.",
    PopulateOptions, Populate};

}  // namespace hyetex::cli
