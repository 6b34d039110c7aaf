// Extracting: the records of CHART_ASCII become the chart files again that they were made of, byte for byte.
// They stay in the database.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/progress.h"
#include "database/access/plot_db.h"
#include "database/store/file_list.h"
#include "database/store/run_report.h"

namespace hyetex {

struct ExtractResult {
  int Extracted = 0;
  RunReport Report;
};

/// Writes the files of the listed records into the folder, which is made when it is missing; what stands
/// there under their names is replaced. No more than a few texts are in memory. A name that would lead out of
/// the folder is refused, and so is a link that stands there under the name.
ExtractResult ExtractFiles(HyetexPlotDB& database, std::span<const FileSummary> rows,
                           const std::string& folder, Progress& progress);
/// The same for all records of an instrument, or of all where no code is given.
ExtractResult ExtractInstrument(HyetexPlotDB& database, std::string_view code, const std::string& folder,
                                Progress& progress);

/// The number of files and the folder, and what else there is to tell.
std::string ExtractMessage(const ExtractResult& result, const std::string& folder);

}  // namespace hyetex
