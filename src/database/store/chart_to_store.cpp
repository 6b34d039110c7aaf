#include "database/store/chart_to_store.h"

#include <sys/stat.h>

#include <algorithm>
#include <optional>

#include "chartfiles/chart_reader.h"
#include "chartfiles/chart_text.h"
#include "core/files.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"
#include "database/store/light_reader.h"
#include "platform/odbc/recordset.h"

namespace hyetex {
namespace {

// The file's bytes, all of one moment.
Result<std::string> ReadSteadyFile(const std::string& path) {
  struct stat before {
  }, after{};
  const bool wasThere = ::stat(path.c_str(), &before) == 0;
  auto bytes = ReadWholeFile(path, MostChartBytes);
  if (!bytes || !wasThere) return bytes;
  const auto same = [](const timespec& a, const timespec& b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
  };
  if (::stat(path.c_str(), &after) != 0 || before.st_ino != after.st_ino || before.st_size != after.st_size ||
      !same(before.st_mtim, after.st_mtim) || static_cast<off_t>(bytes->size()) != after.st_size)
    return Failure("the file has changed while it was read");
  return bytes;
}

// What a database takes as text, and an operator can read: letters, whatever bytes they were in the file.
std::string ColumnText(std::string_view bytes) {
  std::string text = ShownText(bytes);
  std::replace(text.begin(), text.end(), '\0', ' ');
  return text;
}

// A cut code would name another instrument, and a cut file would be none.
std::optional<std::string> CutTexts(ChartToStore& chart, const std::vector<CatalogColumn>& columns) {
  for (const auto column :
       {chart_column::Station, chart_column::Code, chart_column::Reliability, chart_column::Comments}) {
    auto* text = std::get_if<std::string>(&chart.Row[column]);
    if (text == nullptr) continue;
    std::string cut = CutToWidth(*text, columns[column].Size);
    if (cut == *text) continue;
    if (column == chart_column::Code) return "its instrument code is longer than the database can hold";
    *text = std::move(cut);
    chart.Notes.push_back(ShownName(chart.Path) + ": the " +
                          (column == chart_column::Comments ? "general comment" : columns[column].Name) +
                          " was cut to " + std::to_string(columns[column].Size) + " characters.");
  }
  return std::nullopt;
}

}  // namespace

const std::vector<std::string>& ChartColumns() {
  static const std::vector<std::string> names{column::Station,   column::InstrumentCode,   column::ChartDate,
                                              column::AsciiFile, column::ChartReliability, column::Comments};
  return names;
}

std::string ShownName(const std::string& path) { return ShownText(BaseName(path)); }

Result<ChartToStore> MakeChartToStore(const std::string& path, const std::vector<StationRecord>& stations,
                                      const std::vector<CatalogColumn>& columns) {
  const std::string_view name = BaseName(path);
  if (const auto why = CheckStoredName(name)) return Failure(*why);
  const auto bytes = ReadSteadyFile(path);
  if (!bytes) return Failure(bytes.error());
  if (!BeginsAsChart(*bytes)) return Failure("it is no chart file");
  const ChartRecord chart = ReadHead(*bytes, name, {.Stations = stations});
  if (chart.InstrumentCode.empty()) return Failure("it names no instrument");
  if (chart.InstrumentIndex < 0)
    return Failure("its instrument " + chart.InstrumentCode + " is not in the list of stations");
  if (chart.StartTime == 0) return Failure("it has no start date");

  const StationRecord& station = stations[static_cast<std::size_t>(chart.InstrumentIndex)];
  ChartToStore made;
  made.Path = path;
  made.Key = {station.InstrumentCode, chart.StartTime};
  made.Bytes = bytes->size();
  made.Row.resize(ChartColumns().size());
  made.Row[chart_column::Station] = ColumnText(station.Name);
  made.Row[chart_column::Code] = ColumnText(station.InstrumentCode);
  made.Row[chart_column::Date] = DbDate{chart.StartTime};
  made.Row[chart_column::Reliability] = std::string(ReliabilityText(chart.Reliability));
  if (!chart.GeneralComment.empty()) made.Row[chart_column::Comments] = ColumnText(chart.GeneralComment);
  if (auto why = CutTexts(made, columns)) return Failure(*std::move(why));
  made.Row[chart_column::Text] = AsciiFileValue(columns, MakeStoredText(name, *bytes));
  return made;
}

}  // namespace hyetex
