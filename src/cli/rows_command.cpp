// rows: what stands in a table of the database, as CSV.
#include "cli/database.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"

namespace hyetex::cli {
namespace {

std::string FieldText(const DbValue& value) {
  if (const auto* date = std::get_if<DbDate>(&value)) return IsoText(date->Value);
  if (const auto* number = std::get_if<double>(&value)) return ShortText(*number);
  return CsvField(TextOf(value));
}

DbResult<void> PrintRows(Recordset& table) {
  std::vector<int> shown;  // long binaries are files: `extract` writes them
  std::string heading;
  for (int i = 0; i < table.FieldCount(); ++i) {
    if (table.Fields()[static_cast<std::size_t>(i)].Type == ColumnType::LongBinary) continue;
    heading += (shown.empty() ? "" : ",") + CsvField(table.FieldName(i));
    shown.push_back(i);
  }
  Print(heading + "\n");
  return ForEachRow(table, [&]() -> DbResult<bool> {
    std::string line;
    for (const int i : shown) {
      const auto value = table.Value(i);
      if (!value) return tl::unexpected(value.error());
      line += (i == shown.front() ? "" : ",") + FieldText(*value);
    }
    Print(line + "\n");
    return true;
  });
}

}  // namespace

Exit RunRows(const RowsWords& words) {
  CommandDatabase opened(words);
  if (const auto done = opened.Open(); !done) return Fail(done.error());
  Selection selection;
  if (!words.Instrument.empty())
    selection.Where.push_back({column::InstrumentCode, Compare::EqualIgnoringCase, words.Instrument});
  auto done = opened.Database.OpenAnyTable(words.Table, std::move(selection));
  if (done) done = PrintRows(opened.Database.AnyTable);
  return done ? Done : Fail(done.error().Description);
}

}  // namespace hyetex::cli
