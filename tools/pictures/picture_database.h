// A small database for the pictures of the windows that work on one.
#pragma once

#include "core/result.h"
#include "core/settings.h"
#include "platform/dialogs.h"

namespace hyetex {

/// Makes a database file in a program folder, makes it the folder's database, and loads a few days of the
/// first station of the lists, whose chart files are left in "Data".
Result<void> MakePictureDatabase(Settings& settings, Dialogs& dialogs);

}  // namespace hyetex
