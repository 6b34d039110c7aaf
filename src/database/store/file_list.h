// The charts of a folder, and those of the database, as lists to choose from.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "core/result.h"
#include "database/access/plot_db.h"
#include "database/store/stored_text.h"

namespace hyetex {

struct FileSummary {
  ChartRecord Chart;  ///< its FileName is the full path, or the name that a stored text begins with
  std::string Name;   ///< of the file, without its folder; for a stored chart as its text has it
  ChartKey Stored;    ///< of a stored chart, as its record's columns have it
  int Loaded = 0;     ///< of a stored chart: 1 once it was converted; 0 where nothing tells
};

/// A list holds no more.
inline constexpr std::size_t MostListed = 10001;

struct FileList {
  std::vector<FileSummary> Files;
  std::vector<std::string> Notes;  ///< what is not in the list and why, a line each
};

/// The chart files of a folder, by their names: those with ".DAT" in it, in any case, and "HYETEX88" in their
/// first line. Charts that cannot be read, such as one longer than any chart, are named in the notes. Fails
/// on a folder that cannot be read.
Result<FileList> ReadFolder(const std::string& folder, std::span<const StationRecord> stations,
                            Progress& progress);

/// The charts of CHART_ASCII in the table's order, their texts read by the light reader, piece by piece.
DbResult<FileList> ReadDatabaseList(HyetexPlotDB& database, std::span<const StationRecord> stations,
                                    Progress& progress);

/// Looks the instruments of all files up anew, after the stations have changed.
void FindStations(std::span<FileSummary> files, std::span<const StationRecord> stations);

/// A station with the instruments that there are charts of.
struct StationNode {
  std::string Station;
  std::vector<std::string> Codes;
};

/// Which charts of a list are shown.
struct FileFilter {
  std::optional<std::pair<Date, Date>> Days = {};  ///< from and to, both days included
  std::optional<std::string> Station = {};
  std::optional<std::string> Code = {};
};

/// The name of a chart's station; what stands for it where no station has the instrument.
std::string StationOf(const FileSummary& file, std::span<const StationRecord> stations);
/// The line of a file in a list: station and name.
std::string LineOf(const FileSummary& file, std::span<const StationRecord> stations);

/// The stations and instruments of the charts within the filter's days, by name.
std::vector<StationNode> StationsOf(std::span<const FileSummary> files,
                                    std::span<const StationRecord> stations, const FileFilter& filter);
/// The positions of the files that the filter shows.
std::vector<std::size_t> FilesShown(std::span<const FileSummary> files,
                                    std::span<const StationRecord> stations, const FileFilter& filter);

}  // namespace hyetex
