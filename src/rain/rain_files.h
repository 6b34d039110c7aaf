// Rain into files for others, all or nothing, in pieces, so that ten years by the minute take no memory.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "rain/rain_reading.h"
#include "rain/rain_site.h"

namespace hyetex {

/// A file that is written in pieces and takes its place when it is whole.
class RainFile {
 public:
  /// In the folder that it will stand in.
  static Result<RainFile> In(const std::string& folder);
  RainFile(RainFile&&) noexcept;
  RainFile& operator=(RainFile&&) noexcept;
  ~RainFile();
  void Add(std::string_view text);
  /// Fails with the first error of any piece; then nothing has changed.
  Result<void> Finish(const std::string& path);

 private:
  struct State;
  explicit RainFile(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

struct RainFileResult {
  std::vector<std::string> Paths;  ///< that were written
  RainRemarks Remarks;
  std::vector<std::string> Notes;  ///< what a reader of the files should know
};

/// The steps of an instrument and span as CSV.
Result<RainFileResult> WriteRainCsv(HyetexPlotDB& database, const RainChoice& choice, RainStepKind kind,
                                    const RainClock& clock, const std::string& path, Progress& progress);

/// Two files of the Station Exchange Format 1.0.0 into a folder: the steps of `minutes` and the days, named
/// by agency, station, time and variable. Gaps are left out. Fails where the instrument has no rain.
Result<RainFileResult> WriteRainSef(HyetexPlotDB& database, const RainChoice& choice, int minutes,
                                    const RainClock& clock, const std::string& folder, Progress& progress);

}  // namespace hyetex
