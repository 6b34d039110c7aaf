// Import: the rows of a document into the table that its root element names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "exchange/document.h"

namespace hyetex {

struct ImportResult {
  std::string Table;               ///< as the document names it
  std::int64_t Added = 0;          ///< 0 where the import failed: then nothing has changed
  std::int64_t Refused = 0;        ///< rows that were left out, the others are in
  std::string FirstRefused;        ///< which one and why
  std::vector<std::string> Notes;  ///< what came in, but not quite as it stood there
  std::string Failed;              ///< why nothing was added; empty when it was
  std::optional<DbError> Error;    ///< the same, where the database says so
  bool Cancelled = false;

  bool IsClean() const { return Failed.empty() && Refused == 0 && Notes.empty(); }
};

/// Reads the document's rows into its table, all in one transaction. A row that the database refuses, since
/// another one has its unique key or for what else it says, or whose values do not fit their columns, is left
/// out and counted, and the others get in. Nothing is added where the file turns out to be no XML, a value
/// stands in a field that the table lacks, the database fails, or the operator stops it. The field `autokey`
/// is left to the database, and so is a field without a text. Tables and fields are found without regard to
/// case, in the catalog. Closes the connection.
ImportResult ImportXml(HyetexPlotDB& database, const XmlDocument& document, Progress& progress);

/// The same for a file, which is looked through first.
ImportResult ImportFile(HyetexPlotDB& database, const std::string& folder, const std::string& fileName,
                        Progress& progress);

/// What there is to tell besides the number of rows: ", 2 refused (row 3: ...)" and notes; empty for none.
std::string RefusedText(const ImportResult& result);

}  // namespace hyetex
