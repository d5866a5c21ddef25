// A process that stands still.
#pragma once

#include <sys/types.h>

namespace testing_support {

// The process does nothing while this object exists.
class Frozen {
 public:
  // Returns when all its threads have stopped, which takes the system a moment. Throws
  // std::runtime_error if they do not.
  explicit Frozen(pid_t process);
  Frozen(const Frozen&) = delete;
  Frozen& operator=(const Frozen&) = delete;
  ~Frozen();

 private:
  pid_t process_;
};

}  // namespace testing_support
