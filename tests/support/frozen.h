// A process that stands still.
#pragma once

#include <signal.h>
#include <sys/types.h>

namespace testing_support {

// The process does nothing as long as this object lives.
class Frozen {
 public:
  explicit Frozen(pid_t process) : process_(process) { ::kill(process_, SIGSTOP); }
  Frozen(const Frozen&) = delete;
  Frozen& operator=(const Frozen&) = delete;
  ~Frozen() { ::kill(process_, SIGCONT); }

 private:
  pid_t process_;
};

}  // namespace testing_support
