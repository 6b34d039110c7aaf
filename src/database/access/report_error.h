// What a window of the database does with an error that it does not expect.
#pragma once

#include <string>
#include <string_view>

#include "platform/dialogs.h"
#include "platform/odbc/values.h"

namespace hyetex {

/// The log of errors, in the program folder.
inline constexpr std::string_view ErrorLogName = "errors.tXt";

/// Shows the error and adds a line to the log. `source` names what was being done.
void ReportError(Dialogs& dialogs, const std::string& programFolder, const DbError& error,
                 const std::string& source);

}  // namespace hyetex
