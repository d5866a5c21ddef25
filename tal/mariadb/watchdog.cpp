#include "tal/mariadb/watchdog.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tal/sql/signals_blocked.h"

namespace tal::mariadb {

Watchdog::Watchdog(const sql::Deadline& deadline) {
  const sql::SignalsBlocked blocked;
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
