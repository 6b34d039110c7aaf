#include "database/store/chart_ascii.h"

#include <algorithm>

#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

constexpr std::size_t FixedWidth = 40;  // of the column, where it is one of fixed width

}  // namespace

Selection ChartAsciiOf(std::string_view instrumentCode) {
  // A column of fixed width holds it with blanks behind it, which some databases compare and others don't.
  const std::string code = ShownText(instrumentCode);
  const std::string bare = code.substr(0, code.find_last_not_of(' ') + 1);
  std::string filled = bare;
  filled.resize(std::max(filled.size(), FixedWidth), ' ');
  Selection selection;
  selection.Where.push_back(
      {.Column = column::InstrumentCode, .How = Compare::OneOfIgnoringCase, .Among = {code, bare, filled}});
  return selection;
}

Selection ChartAsciiOf(std::string_view instrumentCode, Date chartDate) {
  Selection selection = ChartAsciiOf(instrumentCode);
  selection.Where.push_back({column::ChartDate, Compare::Equal, DbDate{chartDate}});
  return selection;
}

DbResult<bool> HasLoadedMark(Connection& connection) {
  const auto columns = connection.Columns(table_name::ChartAscii);
  if (!columns) return tl::unexpected(columns.error());
  return std::ranges::any_of(
      *columns, [](const CatalogColumn& c) { return EqualIgnoringCase(c.Name, column::Loaded); });
}

DbResult<bool> IsLoaded(Recordset& table) {
  if (!table.HasField(column::Loaded)) return false;
  const auto loaded = table.Value(column::Loaded);
  if (!loaded) return tl::unexpected(loaded.error());
  return NumberOf(*loaded) == 1;
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
