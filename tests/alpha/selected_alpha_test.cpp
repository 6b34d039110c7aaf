// The value as it is typed, and as it goes into the texts of charts: byte for byte but for its line.
#include "alpha/selected_alpha.h"

#include <gmock/gmock.h>

#include "chartfiles/chart_reader.h"
#include "core/text.h"
#include "database/stored_charts.h"

namespace hyetex {
namespace {

using ::testing::HasSubstr;

std::string Rewritten(const std::string& text, const std::string& typed) {
  const auto made = RewriteSelectedAlpha(text, *ReadSelectedAlpha(typed));
  EXPECT_TRUE(made) << made.error();
  return made.value_or("");
}

TEST(SelectedAlpha, IsANumberOrNoneAndNoMistypedNumber) {
  for (const auto& [typed, text] : {std::pair("0.00431", "0.00431"),
                                    {" 0,00431 ", "0.00431"},
                                    {"0", "0"},
                                    {"0.000", "0"},
                                    {"-0.2", "-0.2"},
                                    {"12e-5", "0.00012"},
                                    {"None", "None"},
                                    {"none", "None"},
                                    {"abc", "None"},
                                    {"-", "None"}}) {
    const auto alpha = ReadSelectedAlpha(typed);
    ASSERT_TRUE(alpha) << typed;
    EXPECT_EQ(alpha->Text(), text) << typed;
  }
  for (const char* typed : {"", "  ", "O.0043", "0.0043x", "0 0", "-1000", "1000", "1e30"})
    EXPECT_FALSE(ReadSelectedAlpha(typed)) << typed;
  EXPECT_THAT(ReadSelectedAlpha("-1000").error(), HasSubstr("from -999 to 999"));
}

TEST(SelectedAlpha, ChangesItsLineAndNoOtherByte) {
  const std::string before =
      "RG12-19980305-1000.dat\r\nHYETEX88 ASCII FILE\r\nStation Name: The alpha value selected: Farm\r\n"
      "Instrument Code: RG12\r\nStart: 05/03/98 10:00\r\nDigitation Points:\r\n"
      "30,5,Alpha Value Selected: 0.7\r\n40,5 alpha value selected: 9\r\n60,5,\r\n"
      "General Comment: Alpha Value Selected: 3::\xE9t\xE9\r\n"
      "Digitizer Comment: no alpha value selected\r\nAlpha 1 : 0.0042\r\n\r\n";
  const std::string last = "Alpha Value Selected: None", after = "\r\nA line of somebody else\r\n";
  for (const char* value : {"0.0043", "0", "None"})
    EXPECT_EQ(Rewritten(before + last + after, value), before + "Alpha Value Selected: " + value + after);
  // Lines that end in a line feed, and a last one that does not end.
  const auto feeds = [](std::string text) {
    std::erase(text, '\r');
    return text;
  };
  EXPECT_EQ(Rewritten(feeds(before + last), "1.5"), feeds(before) + "Alpha Value Selected: 1.5");
  EXPECT_EQ(Rewritten(feeds(before) + "ALPHA VALUE SELECTED:0.1\n", "None"),
            feeds(before) + "Alpha Value Selected: None\n");
  // Ends that are mixed: the reader goes by the pairs.
  EXPECT_EQ(Rewritten(before + "a\nb\r\n" + last + "\n", "2"), before + "a\nb\r\nAlpha Value Selected: 2\n");
}

TEST(SelectedAlpha, GetsALineAtTheEndWhereThereIsNone) {
  const std::string text = test::StoredChart{}.Text(), head = text.substr(0, text.rfind("Alpha Value"));
  EXPECT_EQ(Rewritten(head, "0.5"), head + "Alpha Value Selected: 0.5\r\n");
  EXPECT_EQ(Rewritten(head.substr(0, head.size() - 2), "0.5"), head + "Alpha Value Selected: 0.5\r\n");
  std::string feeds = head;
  std::erase(feeds, '\r');
  EXPECT_EQ(Rewritten(feeds, "None"), feeds + "Alpha Value Selected: None\n");
}

TEST(SelectedAlpha, TakesLinesThatOtherVersionsWroteAndRefusesWhatWouldNotReadBack) {
  const std::string head = "a.dat\nHYETEX88 ASCII FILE\nInstrument Code: RG1\n";
  EXPECT_EQ(Rewritten(head + "  alpha value selected : 7\n", "0.5"), head + "Alpha Value Selected: 0.5\n");
  EXPECT_EQ(Rewritten(head + "Selected alpha: 7\n", "0.5"),
            head + "Selected alpha: 7\nAlpha Value Selected: 0.5\n");
  for (const auto& [text, why] :
       {std::pair(head + "Alpha Value Selected: 1\nSelected alpha: 7\n", "another selected alpha"),
        {std::string("a.dat\nsome words\n"), "no chart"},
        {head + "Number of Points: 1\nDigitation Points:\n30,5,\n60,5,\nGene", "cut off"},
        {std::string(), "no chart"}}) {
    const auto made = RewriteSelectedAlpha(text, {0.5});
    ASSERT_FALSE(made) << text;
    EXPECT_THAT(made.error(), HasSubstr(why));
  }
  const std::string longText =
      head + "General Comment: " + std::string((4U << 20) - head.size() - 18, 'x') + "\n";
  EXPECT_FALSE(RewriteSelectedAlpha(longText, {0.5})) << "no reader takes it";
}

}  // namespace
}  // namespace hyetex
