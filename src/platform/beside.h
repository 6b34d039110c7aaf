// Work that takes its time, done beside the event loop, so that windows stay painted while it is waited for.
#pragma once

#include <QApplication>
#include <QEventLoop>
#include <QThread>
#include <memory>
#include <optional>
#include <utility>

namespace hyetex {

/// Runs `work` in a thread of its own and returns what it returns. Meanwhile keys and clicks wait.
template <typename Work>
auto RunBeside(Work work) {
  std::optional<decltype(work())> outcome;
  QEventLoop loop;
  const std::unique_ptr<QThread> thread(QThread::create([&] { outcome.emplace(work()); }));
  QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
  QApplication::setOverrideCursor(Qt::WaitCursor);
  thread->start();
  loop.exec(QEventLoop::ExcludeUserInputEvents);
  thread->wait();
  QApplication::restoreOverrideCursor();
  return *std::move(outcome);
}

}  // namespace hyetex
