#include "editor/folder_charts.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "core/files.h"
#include "core/text.h"
#include "database/store/stored_text.h"
#include "editor/chart_rewriting.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

// The names are cheap, but a folder may hold any number of them.
constexpr std::int64_t NamesInAStep = 500;

}  // namespace

std::string FolderCharts::PathOf(std::string_view name) const { return JoinPath(folder_, name); }

bool FolderCharts::Holds(const ChartFileInfo& file) const {
  const std::string path = PathOf(file.FileName);
  if (CheckStoredName(file.FileName) || !FileExists(path)) return false;
  const auto first = ReadFirstBytes(path, BytesThatTellAChart);
  return first && BeginsAsChart(*first);
}

Result<ChartListing> FolderCharts::List(const ChartFilter& filter, Progress& progress) {
  std::vector<ChartFileInfo> named, found;
  std::vector<std::string> notes;
  bool stopped = false;
  std::error_code error;
  std::int64_t seen = 0;
  for (fs::directory_iterator at(folder_, error), end; !error && at != end && !stopped; at.increment(error)) {
    stopped = ++seen % NamesInAStep == 0 && !progress.Step(0, 0, folder_);
    auto file = InfoOfName(at->path().filename().string(), stations_);
    std::error_code gone;
    if (file && IsOfInstrument(*file, filter) && at->is_regular_file(gone)) named.push_back(*std::move(file));
  }
  if (error) return Failure("The folder " + ShownText(folder_) + " cannot be read: " + error.message());
  const auto total = static_cast<std::int64_t>(named.size());
  for (std::int64_t i = 0; i < total && !stopped; ++i) {
    ChartFileInfo& file = named[static_cast<std::size_t>(i)];
    stopped = !progress.Step(i, total, file.FileName);
    const auto first = ReadFirstBytes(PathOf(file.FileName), BytesThatTellAChart);
    if (!first)
      notes.push_back(first.error());
    else if (BeginsAsChart(*first))
      found.push_back(std::move(file));
  }
  ChartListing list = MakeListing(std::move(found), filter, "folder");
  if (stopped) list.Notes.emplace_back(ListWasStopped);
  list.Notes.insert(list.Notes.end(), notes.begin(), notes.end());
  return list;
}

Result<OpenedChart> FolderCharts::Open(const ChartFileInfo& file, const ReadingOptions& options) {
  auto bytes = ReadWholeFile(PathOf(file.FileName), MostChartBytes);
  if (!bytes) return Failure(bytes.error());
  auto reading = std::make_shared<ChartReading>();
  ReadChartText(*bytes, file.FileName, options, *reading);
  return OpenedChart{file, *std::move(bytes), std::move(reading)};
}

Result<bool> FolderCharts::MayReplace(const OpenedChart& chart, const ChartSaveQuestions& questions) const {
  const std::string path = PathOf(chart.File.FileName), shown = ShownText(chart.File.FileName);
  if (!FileExists(path))
    return questions.Newer(shown + " has been removed since it was opened. Save it all the same ?");
  const auto now = ReadWholeFile(path, MostChartBytes);
  if (!now) return Failure(now.error());
  return *now == chart.Bytes ||
         questions.Newer(shown +
                         " has been changed by another program since it was opened. What was changed there "
                         "would be lost. Save it all the same ?");
}

// A chart that keeps its name takes its own place in one step. One under another name is written first,
// and only then the old file goes.
Result<std::optional<SavedChart>> FolderCharts::Save(const OpenedChart& chart, const ChartRecord& edited,
                                                     const ChartSaveQuestions& questions, Progress&) {
  auto other = OtherNameOf(chart, edited);
  if (!other) return Failure(other.error());
  const std::string name = other->value_or(chart.File.FileName);
  const auto text = RewriteChart(chart.Bytes, name, chart.Reading->Chart, edited);
  if (!text) return Failure(text.error());
  if (*other && !questions.OtherName(OtherNameQuestion(name))) return std::nullopt;
  const auto may = MayReplace(chart, questions);
  if (!may) return Failure(may.error());
  if (!*may) return std::nullopt;

  const std::string oldPath = PathOf(chart.File.FileName), path = PathOf(name);
  SavedChart saved{chart.File, {}};
  if (!*other) {
    if (const auto written = WriteWholeFile(path, *text); !written) return Failure(written.error());
    return saved;
  }
  const bool replaces = FileExists(path);
  if (replaces && !questions.Overwrite(OverwriteQuestion(ShownText(name)))) return std::nullopt;
  const unsigned mode = ModeOf(oldPath).value_or(NewFileMode());
  if (const auto written = replaces ? WriteWholeFile(path, *text, mode) : WriteNewFile(path, *text, mode);
      !written)
    return Failure(written.error());
  std::error_code error;
  fs::remove(oldPath, error);
  if (error)
    saved.Notes.push_back("The chart was saved as " + ShownText(name) + ", but the old file " +
                          ShownText(chart.File.FileName) + " cannot be removed: " + error.message());
  saved.File = InfoOfName(name, stations_).value_or(chart.File);
  return saved;
}

ChartSource::Question FolderCharts::DeletionQuestion() const {
  return {"Deleting Files from the Hard Drive",
          "Are you sure you want to delete the selected files from the hard drive ?"};
}

DeletedCharts FolderCharts::Delete(std::span<const ChartFileInfo> files, Progress& progress) {
  DeletedCharts result;
  for (const ChartFileInfo& file : files) {
    if (!progress.Step(result.Deleted, static_cast<std::int64_t>(files.size()), file.FileName)) break;
    const std::string path = PathOf(file.FileName);
    std::error_code error;
    if (!Holds(file))
      result.Refused.push_back(ShownText(file.FileName) + ": there is no such chart file any more");
    else if (!fs::remove(path, error))
      result.Refused.push_back(ShownText(file.FileName) + ": " + error.message());
    else
      ++result.Deleted;
  }
  return result;
}

}  // namespace hyetex
