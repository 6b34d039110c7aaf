#include "database/store/instruments.h"

#include "database/store/stored_text.h"

namespace hyetex {

DbResult<std::set<std::string>> ReadInstrumentCodes(HyetexPlotDB& database) {
  const ClosedAfter closed(database);
  if (const auto opened = database.OpenInstrument({.Columns = {"instrument_code_id"}}); !opened)
    return tl::unexpected(opened.error());
  std::set<std::string> codes;
  for (Recordset& table = database.InstrumentTable; !table.Eof();) {
    const auto code = table.Value(0);
    if (!code) return tl::unexpected(code.error());
    if (!IsNull(*code)) codes.insert(ComparedCode(TextOf(*code)));
    if (const auto moved = table.MoveNext(); !moved) return tl::unexpected(moved.error());
  }
  return codes;
}

}  // namespace hyetex
