// The instruments that the database knows.
#pragma once

#include <set>
#include <string>

#include "database/access/plot_db.h"

namespace hyetex {

/// The instrument codes of the database, as codes are compared (ComparedCode).
DbResult<std::set<std::string>> ReadInstrumentCodes(HyetexPlotDB& database);

}  // namespace hyetex
