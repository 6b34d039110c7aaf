#include "scan/windows/trace_runner.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <utility>

#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr int Niceness = 10;       // the operator's hands come first
constexpr int MsForTheEnd = 3000;  // of a process that was killed

// In the new process, before it becomes the program: it ends when the desk does, in whatever way.
void BecomeSecondary(pid_t desk) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != desk) ::_exit(1);
  [[maybe_unused]] const int niceness = ::nice(Niceness);
}

}  // namespace

void TraceRunner::Begin(std::size_t chart, const QString& program, const QStringList& words,
                        const std::string& name, const std::string& scan) {
  auto* process = new QProcess(this);
  process->setObjectName("trace" + QString::number(chart));
  process->setStandardInputFile(QProcess::nullDevice());
  process->setChildProcessModifier([desk = ::getpid()] { BecomeSecondary(desk); });
  running_[chart] = process;
  connect(process, &QProcess::finished, this, [=, this](int, QProcess::ExitStatus how) {
    const QByteArray out = process->readAllStandardOutput(), error = process->readAllStandardError();
    Tell(chart, ReadOutcome({out.constData(), static_cast<std::size_t>(out.size())},
                            {error.constData(), static_cast<std::size_t>(error.size())},
                            how == QProcess::NormalExit, name, scan));
  });
  connect(process, &QProcess::errorOccurred, this, [=, this](QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart) return;  // the others end with finished()
    TracedChart failed = EndedChart(name, scan);
    failed.Words = FromQt(program) + " cannot be started: " + FromQt(process->errorString());
    Tell(chart, std::move(failed));
  });
  process->start(program, words);
}

// Behind the signal of the process, which goes then.
void TraceRunner::Tell(std::size_t chart, TracedChart traced) {
  const auto ended = running_.find(chart);
  if (ended == running_.end()) return;
  ended->second->disconnect(this);
  ended->second->deleteLater();
  running_.erase(ended);
  QMetaObject::invokeMethod(
      this, [this, chart, traced = std::move(traced)] { emit Ended(chart, traced); }, Qt::QueuedConnection);
}

void TraceRunner::CancelAll() {
  for (const auto& [chart, process] : running_) {
    process->disconnect(this);
    process->kill();
  }
  for (const auto& [chart, process] : std::exchange(running_, {})) {
    process->waitForFinished(MsForTheEnd);
    process->deleteLater();
  }
}

}  // namespace hyetex
