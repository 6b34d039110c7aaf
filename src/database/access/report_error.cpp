#include "database/access/report_error.h"

#include <algorithm>

#include "core/dates.h"
#include "core/files.h"

namespace hyetex {

void ReportError(Dialogs& dialogs, const std::string& programFolder, const DbError& error,
                 const std::string& source) {
  constexpr const char* Title = "Hyetex";
  const std::string number = std::to_string(error.Number);
  dialogs.MessageBox(Title, number + " occurred in " + source + " Description: " + error.Description,
                     BoxButtons::Ok, BoxIcon::Critical);

  // One error, one line, whatever a driver has to say.
  std::string line = number + " Source: " + source + " Description: " + error.Description +
                     " Date: " + GeneralDateText(Now());
  std::replace_if(
      line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
  if (!AppendToFile(JoinPath(programFolder, ErrorLogName), line + "\r\n"))
    dialogs.MessageBox(Title, number + " occurred in the error reporting routine", BoxButtons::Ok,
                       BoxIcon::Critical);
}

}  // namespace hyetex
