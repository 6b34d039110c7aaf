#include "digitizing/lost_presses.h"

#include "digitizing/desk.h"

namespace hyetex {
namespace {

std::span<const std::uint8_t> Bytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

TEST(LostPresses, CountsPressesAndNotReports) {
  const std::string up = "0900,0900,0\r\n", down = "0900,0900,1\r\n", other = "0900,0900,3\r\n";
  LostPresses lost(test::DeskTablet);
  lost.Begin(true);  // the press that opened the box is still held
  lost.Receive(Bytes(down.substr(5) + down + up + up + down + other + up.substr(0, 4)));
  lost.Receive(Bytes(up.substr(4) + other));
  EXPECT_EQ(lost.Take(), 2);
  EXPECT_EQ(lost.Take(), 0);

  std::string flood;  // what waits on the line when the machine stood still
  for (int i = 0; i < 1000; ++i) flood += up + down + down;
  lost.Begin(false);
  lost.Receive(Bytes(flood));
  EXPECT_EQ(lost.Take(), 1000);
  EXPECT_TRUE(LostPressesText(17).starts_with("17 presses of the tablet were lost"));
  EXPECT_TRUE(LostPressesText(1).starts_with("1 press of the tablet was lost"));
}

}  // namespace
}  // namespace hyetex
