// The search for the tablet on real serial ports: the timer and the line that the search is driven by.
// Nothing in it waits.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <string>

#include "digitizing/tablet_search.h"
#include "platform/serial_port.h"

namespace hyetex {

class TabletFinder : public QObject, private TrialPort {
  Q_OBJECT

 public:
  /// `deviceOf` names the device of a numbered port; empty where there is none. It is asked each time a port
  /// is opened, so that a device may come and go.
  TabletFinder(int type, std::function<std::string(int port)> deviceOf, QObject* parent = nullptr);

  /// The first port is opened at once.
  void Start();
  /// Lets the port go; what was detected stays known.
  void Stop();
  void SetType(int type);

  int Type() const { return search_.Type(); }
  int TestPort() const { return search_.TestPort(); }
  int DetectedPort() const { return search_.DetectedPort(); }
  /// Of the port that was opened last.
  const std::string& Device() const { return device_; }

 signals:
  void Moved();     ///< another port is tried
  void Detected();  ///< DetectedPort() is the tablet's
  void NotDetected();

 private:
  void Open(int port, const TabletType& type) override;
  void Close() override { mscTry->Close(); }
  void Tick();
  void OnBytes(const QByteArray& bytes);

  std::function<std::string(int)> deviceOf_;
  std::string device_;
  SerialPort* mscTry;
  QTimer* timComCheck;
  TabletSearch search_;
};

}  // namespace hyetex
