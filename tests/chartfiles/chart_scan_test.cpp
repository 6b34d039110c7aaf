// The scan that a chart's file remembers, whatever its path is called.
#include "chartfiles/chart_scan.h"

#include "chartfiles/chart_lines.h"
#include "chartfiles/chart_reader.h"
#include "core/text.h"
#include "plain_session.h"
#include "support.h"

namespace hyetex::test {
namespace {

TEST(ChartScan, NoPathCanSayAnythingElseOfTheChart) {
  Session session = PlainSession({});
  session.Line.Add(0, 0);
  session.Line.Add(10, 10);
  const auto without = MakeChartText(session, {}, "");
  ASSERT_TRUE(without);
  EXPECT_EQ(without->Text.find("Scan"), std::string::npos);
  ChartReading plain;
  ReadChartText(without->Text, "", {}, plain);
  EXPECT_FALSE(plain.Scan);
  std::string every;
  for (int c = 1; c < 256; ++c)
    if (c != '\n' && c != '\r') every += static_cast<char>(c);
  for (const std::string& path :
       {std::string("/Start: 01/01/2000/End/alpha selected.png"), std::string("1,2,3"), std::string(" a"),
        std::string("Number of Points: 9 Digitized Depth: 3 General Comment: x"), std::string("Ä\"'"),
        every}) {
    session.Scan = ScanPlacement{.Sha256 = std::string(64, 'e'), .Page = 11, .Path = path};
    const auto file = MakeChartText(session, {}, "");
    ASSERT_TRUE(file);
    ChartReading reading;
    ReadChartText(file->Text, "", {}, reading);
    EXPECT_EQ(reading.Scan, (ScanReference{path, 11, std::string(64, 'e')}));
    EXPECT_TRUE(reading.CutOff.empty());
    EXPECT_TRUE(reading.Notes.empty());
    // Without the line the file is the one that a tablet gives; who does not know it tells nothing by it.
    std::string rest;
    ForEachLine(file->Text, [&](std::string_view line) {
      if (!line.starts_with("Scan: "))
        rest.append(line).append("\r\n");
      else
        EXPECT_EQ(KindOfChartLine("X" + std::string(line)).Kind, ChartLine::Other);
    });
    EXPECT_EQ(rest, without->Text);
    EXPECT_EQ(reading.Chart.StartTime, plain.Chart.StartTime);
    EXPECT_EQ(reading.Chart.RawCount, plain.Chart.RawCount);
    EXPECT_EQ(reading.Chart.GeneralComment, plain.Chart.GeneralComment);
  }
  for (const char* text : {"", "0", "0 abc 61", "-1 ", "End: 5"}) EXPECT_FALSE(ParseScanLine(text)) << text;
  const std::string sha(64, 'a');
  EXPECT_FALSE(ParseScanLine("0 " + sha + " 6"));
  EXPECT_FALSE(ParseScanLine("0 " + sha + " 6G"));
  EXPECT_FALSE(ParseScanLine("0 " + sha + " "));
  EXPECT_EQ(KindOfChartLine("Scan: the End").Kind, ChartLine::End);  // somebody else's
}

}  // namespace
}  // namespace hyetex::test
