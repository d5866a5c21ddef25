// Keeping SIGPIPE out of a program that has not asked for it.
#pragma once

#include <signal.h>

namespace tal::mariadb {

// While it lives, a write to a connection that the server has closed is an error of that write and
// no signal: encrypted connections write without suppressing it. A signal that was pending before
// stays pending. For the calling thread only.
class PipeSignalBlocked {
 public:
  PipeSignalBlocked();
  PipeSignalBlocked(const PipeSignalBlocked&) = delete;
  PipeSignalBlocked& operator=(const PipeSignalBlocked&) = delete;
  ~PipeSignalBlocked();

 private:
  sigset_t before_;
  bool wasPending_;
};

// Initialises the client library once for the process. The library ignores SIGPIPE for the whole
// process when it does so; the program's own handling is put back.
void initialiseClientLibrary();

}  // namespace tal::mariadb
