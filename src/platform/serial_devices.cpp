#include "platform/serial_devices.h"

#include <QCollator>
#include <QSerialPortInfo>
#include <QStringList>

#include "core/numbers.h"
#include "platform/qt_text.h"

namespace hyetex {

std::string SerialDevice(const Settings& settings, int port) {
  if (port < FirstSerialPort || port > LastSerialPort) return {};
  if (auto named = settings.Get(setting::SerialPort, ShortText(port)); !named.empty()) return named;

  QStringList names;
  for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) names << info.systemLocation();
  QCollator byNumber;
  byNumber.setNumericMode(true);
  std::sort(names.begin(), names.end(), byNumber);
  return FromQt(names.value(port - FirstSerialPort));
}

}  // namespace hyetex
