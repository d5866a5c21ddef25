// The lowest step of starting a child process.
#pragma once

#include <signal.h>
#include <sys/types.h>

#include <array>

namespace testing_support {

struct Command;

// Starts the program with these three file descriptors as its standard ones (-1: closed) and no
// others. Returns its process id; throws std::system_error if no process can be made.
pid_t launch(const Command& command, const std::array<int, 3>& standardFiles);

// Keeps a signal away from this thread for a while and forgets it if it came meanwhile.
class BlockedSignal {
 public:
  explicit BlockedSignal(int number);
  BlockedSignal(const BlockedSignal&) = delete;
  BlockedSignal& operator=(const BlockedSignal&) = delete;
  ~BlockedSignal();

 private:
  sigset_t signal_;
  sigset_t before_;
};

}  // namespace testing_support
