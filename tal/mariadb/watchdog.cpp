#include "tal/mariadb/watchdog.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tal::mariadb {
namespace {

// The program's signals are for its own threads: one that starts while this lives takes none.
class AllSignalsBlocked {
 public:
  AllSignalsBlocked() : before_() {
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, &before_);
  }
  AllSignalsBlocked(const AllSignalsBlocked&) = delete;
  AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
  ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};

}  // namespace

Watchdog::Watchdog(const sql::Deadline& deadline) {
  const AllSignalsBlocked blocked;
  thread_ = std::thread([this, deadline] { watch(deadline); });
}

Watchdog::~Watchdog() {
  {
    const std::lock_guard lock(mutex_);
    isOver_ = true;
  }
  changed_.notify_one();
  thread_.join();
  if (socket_ >= 0) ::close(socket_);
}

void Watchdog::guard(int socket) noexcept {
  const std::lock_guard lock(mutex_);
  if (socket < 0 || socket_ >= 0) return;
  socket_ = ::fcntl(socket, F_DUPFD_CLOEXEC, 0);
  if (isLate_) bite();
}

bool Watchdog::hasBitten() const {
  const std::lock_guard lock(mutex_);
  return hasBitten_;
}

void Watchdog::watch(const sql::Deadline& deadline) {
  std::unique_lock lock(mutex_);
  isLate_ = !changed_.wait_for(lock, deadline.remaining(), [this] { return isOver_; });
  if (isLate_) bite();
}

void Watchdog::bite() noexcept {
  if (socket_ < 0) return;
  ::shutdown(socket_, SHUT_RDWR);
  hasBitten_ = true;
}

}  // namespace tal::mariadb
