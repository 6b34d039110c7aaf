#include "database/store/instruments.h"

#include "database/access/names.h"
#include "database/store/stored_text.h"

namespace hyetex {
namespace {

template <typename Take>
DbResult<void> ForEachCode(HyetexPlotDB& database, Take&& take) {
  const ClosedAfter closed(database);
  if (auto opened = database.OpenInstrument({.Columns = {column::InstrumentCode}}); !opened) return opened;
  Recordset& table = database.InstrumentTable;
  return ForEachRow(table, [&]() -> DbResult<bool> {
    const auto code = table.Value(0);
    if (!code) return tl::unexpected(code.error());
    take(*code);
    return true;
  });
}

}  // namespace

DbResult<std::set<std::string>> ReadInstrumentCodes(HyetexPlotDB& database) {
  std::set<std::string> codes;
  const auto read = ForEachCode(database, [&](const DbValue& code) {
    if (!IsNull(code)) codes.insert(ComparedCode(TextOf(code)));
  });
  if (!read) return tl::unexpected(read.error());
  return codes;
}

DbResult<std::vector<std::string>> ListInstruments(HyetexPlotDB& database) {
  std::vector<std::string> codes;
  const auto read = ForEachCode(database, [&](const DbValue& code) { codes.push_back(TextOf(code)); });
  if (!read) return tl::unexpected(read.error());
  return codes;
}

}  // namespace hyetex
