// The serial line of a tablet. It stays the tablet's while the session runs: when the tablet is unplugged the
// line closes, says so, and opens again as soon as the device is back.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSerialPort>
#include <QTimer>
#include <optional>
#include <string>
#include <string_view>

#include "core/result.h"
#include "platform/serial_line.h"

namespace hyetex {

class SerialPort : public QObject {
  Q_OBJECT

 public:
  explicit SerialPort(QObject* parent = nullptr);
  ~SerialPort() override;

  /// Opens a device, named or by its path, and sends `initialisation`. When that fails, and whenever the line
  /// is lost later, it is tried again every RetryMs until Close().
  Result<void> Open(const std::string& device, const LineSettings& settings, std::string_view initialisation);
  void Close();
  bool IsOpen() const { return port_.isOpen(); }

  int RetryMs = 1000;

 signals:
  void Received(const QByteArray& bytes);  ///< as they came, nothing translated
  void Lost(const QString& why);           ///< one line for the operator
  void Regained();

 private:
  Result<void> TryOpen();
  void OnError(QSerialPort::SerialPortError error);
  void Retry();

  QSerialPort port_;
  QTimer retry_;
  LineSettings settings_;
  QByteArray initialisation_;
};

}  // namespace hyetex
