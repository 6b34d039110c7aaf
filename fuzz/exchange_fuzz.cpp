// Any bytes as an XML file of a table, in pieces of any size: rows or an error, and the rows do not depend on
// where the bytes are cut.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "exchange/value_text.h"
#include "exchange/xml_rows.h"
#include "exchange/xml_text.h"

namespace {

using namespace hyetex;

// What came of it, in one text.
std::string Read(std::string_view bytes, std::size_t piece) {
  std::string all;
  const XmlTaker taker{
      .Root =
          [&](std::string_view name) {
            all.append(name).append("{");
            return Result<void>();
          },
      .Row =
          [&](const XmlRow& row) {
            if (row.Fields.size() > MostXmlFields) std::abort();
            for (const XmlField& field : row.Fields)
              all.append(field.Name).append("=").append(field.Text).append(field.Encoding).append(";");
            all += "\n";
            return Result<void>();
          }};
  XmlRows rows(taker);
  for (std::size_t at = 0; at < bytes.size(); at += piece)
    if (!rows.Take(bytes.substr(at, piece))) return all + "!";
  return all + (rows.End() ? "}" : "!");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string whole = Read(bytes, std::max<std::size_t>(size, 1)), parts = Read(bytes, 1 + size % 7);
  // An error may be seen earlier in a larger piece, behind rows that are told in either way.
  if (whole.back() == '}' && whole != parts) std::abort();

  // A value that is written comes back, and no text makes more of a value than its column takes.
  const XmlText kind = KindOfXmlText(bytes);
  std::string element = "<a><b><c";
  if (kind == XmlText::Unfit) {
    element += " encoding=\"base64\">";
    AppendBase64(element, bytes);
  } else {
    element += ">";
    AppendEscaped(element, bytes);
  }
  std::string value;
  const XmlTaker taker{.Root = [](std::string_view) { return Result<void>(); },
                       .Row =
                           [&](const XmlRow& row) {
                             value = row.Fields[0].Text;
                             return Result<void>();
                           }};
  XmlRows rows(taker);
  if (!rows.Take(element + "</c></b></a>") || !rows.End()) std::abort();
  if ((kind == XmlText::Unfit ? FromBase64(value) : value) != bytes) std::abort();
  CatalogColumn column;
  for (const ColumnKind each : {ColumnKind::Text, ColumnKind::Whole, ColumnKind::Number, ColumnKind::Time})
    if (const auto made = ValueOf(std::string(bytes), column, each); made && each != ColumnKind::Text) {
      const std::string text = ExchangeText(TextOf(*made), each);
      if (!ValueOf(text, column, each)) std::abort();
    }
  return 0;
}
