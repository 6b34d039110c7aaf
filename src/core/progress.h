// Work that takes long tells how far it has come, and may be stopped where stopping is safe.
#pragma once

#include <cstdint>
#include <string_view>

namespace hyetex {

class Progress {
 public:
  virtual ~Progress() = default;
  /// Called between two files or charts. `what` is what comes next, or empty; `total` is 0 where it is not
  /// known. Returns false when the operator wants no more: the work ends here, and what is done stays done.
  virtual bool Step(std::int64_t done, std::int64_t total, std::string_view what) = 0;
};

/// For work that nobody watches.
class UnwatchedProgress : public Progress {
 public:
  bool Step(std::int64_t, std::int64_t, std::string_view) override { return true; }
};

}  // namespace hyetex
