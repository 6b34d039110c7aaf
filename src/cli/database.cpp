#include "cli/database.h"

#include "core/files.h"

namespace hyetex::cli {

BoxAnswer SaidBoxes::MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                                BoxIcon icon) {
  Say(text);
  return UnattendedDialogs::MessageBox(title, text, buttons, icon);
}

bool SaidWaits::Step(std::int64_t done, std::int64_t total, std::string_view what) {
  constexpr std::int64_t everySeconds = 10;
  if (what != Transaction::Waiting || (told_ >= 0 && done >= told_ && done < told_ + everySeconds))
    return true;
  told_ = done;
  Say(std::string(what) + ", " + std::to_string(total - done) + " seconds more at most");
  return true;
}

CommandDatabase::CommandDatabase(const DatabaseWords& words)
    : settings_(words.Folder), Database(settings_, Boxes) {
  Database.ConnectionText = words.Database;
}

Result<void> CommandDatabase::Open() {
  if (Database.ConnectionText.empty()) {
    if (!FolderExists(settings_.Folder()))
      return Failure("There is no program folder " + settings_.Folder() + ", and no --db");
    const auto stored = settings_.Read(setting::DatabaseName);
    if (!stored) return Failure(stored.error());
    if (stored->empty())
      return Failure("The program folder " + settings_.Folder() + " has no database; --db names one");
  }
  const auto opened = Database.OpenDatabase();
  return opened ? Result<void>{} : Failure("The database cannot be opened: " + opened.error().Description);
}

}  // namespace hyetex::cli
