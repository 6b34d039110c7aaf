#include "rain/manual_gage.h"

#include <algorithm>
#include <cmath>

#include "core/dates.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

constexpr const char *ManualGage = "MANUAL_GAGE", *StartDate = "start_date", *EndDate = "end_date";

std::string Count(std::size_t count, const std::string& what) {
  return std::to_string(count) + (count == 1 ? " reading " : " readings ") + "of the manual gage " + what;
}

}  // namespace

DbResult<GageReadings> ReadManualGage(HyetexPlotDB& database, const std::string& instrument, RainSpan span,
                                      const RainClock& clock) {
  GageReadings gage;
  if (!database.DatabaseConnection.IsOpen())
    if (const auto opened = database.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  const auto known = database.DatabaseConnection.FindTable(ManualGage);
  if (!known) return tl::unexpected(known.error());
  if (!*known) return gage;
  Selection selection{.Columns = {StartDate, EndDate, column::Depth},
                      .Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, instrument}}};
  if (span.From)
    selection.Where.push_back(
        {StartDate, Compare::AtLeast, DbDate{ToLocal(*span.From - MostRowSeconds, clock)}});
  if (span.To) selection.Where.push_back({StartDate, Compare::AtMost, DbDate{ToLocal(*span.To, clock)}});
  if (const auto opened = database.OpenAnyTable(ManualGage, std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.AnyTable;
  std::size_t untimed = 0, without = 0, backward = 0;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto start = table.Value(0), end = table.Value(1), depth = table.Value(2);
    for (const auto* value : {&start, &end, &depth})
      if (!*value) return tl::unexpected(value->error());
    const auto* from = std::get_if<DbDate>(&*start);
    if (from == nullptr) return ++untimed, true;
    GageReading reading{.Start = FromLocal(from->Value, clock), .Depth = NumberOf(*depth)};
    if (IsNull(*depth) || !(reading.Depth >= 0)) return ++without, true;
    const auto* to = std::get_if<DbDate>(&*end);
    reading.End = to == nullptr ? reading.Start : FromLocal(to->Value, clock);
    if (reading.End < reading.Start) return ++backward, true;
    if (reading.End == reading.Start) {
      reading.Start = FromLocal(std::floor(from->Value), clock) + RainTime{60} * clock.DayBegins;
      reading.End = reading.Start + DaySeconds;
    }
    const bool isOutside = (span.From && reading.End <= *span.From) || (span.To && reading.Start >= *span.To);
    if (!isOutside) gage.Readings.push_back(reading);
    return true;
  });
  table.Close();
  if (!walked) return tl::unexpected(walked.error());
  std::ranges::stable_sort(gage.Readings, {}, &GageReading::Start);
  if (untimed > 0) gage.Notes.push_back(Count(untimed, "without a start left out"));
  if (without > 0) gage.Notes.push_back(Count(without, "without a known depth left out"));
  if (backward > 0) gage.Notes.push_back(Count(backward, "that end before they start left out"));
  return gage;
}

bool GageComparison::IsOff() const {
  return Percent ? std::abs(*Percent) > GageTolerance : (Gage == 0) != (Chart == 0);
}

std::vector<RainInterval> IntervalsOf(const GageReadings& gage) {
  std::vector<RainInterval> intervals;
  for (const GageReading& reading : gage.Readings)
    intervals.push_back({.Start = reading.Start, .End = reading.End});
  return intervals;
}

namespace {

GageComparison Between(RainTime start, RainTime end, double gage, double chart, double covered) {
  GageComparison comparison{.Start = start, .End = end, .Gage = gage, .Chart = chart, .Covered = covered};
  if (gage > 0) comparison.Percent = (chart - gage) / gage * 100;
  return comparison;
}

}  // namespace

std::vector<GageComparison> Compare(const GageReadings& gage, const std::vector<RainInterval>& sums) {
  std::vector<GageComparison> comparisons;
  for (std::size_t i = 0; i < std::min(gage.Readings.size(), sums.size()); ++i)
    comparisons.push_back(
        Between(sums[i].Start, sums[i].End, gage.Readings[i].Depth, sums[i].Depth, sums[i].Covered));
  return comparisons;
}

std::optional<GageComparison> CompareDay(const RainStep& day, const GageReadings& gage) {
  RainTime length = 0;
  RainSum depth = 0;
  auto reading = std::ranges::lower_bound(gage.Readings, day.Start, {}, &GageReading::Start);
  for (; reading != gage.Readings.end() && reading->Start < day.End; ++reading) {
    if (reading->End > day.End) return std::nullopt;
    length += reading->End - reading->Start;
    depth += AmountOf(reading->Depth);
  }
  if (length != day.End - day.Start) return std::nullopt;
  return Between(day.Start, day.End, MmOf(depth), day.Depth, day.Covered);
}

}  // namespace hyetex
