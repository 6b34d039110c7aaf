#include "database/store/instruments.h"

#include "database/access/names.h"
#include "database/store/stored_text.h"

namespace hyetex {

DbResult<std::set<std::string>> ReadInstrumentCodes(HyetexPlotDB& database) {
  const ClosedAfter closed(database);
  if (const auto opened = database.OpenInstrument({.Columns = {column::InstrumentCode}}); !opened)
    return tl::unexpected(opened.error());
  std::set<std::string> codes;
  Recordset& table = database.InstrumentTable;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto code = table.Value(0);
    if (!code) return tl::unexpected(code.error());
    if (!IsNull(*code)) codes.insert(ComparedCode(TextOf(*code)));
    return true;
  });
  if (!walked) return tl::unexpected(walked.error());
  return codes;
}

}  // namespace hyetex
