// A thread for work that may have to be left behind.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace tal::sql {

// One thread, asleep between jobs, that no signal reaches. A job that does not end in time is left
// behind with its thread: it ends when it can, and must own all that it uses. When the process ends
// before it, the process ends without the exit handlers of libraries that the thread may be in.
class Worker {
 public:
  Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  ~Worker();

  // What `job` returns or throws; nothing when it takes longer than `limit`. After that no other
  // job may be run.
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
