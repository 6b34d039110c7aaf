#include "platform/serial_devices.h"

#include <QCollator>
#include <QSerialPortInfo>
#include <QStringList>

#include "core/numbers.h"
#include "platform/qt_text.h"

namespace hyetex {

std::vector<std::string> SerialDevices() {
  QStringList names;
  for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) names << info.systemLocation();
  QCollator byNumber;
  byNumber.setNumericMode(true);
  std::sort(names.begin(), names.end(), byNumber);
  std::vector<std::string> devices;
  for (const QString& name : names) devices.push_back(FromQt(name));
  return devices;
}

std::string SerialDevice(const Settings& settings, int port) {
  if (port < FirstSerialPort || port > LastSerialPort) return {};
  if (auto named = settings.Get(setting::SerialPort, ShortText(port)); !named.empty()) return named;
  const std::vector<std::string> devices = SerialDevices();
  const auto at = static_cast<std::size_t>(port - FirstSerialPort);
  return at < devices.size() ? devices[at] : std::string();
}

}  // namespace hyetex
