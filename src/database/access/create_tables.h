// Makes what a database lacks of our tables, and what its keeper adds to them.
#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/odbc/connection.h"

namespace hyetex {

/// Something that is not there, and the statement that makes it.
struct SchemaChange {
  std::string What;
  std::string Statement;
  bool MayBeThere = false;  ///< then the statement changes nothing
};

/// The tables that the database lacks, in their order. One that is there counts, whatever its columns.
DbResult<std::vector<SchemaChange>> MissingTables(Connection& connection);

/// The column `loaded` of CHART_ASCII, the table CHART_CONVERSION, and indexes for the searches that would
/// otherwise take longer the more the database holds: an instrument, and its charts and rows by their time.
/// No catalog tells of indexes, so their statements are always among them.
DbResult<std::vector<SchemaChange>> MissingCompletion(Connection& connection);

struct SchemaOutcome {
  std::vector<std::string> Made;                        ///< without what may have been there
  std::vector<std::pair<std::string, DbError>> Failed;  ///< what could not be made, and why
};

/// Makes one after the other; one that cannot be made is passed over.
SchemaOutcome Make(Connection& connection, std::span<const SchemaChange> changes);

/// Makes the missing tables. Fails without an open connection, and when the catalog cannot be read.
DbResult<SchemaOutcome> CreateTables(Connection& connection);

}  // namespace hyetex
