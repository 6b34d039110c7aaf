#include "core/text.h"

#include "core/comments.h"

namespace hyetex {
namespace {

using Lines = std::vector<std::string_view>;

Lines LinesOf(std::string_view text) {
  Lines lines;
  ForEachLine(text, [&](std::string_view line) { lines.push_back(line); });
  return lines;
}

TEST(Text, SplitsOnPairsIfThereIsOneElseOnLineFeeds) {
  EXPECT_EQ(LinesOf(""), Lines{});
  EXPECT_EQ(LinesOf("a"), (Lines{"a"}));
  EXPECT_EQ(LinesOf("a\nb\n"), (Lines{"a", "b"}));
  EXPECT_EQ(LinesOf("a\n\nb"), (Lines{"a", "", "b"}));
  EXPECT_EQ(LinesOf("a\r\nb\r\n"), (Lines{"a", "b"}));
  EXPECT_EQ(LinesOf("a\nb\r\nc"), (Lines{"a\nb", "c"}));
  EXPECT_EQ(LinesOf("\na\r\n\n"), (Lines{"\na", "\n"}));
  EXPECT_EQ(LinesOf("a\rb\n"), (Lines{"a\rb"}));
  EXPECT_EQ(LinesOf("\r\n\r\n"), (Lines{"", ""}));
  EXPECT_EQ(LinesOf("a\r\r\nb"), (Lines{"a\r", "b"}));
}

TEST(Text, ListsTellHowManyLinesTheyLeaveOut) {
  EXPECT_EQ(FirstLines({}, 2), "");
  EXPECT_EQ(FirstLines({"a", "b"}, 2), "\na\nb");
  EXPECT_EQ(FirstLines({"a", "b", "c", "d"}, 2), "\na\nb\nand 2 more.");
  EXPECT_EQ(FirstLines({"a", "b"}, 1, "\n- ", ""), "\n- a\n- and 1 more");
}

TEST(Text, ShowsUtf8AsItStandsAndAllElseAsWindows1252) {
  for (const char* valid :
       {"", "plain", "caf\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8C\xA7", "\xF4\x8F\xBF\xBF"})
    EXPECT_EQ(ShownText(valid), valid);
  using Case = std::pair<const char*, const char*>;
  for (const auto& [bytes, shown] :
       {Case("caf\xE9", "caf\xC3\xA9"), Case("\x80 5", "\xE2\x82\xAC 5"),
        Case("\x9F\x81", "\xC5\xB8\xEF\xBF\xBD"), Case("\xC3\xA9\xE9", "\xC3\x83\xC2\xA9\xC3\xA9"),
        Case("\xC0\xAF", "\xC3\x80\xC2\xAF"), Case("\xE0\x80\x80", "\xC3\xA0\xE2\x82\xAC\xE2\x82\xAC"),
        Case("\xED\xA0\xA0", "\xC3\xAD\xC2\xA0\xC2\xA0"), Case("\xF5", "\xC3\xB5"),
        Case("\xE2\x82", "\xC3\xA2\xE2\x80\x9A")})
    EXPECT_EQ(ShownText(bytes), shown);
}

TEST(Text, ComparesAsciiOnlyAndKnowsWhatFitsALine) {
  EXPECT_TRUE(EqualIgnoringCase("Rg-12", "rG-12"));
  EXPECT_FALSE(EqualIgnoringCase("\xC9", "\xE9") || EqualIgnoringCase("RG1", "RG12"));
  EXPECT_TRUE(CheckOneLine("a\nb") && CheckOneLine("a\r") && CheckOneLine(std::string_view("a\0b", 3)));
  EXPECT_FALSE(CheckOneLine("a, b::c|d"));
  EXPECT_EQ(OneLine("a\r\nb\nc\rd\n\r\r\n"), "a b c d   ");
}

TEST(Comments, KeepTheirEntriesInOrder) {
  std::string comment;
  AddCode(comment, "CODE205");
  AddCode(comment, "Clock malfunction");
  EXPECT_EQ(comment, "CODE205::Clock malfunction");
  EXPECT_EQ(CommentEntries(comment), (std::vector<std::string>{"CODE205", "Clock malfunction"}));
  EXPECT_TRUE(CommentEntries("").empty() && HasCode(comment, 205) && HasCode("CODE2031 and CODE203.", 203));
  EXPECT_FALSE(HasCode("CODE2050", 205) || HasCode("CODE205.5", 205) || HasCode("CODE2031", 203));
  EXPECT_FALSE(HasCode(comment, 202) || HasCode("", 202) || HasCode("203", 203) || HasCode("code203", 203));
  EXPECT_EQ(MakeComment("", "") + MakeComment("205", "") + MakeComment("", " Wet"), "CODE205 Wet");
  EXPECT_EQ(MakeComment("205 or so", "Wet"), "CODE205 + Wet");
}

}  // namespace
}  // namespace hyetex
