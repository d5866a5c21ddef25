#include "companions/record/clock.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <system_error>

namespace companions::record {
namespace {

constexpr std::int64_t kMicroseconds = 1'000'000;
constexpr std::int64_t kNanosecondsPerMicrosecond = 1000;

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes the flags");
std::atomic<bool> s_stop{false};
std::atomic<bool> s_reopen{false};
int s_timer = -1;
std::array<int, 2> s_wakePipe{-1, -1};

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::int64_t now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return time.tv_sec * kMicroseconds + time.tv_nsec / kNanosecondsPerMicrosecond;
}

void onSignal(int signal) {
  const int savedError = errno;
  if (signal == SIGHUP) {
    s_reopen.store(true);
  } else if (s_stop.exchange(true)) {
    _exit(128 + signal);
  }
  [[maybe_unused]] const auto written = write(s_wakePipe[1], "", 1);
  errno = savedError;
}

void handle(int signal) {
  struct sigaction action {};
  if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

void emptyPipe() {
  std::array<char, 64> bytes;
  while (read(s_wakePipe[0], bytes.data(), bytes.size()) > 0) {
  }
}

}  // namespace

std::int64_t wallTime() { return now(CLOCK_REALTIME); }

std::uint64_t steadyTime() { return static_cast<std::uint64_t>(now(CLOCK_BOOTTIME)); }

std::int32_t zoneAt(std::int64_t wallTime) {
  constexpr std::int32_t kSecondsPerMinute = 60;
  const time_t seconds = wallTime / kMicroseconds;
  tm local{};
  localtime_r(&seconds, &local);
  return static_cast<std::int32_t>(local.tm_gmtoff / kSecondsPerMinute);
}

void installSignals() {
  s_timer = timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK);
  if (s_timer < 0) fail("timer");
  if (pipe2(s_wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) fail("pipe");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) handle(signal);
}

bool stopRequested() { return s_stop.load(); }

bool takeReopenRequest() { return s_reopen.exchange(false); }

void waitUntil(std::uint64_t steadyTime) {
  itimerspec when{};
  when.it_value.tv_sec = static_cast<time_t>(steadyTime / kMicroseconds);
  when.it_value.tv_nsec =
      static_cast<long>(steadyTime % kMicroseconds) * kNanosecondsPerMicrosecond;
  if (timerfd_settime(s_timer, TFD_TIMER_ABSTIME, &when, nullptr) != 0) fail("timer");
  std::array<pollfd, 2> events{
      pollfd{s_timer,       POLLIN, 0},
      pollfd{s_wakePipe[0], POLLIN, 0}
  };
  if (poll(events.data(), events.size(), -1) < 0 && errno != EINTR) fail("poll");
  emptyPipe();
}

}  // namespace companions::record
