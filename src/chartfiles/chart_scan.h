// The line of a chart file that remembers the scan the chart was traced from: "Scan: PAGE SHA256 PATH", with
// the path's bytes in hexadecimal digits. So written no path can hold a word, a comma or a line end by which
// a reader tells another line, and readers that do not know the line pass over it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/records.h"

namespace hyetex {

/// What follows the line's label.
std::string ScanLineText(const ScanReference& scan);
/// Its reverse; nothing for any other text.
std::optional<ScanReference> ParseScanLine(std::string_view text);

}  // namespace hyetex
