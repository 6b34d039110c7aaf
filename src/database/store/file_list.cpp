#include "database/store/file_list.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>

#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/light_reader.h"
#include "staging/lists/lists.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

// The names are cheap, but a folder may hold any number of them.
constexpr std::int64_t NamesInAStep = 500;

std::string TooMany(std::string_view where) {
  return "There are more charts in the " + std::string(where) + " than the list can hold: it ends after " +
         std::to_string(MostListed) + ".";
}

std::string Ended() { return "The list was stopped before its end."; }

// The names of a folder's chart files, as far as names tell.
Result<std::vector<std::string>> ChartNames(const std::string& folder, Progress& progress) {
  std::vector<std::string> names;
  std::error_code error;
  std::int64_t seen = 0;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    if (++seen % NamesInAStep == 0 && !progress.Step(0, 0, folder)) break;
    std::string name = at->path().filename().string();
    std::error_code gone;
    if (UpperAscii(name).find(".DAT") != std::string::npos && at->is_regular_file(gone))
      names.push_back(std::move(name));
  }
  if (error) return Failure("The folder " + folder + " cannot be read: " + error.message());
  std::sort(names.begin(), names.end());
  return names;
}

DbResult<FileSummary> ReadRecord(Recordset& table, bool hasLoaded, std::span<const StationRecord> stations,
                                 LightReader& reader) {
  FileSummary summary;
  const auto code = table.Value(column::InstrumentCode), date = table.Value(column::ChartDate);
  if (!code) return tl::unexpected(code.error());
  if (!date) return tl::unexpected(date.error());
  summary.Stored = {TextOf(*code), DateOf(*date)};
  if (hasLoaded) {
    const auto loaded = table.Value(column::Loaded);
    if (!loaded) return tl::unexpected(loaded.error());
    summary.Loaded = static_cast<int>(NumberOf(*loaded));
  }
  const auto read =
      table.ReadPieces(column::AsciiFile, [&](std::string_view piece) { return reader.Take(piece); });
  summary.Chart = reader.Finish();
  if (!read) return tl::unexpected(read.error());
  summary.Name = summary.Chart.FileName;
  // A record whose text tells nothing still has its columns.
  if (summary.Chart.InstrumentCode.empty()) {
    summary.Chart.InstrumentCode = TextOf(*code);
    summary.Chart.StartTime = DateOf(*date);
    summary.Chart.InstrumentIndex = FindStationIgnoringCase(stations, summary.Chart.InstrumentCode);
  }
  return summary;
}

bool IsWithin(const FileSummary& file, const FileFilter& filter) {
  if (!filter.Days) return true;
  // A date from a database may lie a hair before its midnight.
  const Date day = std::floor(file.Chart.StartTime + 0.5 / SecondsPerDay);
  return day >= std::floor(filter.Days->first) && day <= std::floor(filter.Days->second);
}

}  // namespace

Result<FileList> ReadFolder(const std::string& folder, std::span<const StationRecord> stations,
                            Progress& progress) {
  const auto names = ChartNames(folder, progress);
  if (!names) return Failure(names.error());
  FileList list;
  ChartReading reading;
  const auto total = static_cast<std::int64_t>(names->size());
  for (std::int64_t i = 0; i < total; ++i) {
    const std::string& name = (*names)[static_cast<std::size_t>(i)];
    if (!progress.Step(i, total, name)) {
      list.Notes.push_back(Ended());
      break;
    }
    const std::string path = JoinPath(folder, name);
    const auto first = ReadFirstBytes(path, BytesThatTellAChart);
    if (first && !BeginsAsChart(*first)) continue;
    if (list.Files.size() == MostListed) {
      list.Notes.push_back(TooMany("folder"));
      break;
    }
    const auto read = first ? ReadChartFile(path, "", {.Stations = stations}, reading)
                            : Result<void>(Failure("Cannot read " + path));
    if (!read) {
      list.Notes.push_back(read.error());
      continue;
    }
    FileSummary& summary = list.Files.emplace_back();
    summary.Chart = reading.Chart;
    summary.Chart.FileName = path;
    summary.Name = name;
  }
  return list;
}

DbResult<FileList> ReadDatabaseList(HyetexPlotDB& database, std::span<const StationRecord> stations,
                                    Progress& progress) {
  const ClosedAfter closed(database);
  // Another program may replace a record while the list is read.
  if (const auto opened = database.OpenChartAscii({.LongWithRow = true}); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.ChartAsciiTable;
  const bool hasLoaded = table.HasField(column::Loaded);
  LightReader reader({.Stations = stations});
  FileList list;
  std::int64_t done = 0;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const bool full = list.Files.size() == MostListed;
    if (full || !progress.Step(done++, 0, list.Files.empty() ? "" : list.Files.back().Name)) {
      list.Notes.push_back(full ? TooMany("database") : Ended());
      return false;
    }
    auto summary = ReadRecord(table, hasLoaded, stations, reader);
    if (!summary) return tl::unexpected(summary.error());
    list.Files.push_back(*std::move(summary));
    return true;
  });
  if (!walked) return tl::unexpected(walked.error());
  return list;
}

void FindStations(std::span<FileSummary> files, std::span<const StationRecord> stations) {
  for (FileSummary& file : files)
    file.Chart.InstrumentIndex = FindStationIgnoringCase(stations, file.Chart.InstrumentCode);
}

std::string StationOf(const FileSummary& file, std::span<const StationRecord> stations) {
  const auto index = static_cast<std::size_t>(file.Chart.InstrumentIndex);
  return file.Chart.InstrumentIndex >= 0 && index < stations.size() ? stations[index].Name
                                                                    : "(not in the list)";
}

std::string LineOf(const FileSummary& file, std::span<const StationRecord> stations) {
  return ShownText(StationOf(file, stations)) + " - " + ShownText(file.Name);
}

std::vector<StationNode> StationsOf(std::span<const FileSummary> files,
                                    std::span<const StationRecord> stations, const FileFilter& filter) {
  std::map<std::string, std::set<std::string>> found;
  for (const FileSummary& file : files)
    if (IsWithin(file, filter)) found[StationOf(file, stations)].insert(file.Chart.InstrumentCode);
  std::vector<StationNode> nodes;
  for (const auto& [station, codes] : found) nodes.push_back({station, {codes.begin(), codes.end()}});
  return nodes;
}

std::vector<std::size_t> FilesShown(std::span<const FileSummary> files,
                                    std::span<const StationRecord> stations, const FileFilter& filter) {
  std::vector<std::size_t> shown;
  for (std::size_t i = 0; i < files.size(); ++i)
    if (IsWithin(files[i], filter) && (!filter.Station || StationOf(files[i], stations) == *filter.Station) &&
        (!filter.Code || files[i].Chart.InstrumentCode == *filter.Code))
      shown.push_back(i);
  return shown;
}

}  // namespace hyetex
