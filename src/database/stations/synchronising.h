// Brings the station list and the database's tables of instruments and stations in line: instruments that the
// list lacks are read into it, and stations that the database lacks are added there, each from a start date
// that the operator gives.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "database/access/plot_db.h"
#include "platform/dialogs.h"
#include "staging/lists/instrument_codes.h"
#include "staging/lists/lists.h"

namespace hyetex {

/// "dd/mm/yyyy" in just these places and naming a day of the calendar, from the year 100 on; blanks around it
/// are passed over. Nothing for any other text.
std::optional<Date> ConvertStartDate(std::string_view typed);

enum class Synchronised {
  Not,      ///< there was no database; nothing has changed
  Unsaved,  ///< the lists could not be saved, and may have changed
  Partly,   ///< the database refused something; what came before it stands, and the lists are saved
  Saved,
};

/// Goes through the database and the lists in both directions, tells what has changed and saves the lists. A
/// database error ends it there: it is shown, and what has been added by then stays. One instrument and its
/// station are added together or not at all. What the lists or the tables cannot hold is left out and told.
/// `progress` hears of waits for another program that writes.
Synchronised Synchronise(HyetexPlotDB& database, ReferenceLists& lists, const std::string& programFolder,
                         Dialogs& dialogs, Progress& progress);

}  // namespace hyetex
