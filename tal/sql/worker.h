// A thread for work that may have to be left behind.
#pragma once

#include <signal.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace tal::sql {

// Keeps signals away from threads that are started while it exists: the program handles them. The
// destructor restores the mask of the calling thread.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

// One thread, which sleeps between jobs and gets no signals. A job that does not end in time is
// left behind with its thread. It ends when it can, and must own everything that it uses. If the
// process ends first, it skips the exit handlers of libraries that the thread may be using.
class Worker {
 public:
  Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  ~Worker();

  // Returns or throws the result of `job`, or returns nothing if it takes longer than `limit`.
  // After that no other job may be run.
  template <typename Job, typename Result = std::invoke_result_t<Job>>
  std::optional<Result> run(Job job, std::chrono::milliseconds limit) {
    const auto task = std::make_shared<std::packaged_task<Result()>>(std::move(job));
    std::future<Result> result = task->get_future();
    post([task] { (*task)(); });
    if (result.wait_for(limit) == std::future_status::ready) return result.get();
    abandon();
    return std::nullopt;
  }

 private:
  struct Mailbox;

  void post(std::function<void()> job);
  void abandon();

  std::shared_ptr<Mailbox> mailbox_;
  std::thread thread_;
};

}  // namespace tal::sql
