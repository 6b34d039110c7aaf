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
  for (const TabletType& type : TabletTypes()) {
    const TabletReport report{1234, 567, type.DrawingButton};
    EXPECT_EQ(DecodeAll(static_cast<int>(&type - TabletTypes().data()), BytesOf(EncodeReport(type, report))),
              Reports{report});
  }
}

// Bytes in one flat buffer, the first one dropped until a report stands at the front.
Reports PlainDecode(int type, Bytes b) {
  Reports reports;
  const ReportLengths lengths = LengthsOf(TypeOf(type).Format);
  const auto frame = static_cast<std::ptrdiff_t>(lengths.Frame),
             packet = static_cast<std::ptrdiff_t>(lengths.Packet);
  while (std::ssize(b) >= frame) {
    const Reports here = DecodeAll(type, Bytes(b.begin(), b.begin() + frame));
    reports.insert(reports.end(), here.begin(), here.end());
    b.erase(b.begin(), b.begin() + (here.empty() ? 1 : packet));
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
  EXPECT_TRUE(desk.State().ButtonHeld);
  desk.Machine.State().CursorButton = -1;  // as when the window gets the focus
  desk.Machine.Receive(BytesOf("0600"));
  EXPECT_FALSE(desk.State().ButtonHeld);
  EXPECT_EQ(desk.Last(), 0);
}

}  // namespace
}  // namespace hyetex
