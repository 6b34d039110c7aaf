#include "digitizing/report_decoder.h"

#include <random>

#include "digitizing/desk.h"

namespace hyetex {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Reports = std::vector<TabletReport>;

const TabletType& TypeOf(int index) { return TabletTypes()[static_cast<std::size_t>(index)]; }

Reports Decode(ReportDecoder& decoder, const Bytes& bytes) {
  Reports reports;
  decoder.Receive(bytes, [&](const TabletReport& report) { reports.push_back(report); });
  return reports;
}
Reports DecodeAll(int type, const Bytes& bytes) {
  ReportDecoder decoder(TypeOf(type));
  return Decode(decoder, bytes);
}
Bytes BytesOf(std::string_view text) { return {text.begin(), text.end()}; }

TEST(ReportDecoder, WorkedReports) {
  const Bytes parity{0x30, 0xB1, 0xB2, 0x33, 0xB4, 0xAC, 0x35, 0x36,
                     0xB7, 0xB8, 0x39, 0xAC, 0xC0, 0x8D, 0x0A};
  EXPECT_EQ(DecodeAll(0, parity), (Reports{{1234, 56789, 15}}));
  Bytes other = parity;
  other[0] = 0x41;   // no digit reads as 1
  other[4] = 0x3A;   // and there are digits above 9
  other[12] = 0x30;  // no button
  other[5] = 0;      // the line feed tells it too
  EXPECT_EQ(DecodeAll(0, other), (Reports{{11240, 56789, -1}}));
  other[14] = 0;
  EXPECT_TRUE(DecodeAll(0, other).empty());

  EXPECT_EQ(DecodeAll(1, BytesOf("0123,4567,0\r\n")), (Reports{{123, 4567, -1}}));
  EXPECT_EQ(DecodeAll(4, BytesOf("01x3,4567,3\r ")), (Reports{{103, 4567, 2}}));
  EXPECT_EQ(DecodeAll(1, BytesOf("0123;4567,1\r\n")), (Reports{{123, 4567, 0}}));
  EXPECT_TRUE(DecodeAll(1, BytesOf("0123;4567,1\r ")).empty());
  const int buttons[] = {-1, -1, -1, 1, 3, 4, 5, 6, 7, 2};
  for (char digit = '0'; digit <= '9'; ++digit)
    EXPECT_EQ(DecodeAll(3, BytesOf(std::string("0123,4567,") + digit + "  ")),
              (Reports{{123, 4567, buttons[digit - '0']}}));
  const std::pair<std::uint8_t, int> statuses[] = {{0x80, -1}, {0x84, 4}, {0x88, 8}, {0x90, 16}, {0xA0, 32}};
  for (const auto& [status, button] : statuses)
    EXPECT_EQ(DecodeAll(2, {1, 127, 99, 2, 5, status}), (Reports{{255, 261, button}}));
  EXPECT_TRUE(DecodeAll(2, {1, 2, 3, 4, 5, 0x8C}).empty());
}

TEST(ReportDecoder, ReadsBackWhatTabletsSend) {
  for (int type = 0; type < TabletTypeCount; ++type)
    for (const int button : {-1, static_cast<int>(TypeOf(type).DrawingButton)}) {
      const TabletReport report{1234, 567, button};
      EXPECT_EQ(DecodeAll(type, BytesOf(EncodeReport(TypeOf(type), report))), Reports{report});
    }
}

// Bytes in one flat buffer, the first one dropped until a report stands at the front.
Reports PlainDecode(int type, Bytes b) {
  const auto at = [&](std::size_t i) { return static_cast<int>(b[i]); };
  const auto digit = [&](std::size_t i) {
    if (type != 0) return at(i) >= '0' && at(i) <= '9' ? at(i) - '0' : 0;
    const int parityDigits[] = {0x30, 0xB1, 0xB2, 0x33, 0xB4, 0x35, 0x36, 0xB7, 0xB8,
                                0x39, 0x3A, 0xBB, 0x3C, 0xBD, 0xBE, 0x3F, 0xC0};
    const auto found = std::find(std::begin(parityDigits), std::end(parityDigits), at(i));
    return found == std::end(parityDigits) ? 1 : static_cast<int>(found - parityDigits);
  };
  const auto number = [&](std::size_t first, std::size_t count) {
    int value = 0;
    for (std::size_t i = first; i < first + count; ++i) value = value * 10 + digit(i);
    return value;
  };
  Reports reports;
  while (b.size() >= (type == 0 ? 15U : type == 2 ? 6U : 13U)) {
    std::ptrdiff_t drop = 1;
    if (type == 0 && at(11) == 0xAC && (at(5) == 0xAC || at(14) == 0x0A)) {
      reports.push_back({number(0, 5), number(6, 5), digit(12) - 1});
      drop = 15;
    } else if (type == 2 &&
               (at(5) == 0x80 || at(5) == 0x84 || at(5) == 0x88 || at(5) == 0x90 || at(5) == 0xA0)) {
      reports.push_back({at(0) * 128 + at(1), at(3) * 128 + at(4), at(5) == 0x80 ? -1 : at(5) - 128});
      drop = 5;
    } else if ((type == 1 || type == 4) && at(11) == 13 && (at(4) == ',' || at(12) == 10)) {
      reports.push_back({number(0, 4), number(5, 4), digit(10) - 1});
      drop = 13;
    } else if (type == 3 && at(4) == ',' && at(9) == ',') {
      const int d = digit(10);
      reports.push_back({number(0, 4), number(5, 4), d <= 2 ? -1 : d == 3 ? 1 : d == 9 ? 2 : d - 1});
      drop = 13;
    }
    b.erase(b.begin(), b.begin() + drop);
  }
  return reports;
}

TEST(ReportDecoder, NoiseAndCutsChangeNothing) {
  std::mt19937 random(4);
  const auto next = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  const Bytes noise{0xAC, 0x0A, 0x0D, ',', '0', '7', 0x80, 0x84, 0xA0, 0x00, 0x7F, 0xFF, 0xB1, 0x30};
  for (int round = 0; round < 1500; ++round) {
    const int type = round % TabletTypeCount;
    Bytes stream;
    while (stream.size() < 1200) {
      Bytes report = BytesOf(EncodeReport(TypeOf(type), {next(0, 9999), next(0, 9999), next(-1, 16)}));
      if (next(0, 5) == 0) report.resize(static_cast<std::size_t>(next(0, 14)));
      for (int i = next(0, 7); i > 5; --i)
        report.insert(report.begin() + next(0, static_cast<int>(report.size())),
                      noise[static_cast<std::size_t>(next(0, 13))]);
      stream.insert(stream.end(), report.begin(), report.end());
    }
    ReportDecoder decoder(TypeOf(type));
    Reports reports;
    for (std::size_t at = 0; at < stream.size();) {
      const std::size_t size =
          std::min(stream.size() - at, static_cast<std::size_t>(next(0, round % 2 ? 9 : 60)));
      decoder.Receive({stream.data() + at, size},
                      [&](const TabletReport& report) { reports.push_back(report); });
      at += size;
    }
    ASSERT_EQ(reports, PlainDecode(type, stream)) << "type " << type << " round " << round;
    ASSERT_GT(reports.size(), 20U);
  }
}

TEST(ReportDecoder, DropsAReceptionThatWouldFillItsBuffer) {
  ReportDecoder decoder(TypeOf(1));
  Bytes full;
  while (full.size() < 2000)
    full.insert(full.end(), {'0', '1', '2', '3', ',', '4', '5', '6', '7', ',', '1', '\r', '\n'});
  full.resize(2000);
  EXPECT_TRUE(Decode(decoder, full).empty());
  EXPECT_EQ(Decode(decoder, Bytes(full.begin(), full.begin() + 1999)).size(), 153U);
  EXPECT_EQ(decoder.Waiting(), 10U);
  EXPECT_TRUE(Decode(decoder, Bytes(full.begin(), full.begin() + 1990)).empty());
  EXPECT_EQ(Decode(decoder, BytesOf("1\r\n")).size(), 1U);  // what waited is still there
  EXPECT_TRUE(Decode(decoder, {}).empty());
}

TEST(ReportDecoder, PackedReportWaitsForItsStatus) {
  ReportDecoder decoder(TypeOf(2));
  const Bytes first{1, 2, 0, 3, 4, 0x84};
  EXPECT_EQ(Decode(decoder, first).size(), 1U);
  EXPECT_TRUE(Decode(decoder, {1, 2, 0, 3, 9}).empty());  // an earlier status is no longer there
  EXPECT_EQ(Decode(decoder, {0x80}), (Reports{{130, 393, -1}}));
}

TEST(ReportDecoder, AChunkWithoutAReportActsOnceMoreOnTheLast) {
  test::Desk desk;
  desk.Calibrated();
  desk.Machine.Receive(BytesOf("0600,0700,1\r\n"));
  EXPECT_EQ(desk.Last(), 0);
  EXPECT_TRUE(desk.State.ButtonHeld);
  desk.State.CursorButton = -1;  // as when the window gets the focus
  desk.Machine.Receive(BytesOf("0600"));
  EXPECT_FALSE(desk.State.ButtonHeld);
  EXPECT_EQ(desk.Last(), 0);
}

}  // namespace
}  // namespace hyetex
