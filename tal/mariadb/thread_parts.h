// Joining what the server counts by thread to the connections that the threads serve.
#pragma once

#include <cstdint>
#include <unordered_map>

namespace tal::mariadb {

// `Facts` are what is known by thread. Threads that serve no connection are carried but never asked
// for.
template <typename Facts>
class ThreadParts {
 public:
  Facts& ofThread(std::int64_t thread) { return facts_[thread]; }

  void serve(std::int64_t thread, std::int64_t connection) { threads_[connection] = thread; }

  // The facts of the thread that serves `connection`; null when no thread is known to.
  [[nodiscard]] const Facts* ofConnection(std::int64_t connection) {
    const auto thread = threads_.find(connection);
    return thread == threads_.end() ? nullptr : &facts_[thread->second];
  }

 private:
  std::unordered_map<std::int64_t, Facts> facts_;
  std::unordered_map<std::int64_t, std::int64_t> threads_;  // by connection
};

}  // namespace tal::mariadb
