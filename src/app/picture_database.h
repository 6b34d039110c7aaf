// A small database for the pictures of the windows that work on one.
#pragma once

#include <string>

#include "core/result.h"
#include "platform/dialogs.h"

namespace hyetex {

/// Makes a database file in a program folder, makes it the folder's database, and loads a few days of the
/// first station of the lists, whose chart files are left in "Data".
Result<void> MakePictureDatabase(const std::string& programFolder, Dialogs& dialogs);

}  // namespace hyetex
