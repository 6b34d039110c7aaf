// The file of a chart that is too defective to trace: it goes from the staging area straight to the target
// folder.
#pragma once

#include <optional>
#include <string>

#include "chartfiles/saving.h"

namespace hyetex {

/// Writes the empty form of a staged chart into `folder`. Before it takes another file's place it asks,
/// naming the path. The file's path; nothing, and nothing written, when the answer is no.
Result<std::optional<std::string>> WriteEmptyForm(const ChartRecord& task, int chartMethod,
                                                  const ChartOrigin& origin, const std::string& folder,
                                                  const Confirm& mayOverwrite);

}  // namespace hyetex
