// Words never change what a chart says: texts made of all that the lines of a chart are told by come back as
// they were written, from both readers, and the points and the head with them.
#include <random>
#include <tuple>

#include "chartfiles/chart_lines.h"
#include "chartfiles/chart_reader.h"
#include "core/comments.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/store/light_reader.h"
#include "plain_session.h"
#include "support.h"

namespace hyetex::test {
namespace {

std::vector<std::string> Pieces() {
  std::vector<std::string> pieces{"END",
                                  "the pen mended",
                                  "Instrument did not cycle",
                                  "start",
                                  "Weekend Farm",
                                  "NUMBER OF",
                                  "none",
                                  "CODE205",
                                  "CODE2050",
                                  "CODE202",
                                  "CODE",
                                  "::",
                                  ":",
                                  " : ",
                                  ",",
                                  "12,5 mm seen",
                                  "1,2,",
                                  "-3.5",
                                  "7",
                                  "05/03/98 12:30",
                                  "\"",
                                  "'",
                                  "\xC3\x84",
                                  "\xC4",
                                  "\t",
                                  "\r\n",
                                  "\n",
                                  "\r",
                                  " ",
                                  "HYETEX88 ASCII FILE",
                                  "Alpha 3 : 0.5"};
  for (int kind = 0; kind <= static_cast<int>(ChartLine::Other); ++kind) {
    const std::string label(LabelOf(static_cast<ChartLine>(kind)));
    pieces.insert(pieces.end(), {label, UpperAscii(label)});
  }
  return pieces;
}

class Texts {
 public:
  std::string Next() {
    std::string text;
    for (auto count = random_() % 5; count > 0; --count) text += pieces_[random_() % pieces_.size()];
    return text;
  }
  // What can name a file.
  std::string NextCode() {
    std::string code = OneLine(Next()) + "-01";
    std::erase_if(code, [](char c) { return c == ',' || c == '/' || c == '\\'; });
    return code;
  }
  int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }

 private:
  std::mt19937 random_{11};
  const std::vector<std::string> pieces_ = Pieces();
};

auto HeadOf(const ChartRecord& c) {
  return std::tuple(c.InstrumentCode, c.InstrumentIndex, c.ChartMethod, c.StartTime, c.EndTime,
                    c.DigitizedTime, c.EyedDepth, c.DigitizedDepth, c.ManualDepth, c.SelectedDepth,
                    c.GeneralComment, c.DigitizerComment, c.AlphaCount, c.AlphaValues, c.SelectedAlpha,
                    c.Reliability);
}

ChartRecord LightlyRead(std::string_view stored, Texts& texts, const ReadingOptions& options) {
  LightReader reader(options);
  while (!stored.empty()) {
    const std::string_view piece = stored.substr(0, static_cast<std::size_t>(1 + texts.Below(400)));
    EXPECT_TRUE(reader.Take(piece));
    stored.remove_prefix(piece.size());
  }
  return reader.Finish();
}

TEST(Words, ComeBackAsTheyWereWrittenAndChangeNothingElse) {
  Texts texts;
  for (int round = 0; round < 1000; ++round) {
    ChartRecord chart;
    chart.InstrumentCode = texts.NextCode();
    chart.InstrumentIndex = 1;
    chart.StartTime = MakeDate(1998, 5, 1 + texts.Below(28), texts.Below(24), 30);
    chart.EndTime = chart.StartTime + 10;
    chart.EyedDepth = 12.5F;
    chart.ManualDepth = 3.25F;
    chart.Reliability = static_cast<std::int16_t>(texts.Below(4));
    chart.ChartMethod = static_cast<std::int16_t>(texts.Below(3));
    chart.GeneralComment = texts.Next();
    const std::string digitizerComment = texts.Next();
    Session session = PlainSession(
        chart, {.Name = "Plain", .DepthScale = 1, .TimeScale = 24, .ChartMethod = chart.ChartMethod});
    for (int i = 0, points = 2 + texts.Below(8); i < points; ++i)
      session.Line.Add(1.25 * i, 1 + 0.25 * (i % 2), false, texts.Next());

    const ChartOrigin origin{texts.Next(), texts.Next(), texts.Next(), chart.InstrumentCode, texts.Next()};
    const auto file = MakeChartText(session, origin, digitizerComment);
    ASSERT_TRUE(file) << file.error();
    const std::string name = ChartFileName(chart.InstrumentCode, chart.StartTime);
    const std::vector<StationRecord> stations{{"Dale", "other"}, {"Hill", chart.InstrumentCode}};
    const ReadingOptions options{.Stations = stations};
    SCOPED_TRACE(file->Text);

    const int last = session.Line.LastPoint();
    ChartReading reading;
    ReadChartText(file->Text, name, options, reading);
    ASSERT_EQ(reading.Chart.RawCount, last + 1);
    chart.GeneralComment = OneLine(chart.GeneralComment);
    chart.DigitizerComment = OneLine(digitizerComment);
    chart.DigitizedTime = 30.0F * static_cast<float>(last);  // a mm of paper is a day
    chart.DigitizedDepth = chart.SelectedDepth = static_cast<float>(Round(session.TotalDepth(last), 1));
    chart.SelectedAlpha = NoAlpha;
    for (int i = 0; i <= last; ++i) {
      const DigitizedPoint& point = session.Line.Point(i);
      const RawPoint& read = reading.RawPoints[static_cast<std::size_t>(i) + 1];
      ASSERT_EQ(std::tuple(read.X, read.Y, read.Comment),
                std::tuple(point.X, point.Y, OneLine(point.Comment)));
      if (i > 0 && HasCode(point.Comment, CodeAlpha))
        chart.AlphaValues[static_cast<std::size_t>(++chart.AlphaCount)] = 5;
    }
    ASSERT_EQ(HeadOf(reading.Chart), HeadOf(chart));
    ASSERT_TRUE(reading.Notes.empty()) << reading.Notes.front();

    ASSERT_EQ(HeadOf(ReadHead(file->Text, name, options)), HeadOf(chart));
    const std::string stored = name + "\r\n" + file->Text;
    ASSERT_EQ(HeadOf(LightlyRead(stored, texts, options)), HeadOf(chart));
    ChartReading fromStored;
    ReadStoredChart(stored, options, fromStored);
    ASSERT_EQ(HeadOf(fromStored.Chart), HeadOf(chart));
    ASSERT_EQ(fromStored.Chart.RawCount, last + 1);
  }
}

}  // namespace
}  // namespace hyetex::test
