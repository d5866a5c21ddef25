#include "tal/sql/worker.h"

#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include "tal/sql/signals_blocked.h"

namespace tal::sql {
namespace {

std::atomic<int> leftBehind{0};

// A thread that is inside a client library or its cryptography must not see them cleaned up.
void endAtOnce(int exitCode, void* /*argument*/) {
  if (leftBehind == 0) return;
  std::fflush(nullptr);
  ::_exit(exitCode);
}

void noteOneLeftBehind() {
  static const bool registered = ::on_exit(&endAtOnce, nullptr) == 0;
  if (registered) ++leftBehind;
}

}  // namespace

struct Worker::Mailbox {
  std::mutex mutex;
  std::condition_variable changed;
  std::function<void()> job;
  bool isClosed = false;
  bool isAbandoned = false;

  // The next job, empty when there will be none.
  std::function<void()> take() {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return job || isClosed; });
    return std::exchange(job, nullptr);
  }

  void close(bool abandoned) {
    {
      const std::lock_guard lock(mutex);
      isClosed = true;
      isAbandoned = abandoned;
    }
    changed.notify_one();
  }

  // Everything that the jobs own is gone by then.
  void end() {
    const std::lock_guard lock(mutex);
    if (isAbandoned) --leftBehind;
  }
};

Worker::Worker() : mailbox_(std::make_shared<Mailbox>()) {
  const SignalsBlocked blocked;
  thread_ = std::thread([mailbox = mailbox_] {
    while (const auto job = mailbox->take()) job();
    mailbox->end();
  });
}

Worker::~Worker() {
  if (!thread_.joinable()) return;
  mailbox_->close(false);
  thread_.join();
}

void Worker::post(std::function<void()> job) {
  {
    const std::lock_guard lock(mailbox_->mutex);
    mailbox_->job = std::move(job);
  }
  mailbox_->changed.notify_one();
}

void Worker::abandon() {
  noteOneLeftBehind();
  mailbox_->close(true);
  thread_.detach();
}

}  // namespace tal::sql
