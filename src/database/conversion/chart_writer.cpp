#include "database/conversion/chart_writer.h"

#include <utility>
#include <vector>

#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

enum Column { Station, Instrument, Start, End, Depth, Method, Reliability, Comments };

std::vector<std::string> ColumnNames() {
  return {column::Station, column::InstrumentCode,  column::StartTime,       column::EndTime,
          column::Depth,   column::ComputingMethod, column::DataReliability, column::Comments};
}

// A shift to GMT in 32 bits is off by less than a millisecond.
DbDate WholeSeconds(Date date) { return {static_cast<double>(SecondsOf(date)) / SecondsPerDay}; }

}  // namespace

DbResult<ChartWriter> ChartWriter::Open(Connection& connection) {
  auto rows = RowWriter::Open(connection, table_name::Chart, ColumnNames());
  if (!rows) return tl::unexpected(rows.error());
  return ChartWriter(*std::move(rows));
}

std::optional<std::string> ChartWriter::CheckStation(const StationRecord& station) const {
  const std::string code = ShownText(station.InstrumentCode);
  const std::int64_t width = rows_.Columns()[Instrument].Size;
  if (CutToWidth(code, width) == code) return std::nullopt;
  return "the instrument code " + code + " is longer than the " + std::to_string(width) +
         " characters of its column";
}

std::string ChartWriter::Fitted(int column, std::string_view text, const Tell& tell) {
  const std::string whole = ShownText(text);
  const CatalogColumn& target = rows_.Columns()[static_cast<std::size_t>(column)];
  std::string fitted = CutToWidth(whole, target.Size);
  if (fitted != whole && cut_.insert(whole).second)
    tell("\"" + whole + "\" is cut to the " + std::to_string(target.Size) + " characters of " + target.Name);
  return fitted;
}

DbResult<void> ChartWriter::Write(const ChartRows& chart, const StationRecord& station, int reliability,
                                  const Tell& tell) {
  const std::string name = Fitted(Station, station.Name, tell);
  const std::string code = ShownText(station.InstrumentCode);
  const std::string word(ReliabilityText(reliability));
  for (const ChartRow& row : chart.Rows) {
    std::vector<DbValue> values(8);
    values[Station] = name;
    values[Instrument] = code;
    values[Start] = WholeSeconds(row.Start);
    values[End] = WholeSeconds(row.End);
    if (row.Depth) values[Depth] = *row.Depth;
    values[Method] = "ASCII";
    values[Reliability] = word;
    values[Comments] = row.Comment == " " ? row.Comment : Fitted(Comments, row.Comment, tell);
    if (auto added = rows_.Add(std::move(values)); !added) return added;
  }
  return {};
}

DbResult<void> ChartWriter::Finish() {
  const auto written = rows_.Finish();
  if (!written) return tl::unexpected(written.error());
  return {};
}

}  // namespace hyetex
