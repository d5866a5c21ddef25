// What a server that is killed leaves in the machine's memory.
#pragma once

#include <sys/types.h>

#include <vector>

namespace servers_testing {

// The shared memory segments of a running process, to be removed when the process has been killed
// and cannot do it itself.
class SharedMemory {
 public:
  explicit SharedMemory(pid_t process);

  // Call it when the process is gone; what others still use goes with the last of them.
  void remove() const;

 private:
  std::vector<int> segments_;
};

}  // namespace servers_testing
