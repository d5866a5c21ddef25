#include "tal/mariadb/pipe_signal.h"

#include <mysql.h>

#include <ctime>
#include <mutex>

#include "tal/failure.h"

namespace tal::mariadb {
namespace {

sigset_t pipeSignal() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGPIPE);
  return set;
}

bool isPipeSignalPending() {
  sigset_t pending;
  ::sigpending(&pending);
  return sigismember(&pending, SIGPIPE) == 1;
}

void initialise() {
  struct sigaction programs {};
  ::sigaction(SIGPIPE, nullptr, &programs);
  const int failed = mysql_server_init(0, nullptr, nullptr);
  ::sigaction(SIGPIPE, &programs, nullptr);
  if (failed != 0) throw Failure(Status::kInternalError);
}

}  // namespace

PipeSignalBlocked::PipeSignalBlocked() : before_(), wasPending_(isPipeSignalPending()) {
  const sigset_t set = pipeSignal();
  ::pthread_sigmask(SIG_BLOCK, &set, &before_);
}

PipeSignalBlocked::~PipeSignalBlocked() {
  if (!wasPending_ && isPipeSignalPending()) {
    const sigset_t set = pipeSignal();
    const timespec atOnce{};
    ::sigtimedwait(&set, nullptr, &atOnce);
  }
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void initialiseClientLibrary() {
  static std::once_flag once;
  std::call_once(once, initialise);
}

}  // namespace tal::mariadb
