#include "editor/chart_source.h"

#include <algorithm>
#include <set>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "staging/lists/lists.h"

namespace hyetex {

std::string EntryText(const ChartFileInfo& file) {
  const CalendarTime start = ToCalendar(file.StartDate);
  return file.FileName + " (" + ShortText(start.Day) + "." + ShortText(start.Month) + "." +
         PadNumber(start.Year % 100, 2) + ")";
}

std::optional<ChartFileInfo> InfoOfName(std::string_view name, std::span<const StationRecord> stations) {
  auto parsed = ParseChartFileName(name);
  if (!parsed) return std::nullopt;
  return ChartFileInfo{std::string(name), FindStation(stations, parsed->InstrumentCode),
                       std::move(parsed->InstrumentCode), parsed->Start};
}

bool IsOfInstrument(const ChartFileInfo& file, const ChartFilter& filter) {
  return filter.InstrumentCode.empty() || EqualIgnoringCase(file.InstrumentCode, filter.InstrumentCode);
}

ChartListing MakeListing(std::vector<ChartFileInfo> files, const ChartFilter& filter,
                         std::string_view where) {
  const auto yearOf = [](const ChartFileInfo& file) { return ToCalendar(file.StartDate).Year; };
  ChartListing list;
  std::set<int> years;
  for (const ChartFileInfo& file : files) years.insert(yearOf(file));
  list.Years.assign(years.begin(), years.end());
  if (filter.Year)
    std::erase_if(files, [&](const ChartFileInfo& file) { return yearOf(file) != *filter.Year; });
  std::ranges::sort(files, {}, &ChartFileInfo::FileName);
  if (files.size() > MostChartsListed) {
    list.Notes.push_back("There are " + std::to_string(files.size()) + " charts in the " +
                         std::string(where) + ". The list holds the first " +
                         std::to_string(MostChartsListed) + ": choose a station or a year to see others.");
    files.resize(MostChartsListed);
  }
  list.Files = std::move(files);
  return list;
}

Result<std::optional<std::string>> OtherNameOf(const OpenedChart& chart, const ChartRecord& edited) {
  // A file that names no instrument still has a name.
  const std::string& code = edited.InstrumentCode.empty() ? chart.File.InstrumentCode : edited.InstrumentCode;
  std::string name = ChartFileName(code, edited.StartTime);
  if (EqualIgnoringCase(name, chart.File.FileName)) return std::nullopt;
  if (auto why = CheckInstrumentCode(code)) return Failure(*std::move(why));
  return name;
}

std::string OtherNameQuestion(std::string_view name) {
  return "Due to changes made to the file details it will be saved in a different name: " + ShownText(name);
}

}  // namespace hyetex
