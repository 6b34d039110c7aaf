// Instruments that the charts of a folder, the list of stations and the database do not have in common.
#pragma once

#include <set>
#include <span>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "database/store/file_list.h"
#include "platform/dialogs.h"
#include "staging/lists/lists.h"

namespace hyetex {

/// The warnings to show: where the files' instruments are not all in the list, and where list and database
/// differ. Without the database's codes only the first is looked at.
std::vector<std::string> FindUnMappedCodes(std::span<const FileSummary> files, const ReferenceLists& lists,
                                           const std::set<std::string>* databaseCodes);

/// Offers to add each instrument of the files that the list lacks, and saves the list. What its code does not
/// tell of core party and agency cannot be added here, and is told. Returns whether the list has changed.
bool ReadUnMappedStations(std::span<const FileSummary> files, ReferenceLists& lists,
                          const std::string& programFolder, Dialogs& dialogs);

}  // namespace hyetex
