// The database that a command works on: the one that --db names, or the program folder's own.
#pragma once

#include <string>

#include "cli/commands.h"
#include "core/progress.h"
#include "core/result.h"
#include "database/access/plot_db.h"
#include "platform/dialogs.h"

namespace hyetex::cli {

/// Boxes of a command, which nobody sees: what they tell goes to standard error.
class SaidBoxes : public UnattendedDialogs {
 public:
  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override;
};

/// What a command tells of its work: that it waits for another program.
class SaidWaits : public Progress {
 public:
  bool Step(std::int64_t done, std::int64_t total, std::string_view what) override;

 private:
  std::int64_t told_ = -1;
};

/// As a command opens it:
///
///     CommandDatabase opened(words);
///     if (const auto done = opened.Open(); !done) return Fail(done.error());
///     LoadFiles(opened.Database, ...);
class CommandDatabase {
  Settings settings_;

 public:
  explicit CommandDatabase(const DatabaseWords& words);

  SaidBoxes Boxes;
  HyetexPlotDB Database;  ///< has its connection text; opened by Open()

  /// Opens the database's connection; says why it cannot be opened.
  Result<void> Open();
};

}  // namespace hyetex::cli
