#include "tal/sql/socket_cutter.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tal::sql {

SocketCutter::~SocketCutter() {
  if (duplicate_ >= 0) ::close(duplicate_);
}

void SocketCutter::watch(int socket) noexcept {
  const std::lock_guard lock(mutex_);
  if (duplicate_ >= 0) ::close(duplicate_);
  duplicate_ = socket >= 0 ? ::fcntl(socket, F_DUPFD_CLOEXEC, 0) : -1;
  if (isCut_) ::shutdown(duplicate_, SHUT_RDWR);
}

void SocketCutter::cut() noexcept {
  const std::lock_guard lock(mutex_);
  isCut_ = true;
  if (duplicate_ >= 0) ::shutdown(duplicate_, SHUT_RDWR);
}

}  // namespace tal::sql
