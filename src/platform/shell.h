// What the system's own applications do for us. No shell stands between, so no name is read as a command.
#pragma once

#include <string>

#include "core/result.h"

namespace hyetex {

/// Opens a text file in the system's text editor. Fails where the system has none.
Result<void> OpenTextFile(const std::string& path);
/// Opens a page in the default browser. Only http and https addresses are taken.
Result<void> OpenPage(const std::string& address);

/// Opens a file of XML in the application that the system has for it. Fails where it has none.
Result<void> OpenXmlFile(const std::string& path);

/// Opens a page of this machine in the default browser, at the place of this name if there is one. Fails
/// where the system has none.
Result<void> OpenLocalPage(const std::string& path, const std::string& place = {});

}  // namespace hyetex
