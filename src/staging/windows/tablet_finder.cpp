#include "staging/windows/tablet_finder.h"

#include <utility>

namespace hyetex {
namespace {

// Long enough for a tablet to wake and send a report, short enough not to be waited for.
constexpr int TickMs = 1000;

}  // namespace

TabletFinder::TabletFinder(int type, std::function<std::string(int)> deviceOf, QObject* parent)
    : QObject(parent),
      deviceOf_(std::move(deviceOf)),
      mscTry(new SerialPort(this)),
      timComCheck(new QTimer(this)),
      search_(*this, type) {
  mscTry->setObjectName("mscTry");
  timComCheck->setObjectName("timComCheck");
  timComCheck->setInterval(TickMs);
  connect(timComCheck, &QTimer::timeout, this, &TabletFinder::Tick);
  connect(mscTry, &SerialPort::Received, this, &TabletFinder::OnBytes);
}

void TabletFinder::Start() {
  timComCheck->start();
  Tick();
}

void TabletFinder::Stop() {
  timComCheck->stop();
  search_.Stop();
}

void TabletFinder::SetType(int type) {
  if (search_.SetType(type)) emit NotDetected();
}

void TabletFinder::Tick() {
  const bool wasDetected = DetectedPort() != NoPort;
  search_.Tick();
  if (!wasDetected) emit Moved();
  if (wasDetected && DetectedPort() == NoPort) emit NotDetected();
}

void TabletFinder::Open(int port, const TabletType& type) {
  device_ = deviceOf_(port);
  // The line would go on trying a port that cannot be opened; here another one has its turn.
  if (!mscTry->Open(device_, type.Line, type.Initialisation)) mscTry->Close();
}

void TabletFinder::OnBytes(const QByteArray& bytes) {
  const bool wasDetected = DetectedPort() != NoPort;
  search_.Receive(
      {reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<std::size_t>(bytes.size())});
  if (!wasDetected && DetectedPort() != NoPort) emit Detected();
}

}  // namespace hyetex
