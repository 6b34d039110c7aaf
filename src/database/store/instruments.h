// The instruments that the database knows.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "database/access/plot_db.h"

namespace hyetex {

/// The instrument codes of the database, as codes are compared (ComparedCode).
DbResult<std::set<std::string>> ReadInstrumentCodes(HyetexPlotDB& database);
/// The same as the database spells them, in the table's order.
DbResult<std::vector<std::string>> ListInstruments(HyetexPlotDB& database);

}  // namespace hyetex
