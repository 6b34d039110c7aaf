// What the tables of a window show of rain, in words and numbers, with what each is sorted by.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "rain/chart_review.h"
#include "rain/rain_overview.h"

namespace hyetex {

struct SheetCell {
  std::string Text;
  std::optional<double> Number = {};  ///< what it is sorted by; nothing: by its text
  bool Alert = false;                 ///< marked
};

struct SheetColumn {
  std::string Title;
  bool IsNumber = false;  ///< stands on the right
};

struct Sheet {
  std::vector<SheetColumn> Columns;
  std::vector<std::vector<SheetCell>> Rows;
};

Sheet SheetOfDays(const RainOverview& overview);
Sheet SheetOfGage(const RainOverview& overview);
Sheet SheetOfMaxima(const RainOverview& overview);
Sheet SheetOfStorms(const RainOverview& overview);
Sheet SheetOfYears(std::span<const RainPeriod> years);
Sheet SheetOfReview(const ChartReview& review);

/// A share in percent; below all it is never shown as 100.
std::string ShareText(double share);
/// "15 min", "2 h", "24 h".
std::string DurationText(int minutes);
/// What a step has, for a read-out: "05/03/1998 12:10 - 12:15: 2.1 mm (25.2 mm/h)".
std::string StepInWords(const RainStep& step, const RainClock& clock);
/// The whole of it on one line: "53.1 mm in 2 days, 98.2% covered, 3 storms".
std::string OverviewInWords(const RainOverview& overview);

}  // namespace hyetex
