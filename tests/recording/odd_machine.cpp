// A library to preload: a machine whose clocks jump and whose disk fills up late. The file that
// ODD_MACHINE names has three numbers: by how many seconds the clock that people set is ahead, the
// same for the clock that nobody sets, and the error number of the next waits for the disk.
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>

namespace {

struct Oddities {
  long wall = 0;
  long steady = 0;
  int diskError = 0;
};

Oddities oddities() {
  Oddities found;
  std::ifstream(std::getenv("ODD_MACHINE")) >> found.wall >> found.steady >> found.diskError;
  return found;
}

}  // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) {
  const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
  if (clock == CLOCK_REALTIME) time->tv_sec += oddities().wall;
  if (clock == CLOCK_BOOTTIME) time->tv_sec += oddities().steady;
  return result;
}

// For absolute times only.
extern "C" int timerfd_settime(int timer, int flags, const itimerspec* when, itimerspec* old) {
  itimerspec real = *when;
  real.it_value.tv_sec = std::max(1L, real.it_value.tv_sec - oddities().steady);
  return static_cast<int>(syscall(SYS_timerfd_settime, timer, flags, &real, old));
}

extern "C" int fdatasync(int file) {
  errno = oddities().diskError;
  return errno == 0 ? static_cast<int>(syscall(SYS_fdatasync, file)) : -1;
}
