// Loading: chart files become records of CHART_ASCII, each file whole, with a few of its values beside it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/result.h"
#include "database/access/plot_db.h"
#include "database/store/run_report.h"
#include "staging/lists/lists.h"

namespace hyetex {

struct LoadResult {
  std::vector<std::string> Loaded;  ///< the paths of the files that the database holds now
  RunReport Report;
};

/// Loads files in their order. A file takes the place of the record of the same chart, which then counts as
/// not converted. For every chart the database holds at any time either the old record or the new one: the
/// work is done in transactions of some charts, and where one of those fails, chart by chart, so that a chart
/// that the database refuses is left out and named and all others get in. Left out and named as well are
/// files that are no chart, that are longer than any chart or change while they are read, whose name could
/// not be given back, and whose instrument the list or the database lacks. Texts longer than their column are
/// cut and named.
LoadResult LoadFiles(HyetexPlotDB& database, const ReferenceLists& lists, std::span<const std::string> paths,
                     Progress& progress);

/// The number of files, and what else there is to tell.
std::string LoadMessage(const LoadResult& result);

/// Moves files into the folder, which is made when it is missing. No file takes another's place. Onto another
/// file system a file is copied and flushed before it is removed here: who is killed in between leaves it in
/// both places, and the next move of it, which finds its own bytes there, ends the work. Fails with the
/// message to show at the first file that cannot be moved.
Result<void> MoveFilesAfterLoading(std::span<const std::string> paths, const std::string& folder,
                                   Progress& progress);

}  // namespace hyetex
