#include "platform/serial_port.h"

#include <QFileInfo>
#include <algorithm>
#include <array>
#include <utility>

#include "platform/qt_text.h"

namespace hyetex {

Result<LineSettings> ReadLineSettings(std::string_view text) {
  const QStringList parts = ToQt(text).toLower().split(',');
  const auto wrong = [&] { return Failure("These are no line settings: " + std::string(text)); };
  if (parts.size() != 4) return wrong();

  LineSettings settings;
  bool isNumber = false;
  settings.Baud = parts[0].toInt(&isNumber);
  if (!isNumber || settings.Baud <= 0) return wrong();

  static constexpr std::array<std::pair<char, QSerialPort::Parity>, 5> Parities{
      {{'n', QSerialPort::NoParity},
       {'e', QSerialPort::EvenParity},
       {'o', QSerialPort::OddParity},
       {'m', QSerialPort::MarkParity},
       {'s', QSerialPort::SpaceParity}}};
  const auto parity = std::find_if(Parities.begin(), Parities.end(),
                                   [&](const auto& row) { return parts[1] == QLatin1Char(row.first); });
  if (parity == Parities.end()) return wrong();
  settings.Parity = parity->second;

  const int dataBits = parts[2].toInt();
  if (dataBits < 5 || dataBits > 8) return wrong();
  settings.DataBits = static_cast<QSerialPort::DataBits>(dataBits);

  if (parts[3] != "1" && parts[3] != "2") return wrong();
  settings.StopBits = parts[3] == "1" ? QSerialPort::OneStop : QSerialPort::TwoStop;
  return settings;
}

namespace {

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

Result<void> SerialPort::Open(const std::string& device, std::string_view settings,
                              std::string_view initialisation) {
  Close();
  const auto line = ReadLineSettings(settings);
  if (!line) return Failure(line.error());
  settings_ = *line;
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
  const std::array set{port_.setBaudRate(settings_.Baud), port_.setParity(settings_.Parity),
                       port_.setDataBits(settings_.DataBits), port_.setStopBits(settings_.StopBits),
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
