#include "cli/database.h"

#include <utility>

#include "core/files.h"

namespace hyetex::cli {

BoxAnswer SaidBoxes::MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                                BoxIcon icon) {
  Say(text);
  return UnattendedDialogs::MessageBox(title, text, buttons, icon);
}

CommandDatabase::CommandDatabase(const DatabaseWords& words)
    : settings_(words.Folder), Database(settings_, Boxes) {
  Database.ConnectionText = words.Database;
}

Result<void> CommandDatabase::Open() {
  std::string& text = Database.ConnectionText;
  if (text.empty()) {
    if (!FolderExists(settings_.Folder()))
      return Failure("There is no program folder " + settings_.Folder() + ", and no --db");
    auto stored = settings_.Read(setting::DatabaseName);
    if (!stored) return Failure(stored.error());
    text = *std::move(stored);
    if (text.empty())
      return Failure("The program folder " + settings_.Folder() + " has no database; --db names one");
  }
  // Not by OpenDatabase(), which keeps to itself why a source cannot be reached.
  auto opened = Connection::Open(text);
  if (!opened) return Failure("The database cannot be opened: " + opened.error().Description);
  Database.DatabaseConnection = std::move(*opened);
  return {};
}

}  // namespace hyetex::cli
