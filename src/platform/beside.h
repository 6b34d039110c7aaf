// Work that takes its time, done beside the event loop, so that windows stay painted while it is waited for.
#pragma once

#include <QApplication>
#include <QEventLoop>
#include <QThread>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "core/progress.h"

namespace hyetex {

/// Ends a thread's life behind its work.
class ThreadKeeper : public QObject {
 public:
  ThreadKeeper(QThread* thread, QObject* parent) : QObject(parent), thread_(thread) {}
  ~ThreadKeeper() override { thread_->wait(); }

 private:
  const std::unique_ptr<QThread> thread_;
};

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

/// The same, watched by a progress that hears Cancel: then nothing is returned, at once. What the work holds
/// must be its own, since it goes on until its end, which nobody asks for any more.
template <typename Work>
auto RunBesideUntil(Progress& progress, Work work) -> std::optional<decltype(work())> {
  using Outcome = decltype(work());
  struct Shared {
    std::optional<Outcome> Value;
    std::atomic<bool> Done = false, GivenUp = false;
  };
  constexpr unsigned long EveryMs = 10;
  const auto shared = std::make_shared<Shared>();
  QThread* thread = QThread::create([shared, work = std::move(work)]() mutable {
    static std::mutex one;  // one after the other, however often it is given up
    const std::lock_guard lock(one);
    if (shared->GivenUp) return;
    shared->Value.emplace(work());
    shared->Done = true;
  });
  // Whoever leaves the program waits for it.
  auto* keeper = new ThreadKeeper(thread, qApp);
  QObject::connect(thread, &QThread::finished, keeper, &QObject::deleteLater);
  thread->start();
  while (!shared->Done) {
    if (!progress.Step(0, 0, {})) {
      shared->GivenUp = true;
      return std::nullopt;
    }
    QThread::msleep(EveryMs);
  }
  return std::move(shared->Value);
}

}  // namespace hyetex
