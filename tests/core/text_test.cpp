#include "core/text.h"

#include "core/comments.h"

namespace hyetex {
namespace {

using Lines = std::vector<std::string_view>;

TEST(Text, SplitsOnPairsIfThereIsOneElseOnLineFeeds) {
  EXPECT_EQ(SplitLines(""), Lines{});
  EXPECT_EQ(SplitLines("a"), (Lines{"a"}));
  EXPECT_EQ(SplitLines("a\nb\n"), (Lines{"a", "b"}));
  EXPECT_EQ(SplitLines("a\n\nb"), (Lines{"a", "", "b"}));
  EXPECT_EQ(SplitLines("a\r\nb\r\n"), (Lines{"a", "b"}));
  EXPECT_EQ(SplitLines("a\nb\r\nc"), (Lines{"a\nb", "c"}));
  EXPECT_EQ(SplitLines("\na\r\n\n"), (Lines{"\na", "\n"}));
  EXPECT_EQ(SplitLines("a\rb\n"), (Lines{"a\rb"}));
  EXPECT_EQ(SplitLines("\r\n\r\n"), (Lines{"", ""}));
  EXPECT_EQ(SplitLines("a\r\r\nb"), (Lines{"a\r", "b"}));
}

TEST(Text, ShowsUtf8AsItStandsAndAllElseAsWindows1252) {
  for (const char* valid :
       {"", "plain", "caf\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8C\xA7", "\xF4\x8F\xBF\xBF"})
    EXPECT_EQ(ShownText(valid), valid);
  const struct {
    const char* Bytes;
    const char* Shown;
  } cases[] = {
      {"caf\xE9", "caf\xC3\xA9"},
      {"\x80 5", "\xE2\x82\xAC 5"},
      {"\x9F\x81", "\xC5\xB8\xEF\xBF\xBD"},
      {"\xC3\xA9\xE9", "\xC3\x83\xC2\xA9\xC3\xA9"},          // one bad byte makes the whole text 1252
      {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                      // overlong
      {"\xE0\x80\x80", "\xC3\xA0\xE2\x82\xAC\xE2\x82\xAC"},  // overlong
      {"\xED\xA0\xA0", "\xC3\xAD\xC2\xA0\xC2\xA0"},          // a surrogate
      {"\xF5", "\xC3\xB5"},
      {"\xE2\x82", "\xC3\xA2\xE2\x80\x9A"},  // cut off
  };
  for (const auto& c : cases) EXPECT_EQ(ShownText(c.Bytes), c.Shown);
}

TEST(Text, UpperCasesAndComparesAsciiOnly) {
  EXPECT_EQ(UpperAscii("aZ9\xE9"), "AZ9\xE9");
  EXPECT_TRUE(EqualIgnoringCase("Rg-12", "rG-12"));
  EXPECT_FALSE(EqualIgnoringCase("\xC9", "\xE9"));
  EXPECT_FALSE(EqualIgnoringCase("RG1", "RG12"));
  EXPECT_EQ(Trim(" \t a b\r\n"), "a b");
  EXPECT_TRUE(CheckOneLine("a\nb") && CheckOneLine("a\r") && CheckOneLine(std::string_view("a\0b", 3)));
  EXPECT_FALSE(CheckOneLine("a, b::c|d"));
}

TEST(Comments, KeepTheirEntriesInOrder) {
  std::string comment;
  AddCode(comment, "CODE205");
  AddCode(comment, "Clock malfunction");
  EXPECT_EQ(comment, "CODE205::Clock malfunction");
  EXPECT_EQ(CommentEntries(comment), (std::vector<std::string>{"CODE205", "Clock malfunction"}));
  EXPECT_TRUE(CommentEntries("").empty());
  EXPECT_TRUE(HasCode(comment, 205) && HasCode("late CODE2031", 203));
  EXPECT_FALSE(HasCode(comment, 202) || HasCode("", 202) || HasCode("203", 203) || HasCode("code203", 203));
}

TEST(Comments, CodeAndTextMakeOneEntry) {
  EXPECT_EQ(MakeComment("", ""), "");
  EXPECT_EQ(MakeComment("205", ""), "CODE205");
  EXPECT_EQ(MakeComment("", "Wet paper"), "Wet paper");
  EXPECT_EQ(MakeComment("205", "Wet paper"), "CODE205 + Wet paper");
  EXPECT_EQ(MakeComment("205 or so", "x"), "CODE205 + x");
  EXPECT_EQ(MakeComment("none", ""), "CODE0");
}

}  // namespace
}  // namespace hyetex
