#include "platform/serial_port.h"

#include <QFileInfo>
#include <algorithm>
#include <array>

#include "platform/qt_text.h"

namespace hyetex {
namespace {

QSerialPort::Parity ParityOf(const LineSettings& settings) {
  switch (settings.Parity) {
    case LineParity::Even:
      return QSerialPort::EvenParity;
    case LineParity::Odd:
      return QSerialPort::OddParity;
    case LineParity::None:
      break;
  }
  return QSerialPort::NoParity;
}

// It carries whole bytes whatever it is set to, and says so by refusing parity and seven data bits.
bool IsPseudoTerminal(const QString& device) {
  return QFileInfo(device).canonicalFilePath().startsWith(QLatin1String("/dev/pts/"));
}

}  // namespace

SerialPort::SerialPort(QObject* parent) : QObject(parent) {
  connect(&port_, &QSerialPort::readyRead, this, [this] {
    if (const QByteArray bytes = port_.readAll(); !bytes.isEmpty()) emit Received(bytes);
  });
  connect(&port_, &QSerialPort::errorOccurred, this, &SerialPort::OnError);
  connect(&retry_, &QTimer::timeout, this, &SerialPort::Retry);
}

SerialPort::~SerialPort() {
  // Closing may report an error, which is of no interest any more.
  port_.disconnect(this);
}

Result<void> SerialPort::Open(const std::string& device, const LineSettings& settings,
                              std::string_view initialisation) {
  Close();
  settings_ = settings;
  initialisation_ = QByteArray(initialisation.data(), static_cast<qsizetype>(initialisation.size()));
  port_.setPortName(ToQt(device));
  auto opened = TryOpen();
  if (!opened) retry_.start(RetryMs);
  return opened;
}

void SerialPort::Close() {
  retry_.stop();
  if (port_.isOpen()) port_.close();
}

Result<void> SerialPort::TryOpen() {
  const QSignalBlocker quiet(port_);
  const auto failed = [this] {
    const QString why = port_.errorString();
    if (port_.isOpen()) port_.close();
    return Failure("The serial port " + FromQt(port_.portName()) + " cannot be opened: " + FromQt(why));
  };
  if (port_.portName().isEmpty()) return Failure("There is no serial port for the tablet");
  if (!port_.open(QIODevice::ReadWrite)) return failed();
  // A port keeps what the last program set, so each parameter is set whatever its default.
  const std::array set{port_.setBaudRate(settings_.Baud), port_.setParity(ParityOf(settings_)),
                       port_.setDataBits(static_cast<QSerialPort::DataBits>(settings_.DataBits)),
                       port_.setStopBits(static_cast<QSerialPort::StopBits>(settings_.StopBits)),
                       port_.setFlowControl(QSerialPort::NoFlowControl)};
  const bool isSet = std::find(set.begin(), set.end(), false) == set.end();
  if ((!isSet && !IsPseudoTerminal(port_.portName())) || !port_.clear()) return failed();
  if (!initialisation_.isEmpty() && port_.write(initialisation_) != initialisation_.size()) return failed();
  return {};
}

void SerialPort::OnError(QSerialPort::SerialPortError error) {
  // After a hang-up errors come by the hundred thousand, so the first one closes the line.
  if (error == QSerialPort::NoError || !port_.isOpen()) return;
  const QString why = port_.errorString();
  port_.close();
  retry_.start(RetryMs);
  emit Lost(QStringLiteral("The tablet on %1 does not answer: %2").arg(port_.portName(), why));
}

void SerialPort::Retry() {
  if (!TryOpen()) return;
  retry_.stop();
  emit Regained();
}

}  // namespace hyetex
