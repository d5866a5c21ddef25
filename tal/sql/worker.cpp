#include "tal/sql/worker.h"

#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <mutex>

namespace tal::sql {
namespace {

std::atomic<int> leftBehind{0};

// The client library and its cryptography must not be cleaned up while a thread is inside them.
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

  // The next job; empty if there will be none.
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

  // By then everything that the jobs own is destroyed.
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
