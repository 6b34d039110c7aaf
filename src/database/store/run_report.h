// What an operator is told at the end of a run over many files.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/odbc/values.h"

namespace hyetex {

struct RunReport {
  std::vector<std::string> Refused;  ///< what could not be done and why, a line a file
  std::vector<std::string> Notes;    ///< what was done, but not quite as asked
  std::optional<DbError> Stopped;    ///< the error that ended the run
  bool Cancelled = false;            ///< the operator ended the run
  std::size_t NotReached = 0;        ///< files that a run left when it was ended

  bool IsClean() const { return Refused.empty() && !Stopped && !Cancelled; }
};

/// `outcome` with what the report adds to it; of many lines the first ones.
std::string ClosingMessage(std::string outcome, const RunReport& report);

}  // namespace hyetex
