#include "exchange/preview.h"

#include <algorithm>

#include "core/text.h"
#include "exchange/document.h"
#include "exchange/xml_text.h"

namespace hyetex {
namespace {

std::string CellText(const XmlField& field) {
  std::string text = field.Text;
  if (EqualIgnoringCase(field.Encoding, Base64Encoding)) {
    auto bytes = FromBase64(field.Text);
    if (!bytes) return "(no base64)";
    if (bytes->find('\0') != std::string::npos) return "(" + std::to_string(bytes->size()) + " bytes)";
    text = *std::move(bytes);
  }
  if (text.size() <= MostPreviewText) return text;
  const std::string length = std::to_string(text.size());
  // Not through the middle of a character.
  std::size_t end = MostPreviewText;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + "... (" + length + " bytes)";
}

class Preview {
 public:
  void Take(const XmlRow& row) {
    if (++Made.Rows == 1)
      for (const XmlField& field : row.Fields) Made.Titles.push_back(field.Name);
    const bool keeps = Made.Cells.size() < MostPreviewRows && bytes_ < MostPreviewBytes;
    std::vector<std::string> cells(keeps ? Made.Titles.size() : 0);
    bool odd = row.FieldCount > row.Fields.size();
    for (std::size_t i = 0; i < row.Fields.size(); ++i) {
      const XmlField& field = row.Fields[i];
      const std::size_t at =
          i < Made.Titles.size() && Made.Titles[i] == field.Name
              ? i
              : static_cast<std::size_t>(std::ranges::find(Made.Titles, field.Name) - Made.Titles.begin());
      odd = odd || at == Made.Titles.size();
      if (!keeps || at == Made.Titles.size()) continue;
      cells[at] = CellText(field);
      bytes_ += cells[at].size() + sizeof(std::string);
    }
    Made.OddRows += odd ? 1 : 0;
    if (keeps) Made.Cells.push_back(std::move(cells));
  }

  XmlPreview Made;

 private:
  std::size_t bytes_ = 0;
};

}  // namespace

Result<XmlPreview> PreviewXml(const std::string& path, Progress& progress) {
  Preview preview;
  const XmlTaker taker{.Root = [](std::string_view) { return Result<void>(); },
                       .Row =
                           [&](const XmlRow& row) {
                             preview.Take(row);
                             return Result<void>();
                           }};
  const auto read = ReadXmlFile(path, taker, progress);
  preview.Made.IsWhole = read.has_value();
  if (!read && read.error() != StoppedText)
    return Failure((read.error().starts_with("Cannot read") ? "" : path + ", ") + read.error());
  return std::move(preview.Made);
}

std::string CountText(const XmlPreview& preview) {
  std::string text = std::to_string(preview.Rows) + (preview.Rows == 1 ? " row" : " rows");
  if (!preview.IsWhole) text += " until it was stopped";
  if (static_cast<std::int64_t>(preview.Cells.size()) < preview.Rows)
    text += ", the first " + std::to_string(preview.Cells.size()) + " are shown";
  if (preview.OddRows > 0)
    text += ", " + std::to_string(preview.OddRows) + " with fields that the first row lacks";
  return text;
}

}  // namespace hyetex
