#include "chartfiles/chart_text.h"

#include <limits>

#include "chartfiles/chart_reader.h"
#include "core/comments.h"
#include "core/text.h"
#include "database/store/light_reader.h"
#include "plain_session.h"
#include "support.h"

namespace hyetex::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const ChartOrigin Origin{"Core", "Agency", "Hill", "RG1", "Ada"};

ChartRecord May() {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 5, 1);
  chart.EndTime = MakeDate(1998, 5, 11, 6, 30);
  chart.EyedDepth = 12.34567F;
  chart.ManualDepth = 0.1F;
  chart.Reliability = 2;
  return chart;
}

TEST(ChartText, WritesNumbersInTheirShortestFormAndTiesToEven) {
  Session session = PlainSession(May());
  Trace& line = session.Line;
  line.Add(0.125, 0.375);  // halves: to 0.12 and 0.38
  line.Add(8.5, 20.25);
  line.Add(9.5, 4.25, false, "CODE202");  // 1 along for 16 of drop
  line.Add(7, 3, true, "Smudge");
  line.Add(2.995, -1e-9);  // in 32 bits a little below 2.995; and no "-0"
  const auto file = MakeChartText(session, Origin, "");
  ASSERT_TRUE(file);
  EXPECT_EQ(file->Text.substr(file->Text.find("Start: ")),
            "Start: 01/05/98\r\nEnd: 11/05/98 06:30\r\n"
            "Digitized Time: 128.88\r\n"  // 9.375 days to the alpha point, then 4.005 back
            "Eyed Depth: 12.34567\r\nDigitized Depth: 19.9\r\nSelected Depth: 19.9\r\nManual Depth: 0.1\r\n"
            "Number of Points: 5\r\nChart Reliability: 2-Marginal\r\nDigitation Points:\r\n"
            "0.12,0.38,\r\n8.5,20.25,\r\n9.5,4.25,CODE202\r\n7,3,Smudge::CODE201\r\n2.99,0,\r\n"
            "General Comment: \r\nDigitizer Comment: \r\nAlpha 1 : 0.0625\r\nAlpha Value Selected: None\r\n");
  EXPECT_EQ(line.Point(3).Comment, "Smudge") << "the file's codes stay out of the session";
}

TEST(ChartText, HoldsNoNumberThatIsNone) {
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    ChartRecord chart = May();
    chart.EyedDepth = chart.ManualDepth = static_cast<float>(bad);
    chart.StartTime = chart.EndTime = bad;
    Session session = PlainSession(chart);
    session.Line.Add(1, 2);
    session.Line.Add(bad, 2, false, "CODE202");
    session.Line.Add(3, -bad, false, "CODE202");
    const auto traced = MakeChartText(session, Origin, ""), empty = MakeEmptyChartText(chart, 1, Origin);
    ASSERT_TRUE(traced && empty);
    for (const std::string& text : {traced->Text, empty->Text}) {
      const std::string upper = UpperAscii(text);
      EXPECT_THAT(upper, Not(HasSubstr("NAN")));
      EXPECT_THAT(upper, Not(HasSubstr("INF")));
    }
  }
}

TEST(ChartText, TellsWhatReadersWillNotSee) {
  Session session = PlainSession(May());
  for (int i = 0; i <= MaxPoint; ++i)
    session.Line.Add(i * 0.01, i % 2, false, i >= MaxPoint - 15 ? "CODE202" : "");
  const auto file = MakeChartText(session, Origin, "");
  ASSERT_TRUE(file);
  EXPECT_THAT(file->Notes, ElementsAre(HasSubstr("5001 points"), HasSubstr("16 alpha points")));

  ChartReading reading;
  ReadChartText(file->Text, "", {}, reading);
  EXPECT_EQ(reading.Chart.RawCount, MaxPoint);
  EXPECT_EQ(reading.Chart.AlphaCount, MaxAlpha);
  EXPECT_THAT(reading.Notes, ElementsAre(HasSubstr("1 point line "), HasSubstr("1 alpha line ")));
}

TEST(ChartText, KeepsEachTypedTextOnItsLine) {
  ChartOrigin origin = Origin;
  origin.Station = "A\nDigitized Depth: 99";
  ChartRecord chart = May();
  chart.GeneralComment = "wet\r\n1,2,\r";
  Session session = PlainSession(chart);
  session.Line.Add(0, 1);
  session.Line.Add(1, 2, false, "torn\nEnd: 01/01/99");
  const auto traced = MakeChartText(session, origin, "A\nB"), empty = MakeEmptyChartText(chart, 0, origin);
  ASSERT_TRUE(traced && empty);
  for (const std::string& text : {traced->Text, empty->Text})
    EXPECT_THAT(text, AllOf(HasSubstr("\r\nStation Name: A Digitized Depth: 99\r\n"),
                            HasSubstr("\r\nGeneral Comment: wet 1,2, \r\n")));
  EXPECT_THAT(traced->Text,
              AllOf(HasSubstr(",torn End: 01/01/99\r\n"), HasSubstr("\r\nDigitizer Comment: A B\r\n")));
  origin.InstrumentCode += "\n";
  EXPECT_FALSE(MakeEmptyChartText(May(), 0, origin));
  chart.GeneralComment = std::string("A\0B", 3);
  EXPECT_FALSE(MakeEmptyChartText(chart, 0, Origin));
}

TEST(ChartText, IsNoLongerThanItsReadersTake) {
  ChartRecord chart = May();
  const std::string name = ChartFileName(Origin.InstrumentCode, chart.StartTime) + "\r\n";
  const std::size_t room = MostChartBytes - name.size() - MakeEmptyChartText(chart, 0, Origin)->Text.size();
  chart.GeneralComment.assign(room, 'x');
  const auto longest = MakeEmptyChartText(chart, 0, Origin);
  ASSERT_TRUE(longest);
  LightReader light({});
  EXPECT_TRUE(light.Take(name + longest->Text));
  EXPECT_EQ(light.Finish().GeneralComment.size(), room);

  chart.GeneralComment.append(100, 'x');  // the two files' other lines differ by less
  const auto empty = MakeEmptyChartText(chart, 0, Origin),
             traced = MakeChartText(PlainSession(chart), Origin, "");
  ASSERT_FALSE(empty || traced);
  for (const std::string& error : {empty.error(), traced.error()}) EXPECT_THAT(error, HasSubstr("4 MB"));
}

TEST(ChartFileName, IsReadBackAndNothingElseIs) {
  const std::string name = ChartFileName("RG-12", MakeDate(1925, 3, 5, 9, 7));
  EXPECT_EQ(name, "RG-12-19250305-0907.dat");
  for (const std::string folder : {"", "/a/b-19980101-0000.dat/", "C:\\Data\\"}) {
    const auto parsed = ParseChartFileName(folder + name);
    ASSERT_TRUE(parsed) << folder;
    EXPECT_EQ(parsed->InstrumentCode, "RG-12");
    EXPECT_EQ(parsed->Start, MakeDate(1925, 3, 5, 9, 7));
  }
  for (const char* other :
       {"", ".dat", "RG1.dat", "RG1-19980305-1230.txt", "RG1-19981305-1230.dat", "RG1-19980305-2400.dat",
        "RG1-19980305-2360.dat", "RG1-1998030-12300.dat", "RG1-19980305_1230.dat"})
    EXPECT_FALSE(ParseChartFileName(other)) << other;
}

}  // namespace
}  // namespace hyetex::test
