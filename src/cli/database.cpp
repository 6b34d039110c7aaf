#include "cli/database.h"

#include <utility>

#include "core/files.h"

namespace hyetex::cli {

BoxAnswer SaidBoxes::MessageBox(const std::string&, const std::string& text, BoxButtons buttons, BoxIcon) {
  Say(text);
  switch (buttons) {
    case BoxButtons::Ok:
      return BoxAnswer::Ok;
    case BoxButtons::OkCancel:
      return Yes ? BoxAnswer::Ok : BoxAnswer::Cancel;
    case BoxButtons::YesNo:
      return Yes ? BoxAnswer::Yes : BoxAnswer::No;
    case BoxButtons::YesNoCancel:
      return Yes ? BoxAnswer::Yes : BoxAnswer::Cancel;
  }
  return BoxAnswer::Cancel;
}
std::optional<std::string> SaidBoxes::InputBox(const std::string&, const std::string&, const std::string&) {
  return std::nullopt;
}
std::optional<std::string> SaidBoxes::ChooseFolder(const std::string&, const std::string&) {
  return std::nullopt;
}
std::optional<std::string> SaidBoxes::ChooseFileToSave(const std::string&, const std::string&) {
  return std::nullopt;
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
    text = settings_.Get(setting::DatabaseName);
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
