#include "database/store/chart_ascii.h"

#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {

Selection ChartAsciiOf(std::string_view instrumentCode) {
  return {.Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, ShownText(instrumentCode)}}};
}

Selection ChartAsciiOf(std::string_view instrumentCode, Date chartDate) {
  Selection selection = ChartAsciiOf(instrumentCode);
  selection.Where.push_back({column::ChartDate, Compare::Equal, DbDate{chartDate}});
  return selection;
}

DbResult<std::string> ChartAsciiText(Recordset& table, std::size_t mostBytes) {
  std::string text;
  const auto read = table.ReadPieces(column::AsciiFile, [&](std::string_view piece) {
    text += piece;
    return text.size() <= mostBytes;
  });
  if (!read) return tl::unexpected(read.error());
  return text;
}

}  // namespace hyetex
