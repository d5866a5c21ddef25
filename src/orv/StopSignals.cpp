#include "orv/StopSignals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>

#include "orv/Exception.h"

namespace orv {
namespace {

constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP};

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes the flags");

std::atomic<bool>* s_flag = nullptr;
std::atomic<bool> s_came{false};
int s_wakePipe[2] = {-1, -1};

// The second signal finds the default action in place and ends the process. A signal that was
// ignored was never given this handler and is left alone.
void restoreDefaults() noexcept {
  for (const int signal : kStopSignals) {
    struct sigaction present {};
    if (sigaction(signal, nullptr, &present) != 0 || present.sa_handler == SIG_IGN) continue;
    present.sa_handler = SIG_DFL;
    sigaction(signal, &present, nullptr);
  }
}

void onStopSignal(int /*signal*/) {
  const int savedError = errno;
  restoreDefaults();
  s_came.store(true);
  s_flag->store(true);
  [[maybe_unused]] const auto written = write(s_wakePipe[1], "", 1);
  errno = savedError;
}

}  // namespace

void installStopSignals(std::atomic<bool>& stopRequested) {
  s_flag = &stopRequested;
  if (pipe2(s_wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) throw ResultException(resultOfErrno(errno));
  for (const int signal : kStopSignals) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
    action.sa_handler = onStopSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
  }
}

void ignoreFileSizeSignal() noexcept { signal(SIGXFSZ, SIG_IGN); }

bool stopSignalCame() noexcept { return s_came.load(); }

int stopSignalDescriptor() noexcept { return s_wakePipe[0]; }

}  // namespace orv
