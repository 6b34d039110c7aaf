// Charts that are traced by the command line's program, each by a process of its own, several at once: a scan
// that breaks one takes neither the others nor the desk with it.
#pragma once

#include <QObject>
#include <QProcess>
#include <QStringList>
#include <cstddef>
#include <map>
#include <string>

#include "scan/box/traced_chart.h"

namespace hyetex {

class TraceRunner : public QObject {
  Q_OBJECT

 public:
  explicit TraceRunner(QObject* parent) : QObject(parent) {}
  ~TraceRunner() override { CancelAll(); }

  /// Begins with a chart; `chart` tells it from the others. The words are the program's.
  void Begin(std::size_t chart, const QString& program, const QStringList& words, const std::string& name,
             const std::string& scan);
  std::size_t Running() const { return running_.size(); }
  /// Ends them all at once; Ended() is not told of them.
  void CancelAll();

 signals:
  void Ended(std::size_t chart, const hyetex::TracedChart& traced);

 private:
  void Tell(std::size_t chart, TracedChart traced);

  std::map<std::size_t, QProcess*> running_;
};

}  // namespace hyetex
