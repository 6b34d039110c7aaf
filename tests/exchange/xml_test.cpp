// The text of XML, and its reader on values of any length.
#include "exchange/preview.h"
#include "exchange/xml_rows.h"
#include "exchange/xml_text.h"
#include "support.h"

#include <gmock/gmock.h>

#include <random>

namespace hyetex::test {
namespace {

TEST(XmlText, TellsWhatXmlDoesToAText) {
  for (const char* plain : {"", "a > b", "]] >", "\t\n", "\xF4\x8F\xBF\xBD", "\x7F"})
    EXPECT_EQ(KindOfXmlText(plain), XmlText::Plain) << plain;
  for (const char* marked : {"<", "&", "]]>", "\r<"})
    EXPECT_EQ(KindOfXmlText(marked), XmlText::Markup) << marked;
  // Overlong, surrogate, cut off, beyond the last, no character.
  for (const char* unfit : {"\x1F", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xE2\x82",
                            "\xF4\x90\x80\x80", "\xFF", "\xEF\xBF\xBE", "<\x80"})
    EXPECT_EQ(KindOfXmlText(unfit), XmlText::Unfit) << unfit;
  EXPECT_EQ(KindOfXmlText(std::string_view("\0", 1)), XmlText::Unfit);
  EXPECT_EQ(KindOfXmlText("a\rb"), XmlText::Changed);
  for (const char* name : {"chart", "_x", "\xC3\xA9t\xC3\xA9", "a-b.c2"})
    EXPECT_TRUE(IsXmlName(name)) << name;
  for (const char* name : {"", "2a", "-a", "a b", "a:b", "a<", "\xE9"}) EXPECT_FALSE(IsXmlName(name)) << name;
}

TEST(XmlText, GivesBase64Back) {
  std::string bytes;
  for (int i = 0; i < 260; ++i) {
    std::string text;
    AppendBase64(text, bytes);
    EXPECT_EQ(FromBase64(text), bytes);
    bytes += static_cast<char>(i * 37);
  }
  EXPECT_EQ(FromBase64(" aGk\n= "), "hi");
  for (const char* wrong : {"a", "aGk", "aGk==", "=aGk", "a=Gk", "aG-k", "aGkx="})
    EXPECT_FALSE(FromBase64(wrong));
}

// In pieces of any size, also through the middle of a character or a mark.
TEST(XmlRows, ReadsTheSameWhereverTheBytesAreCut) {
  std::string value = "x\r\n<&]]>\xE2\x82\xAC";
  std::string text = "<as><!-- c --><a><b>";
  AppendEscaped(text, value);
  text += "</b><?p i?><c/></a>\n<a/></as>";
  for (std::size_t size = 1; size < text.size(); ++size) {
    std::vector<std::string> rows;
    const XmlTaker taker{.Root = [](std::string_view) { return Result<void>(); },
                         .Row =
                             [&](const XmlRow& row) {
                               std::string fields;
                               for (const XmlField& field : row.Fields)
                                 fields += field.Name + "=" + field.Text + ";";
                               rows.push_back(fields);
                               return Result<void>();
                             }};
    XmlRows reader(taker);
    for (std::size_t at = 0; at < text.size(); at += size)
      ASSERT_TRUE(reader.Take(std::string_view(text).substr(at, size)));
    ASSERT_TRUE(reader.End());
    EXPECT_EQ(rows, (std::vector<std::string>{"b=" + value + ";c=;", ""})) << size;
  }
}

TEST(XmlRows, TakesLongValuesAndDropsARowThatIsTooLong) {
  std::size_t longest = 0, dropped = 0, rows = 0;
  const XmlTaker taker{.Root = [](std::string_view) { return Result<void>(); },
                       .Row =
                           [&](const XmlRow& row) {
                             ++rows;
                             dropped += row.IsTooLong ? 1 : 0;
                             for (const XmlField& field : row.Fields)
                               longest = std::max(longest, field.Text.size());
                             return Result<void>();
                           }};
  XmlRows reader(taker);
  const std::string megabyte(1U << 20, 'x');
  ASSERT_TRUE(reader.Take("<as>"));
  for (const int megabytes : {5, 257, 1}) {
    ASSERT_TRUE(reader.Take("<a><b>"));
    for (int i = 0; i < megabytes; ++i) ASSERT_TRUE(reader.Take(megabyte));
    ASSERT_TRUE(reader.Take("</b></a>"));
  }
  ASSERT_TRUE(reader.Take("</as>"));
  ASSERT_TRUE(reader.End());
  EXPECT_EQ(rows, 3U);
  EXPECT_EQ(dropped, 1U);
  EXPECT_EQ(longest, 5 * megabyte.size());
}

TEST(XmlPreview, KeepsTheFirstRowsOfALargeFileAndCountsTheRest) {
  const TempFolder folder;
  std::string text = "<as><a><b>" + std::string(3000, 'x') + "</b><c encoding=\"base64\">AAA=</c></a>";
  for (int i = 0; i < 12'000; ++i) text += "<a><c>2</c><b>1</b></a>";
  WriteFile(folder / "a.xml", text + "<a><d>3</d></a></as>");
  UnwatchedProgress unwatched;
  const auto preview = PreviewXml(folder / "a.xml", unwatched);
  ASSERT_TRUE(preview) << preview.error();
  EXPECT_EQ(preview->Titles, (std::vector<std::string>{"b", "c"}));
  EXPECT_EQ(preview->Cells[0],
            (std::vector<std::string>{std::string(1000, 'x') + "... (3000 bytes)", "(2 bytes)"}));
  EXPECT_EQ(preview->Cells[1], (std::vector<std::string>{"1", "2"}));
  EXPECT_EQ(CountText(*preview),
            "12002 rows, the first 10000 are shown, 1 with fields that the first row lacks");
}

}  // namespace
}  // namespace hyetex::test
