// Export: the rows of a table as an XML file, "<table>.xml".
//
//   <charts>
//   <chart>
//   <station>Hill</station>
//   <depth>0.2</depth>
//   <comments></comments>
//   </chart>
//   </charts>
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/temporary_file.h"
#include "database/access/plot_db.h"

namespace hyetex {

/// How values stand in the file that hold XML's own marks or a carriage return: escaped, so that they are
/// read back as they are, or unchanged.
enum class Markup { Escaped, Unchanged };

/// A number of values, and where the first stands: "row 12, comments".
struct ValueCount {
  std::int64_t Count = 0;
  std::string First;
};

/// What was found in a table while it was written.
struct ExportedTable {
  std::string Table = {};  ///< as it was asked for
  std::string Path = {};   ///< of the file
  std::int64_t Rows = 0;
  ValueCount Marked = {};   ///< hold "<", "&" or "]]>"
  ValueCount Returns = {};  ///< hold a carriage return
  ValueCount Encoded = {};  ///< texts that hold what XML has no character for, and stand there as base64
  ValueCount Empty = {};    ///< texts without a character, which read as no value where they are unchanged
};

/// A table that is written to a file, which has not yet taken its place; that goes when this does.
struct WrittenTable {
  ExportedTable Found;
  std::string Target;  ///< of the file, behind a link
  TemporaryFile File;

  /// Puts the file in its place. Fails with a line that names it; then the one before it stays.
  Result<void> Place();
};

/// Writes a table, whose connection is open, into a temporary file in the folder. A value that XML cannot
/// hold is base64 in either way, and so, if escaped, is a text without characters, which is not the same as
/// no value. Fails with StatementFailed where the file cannot be written, a column has no name for an
/// element, or a row is longer than an import takes; Cancelled when the operator wants no more.
DbResult<WrittenTable> WriteTable(HyetexPlotDB& database, const std::string& table, const std::string& folder,
                                  Markup markup, Progress& progress);

/// Asked before the files take their places, with those tables that hold marks: how their values are to stand
/// there, or nothing to leave all files as they are.
using ChooseMarkup = std::function<std::optional<Markup>(const std::vector<const ExportedTable*>& marked)>;

struct ExportResult {
  std::vector<ExportedTable> Tables;  ///< whose files are in their places, in the order asked for
  struct Failure {
    std::string Table;
    DbError Error;
  };
  std::vector<Failure> Failed;
  bool Cancelled = false;  ///< then no file has changed
};

/// Exports tables into the folder, which is made when it is missing: all are written, then `choose` is
/// asked about values with marks, and then the files take their places. A table that cannot
/// be exported is left out and named. Closes the connection.
ExportResult ExportTables(HyetexPlotDB& database, const std::vector<std::string>& tables,
                          const std::string& folder, const ChooseMarkup& choose, Progress& progress);
/// The same for one.
ExportResult ExportTable(HyetexPlotDB& database, const std::string& table, const std::string& folder,
                         const ChooseMarkup& choose, Progress& progress);

/// What an operator is told of values that are not in the file as in the table: one line for each kind.
std::vector<std::string> NotesOf(const ExportedTable& table, Markup markup);
/// The question for `choose`: Yes for escaped, No for unchanged.
std::string MarkupQuestion(const std::vector<const ExportedTable*>& marked);

}  // namespace hyetex
