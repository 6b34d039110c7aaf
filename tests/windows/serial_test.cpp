// The tablet's line, on a pseudo-terminal: what goes in at one end comes out at the other.
#include <QSignalSpy>

#include "digitizing/tablets.h"
#include "platform/serial_devices.h"
#include "platform/serial_port.h"
#include "windows/support.h"
#include "windows/wired_tablet.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class SerialLine : public FolderTest {
 protected:
  SerialLine() : tablet_(folder_ / "tablet") {
    port_.RetryMs = 20;
    QObject::connect(&port_, &SerialPort::Received, [this](const QByteArray& bytes) { received_ += bytes; });
  }
  bool HasReceived(const QByteArray& bytes) {
    return WaitFor([&] { return received_.size() >= bytes.size(); }) && received_ == bytes;
  }

  WiredTablet tablet_;
  SerialPort port_;
  QByteArray received_;
};

TEST_F(SerialLine, CarriesEveryByteOfEveryTabletUnchanged) {
  QByteArray all;
  for (int byte = 0; byte < 256; ++byte) all.append(static_cast<char>(byte));
  for (const TabletType& type : TabletTypes()) {
    const auto opened = port_.Open(folder_ / "tablet", type.Line, type.Initialisation);
    ASSERT_TRUE(opened) << type.Name << ": " << opened.error();
    const QByteArray start(type.Initialisation.data(), static_cast<qsizetype>(type.Initialisation.size()));
    EXPECT_EQ(tablet_.Heard(start.size()), start) << type.Name;
    received_.clear();
    tablet_.Send(all);
    EXPECT_TRUE(HasReceived(all)) << type.Name;
  }
}

TEST_F(SerialLine, GoesOnWhenTheTabletIsPluggedInAgain) {
  QSignalSpy lost(&port_, &SerialPort::Lost), regained(&port_, &SerialPort::Regained);
  ASSERT_TRUE(port_.Open(folder_ / "tablet", {.Parity = LineParity::Odd}, "wake"));
  EXPECT_EQ(tablet_.Heard(4), "wake");
  for (int time = 1; time <= 2; ++time) {
    received_.clear();
    tablet_.Unplug();
    ASSERT_TRUE(WaitFor([&] { return lost.count() == time; }));
    EXPECT_FALSE(port_.IsOpen());
    tablet_.PlugIn();
    ASSERT_TRUE(WaitFor([&] { return regained.count() == time; }));
    EXPECT_EQ(tablet_.Heard(4), "wake");
    tablet_.Send("0300,0523,1\r\n");
    EXPECT_TRUE(HasReceived("0300,0523,1\r\n"));
    EXPECT_EQ(lost.count(), time) << "told more than once";
  }
}

using SerialDevices = FolderTest;

TEST_F(SerialDevices, AreWhatTheSettingsName) {
  Remember("SerialPort2", "/dev/ttyUSB7");
  EXPECT_EQ(SerialDevice(settings_, 2), "/dev/ttyUSB7");
  for (const int none : {FirstSerialPort - 1, LastSerialPort + 1})
    EXPECT_EQ(SerialDevice(settings_, none), "");
}

}  // namespace
}  // namespace hyetex
