// The embedded database: one SQLite file, which needs no server and no administrator.
#pragma once

#include <string>

#include "core/result.h"

namespace hyetex {

/// The path with ".sqlite" behind a name that has no ending.
std::string WithDatabaseEnding(const std::string& path);

/// What connects to a database file without a data source. Fails where SQLite's driver is not installed and
/// on a path that no connection text can hold.
Result<std::string> FileConnectionText(const std::string& path);

/// Makes a database file with all tables, the column `loaded` and the indexes. A file that is there is never
/// touched; one that could not be finished is removed again.
Result<void> CreateDatabaseFile(const std::string& path);

/// Makes a user's data source for a database file, and gives its name: the file's, with a number behind it
/// where another file's data source has that name. A data source that there is for this very file serves.
/// Data sources of other files are never touched.
Result<std::string> RegisterDatabaseFile(const std::string& path);

/// Both: the new file is removed again when it gets no data source.
Result<std::string> NewDatabase(const std::string& path);

}  // namespace hyetex
