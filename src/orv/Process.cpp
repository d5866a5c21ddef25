#include "orv/Process.h"

#include <fcntl.h>
#include <libintl.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstddef>
#include <cstring>
#include <string>

#include "orv/Exception.h"

namespace orv {
namespace {

struct Standard {
  int descriptor;
  int wrongMode;  // a mode in which every use of the descriptor fails
};

constexpr Standard kStandards[] = {
    {STDIN_FILENO,  O_WRONLY},
    {STDOUT_FILENO, O_RDONLY},
    {STDERR_FILENO, O_RDONLY},
};

constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP};

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes the flags");

std::atomic<bool>* s_flag = nullptr;
std::atomic<bool> s_came{false};
int s_wakePipe[2] = {-1, -1};

// The second signal meets the default action and ends the process. A signal that was ignored never
// gets this handler and stays ignored.
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

// Blocks the stop signals while it lives. A thread that is started meanwhile inherits this, so that
// the signals reach the thread that sleeps.
class StopSignalBlock {
 public:
  StopSignalBlock() noexcept {
    sigset_t stops;
    sigemptyset(&stops);
    for (const int signal : kStopSignals) sigaddset(&stops, signal);
    pthread_sigmask(SIG_BLOCK, &stops, &before_);
  }
  StopSignalBlock(const StopSignalBlock&) = delete;
  StopSignalBlock& operator=(const StopSignalBlock&) = delete;
  ~StopSignalBlock() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};

// The system refuses a longer name instead of cutting it.
constexpr std::size_t kThreadNameLength = 15;

}  // namespace

void keepStandardDescriptors() {
  for (const Standard& standard : kStandards) {
    if (fcntl(standard.descriptor, F_GETFD) >= 0) continue;
    // The lowest free number is taken, and that is this one.
    if (open("/dev/null", standard.wrongMode) < 0) throw ResultException(resultOfErrno(errno));
  }
}

void useMessageLanguage() noexcept {
  std::setlocale(LC_MESSAGES, "");
  bind_textdomain_codeset("libc", "UTF-8");
}

void installStopSignals(std::atomic<bool>& stopRequested) {
  s_flag = &stopRequested;
  if (s_wakePipe[0] < 0 && pipe2(s_wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw ResultException(resultOfErrno(errno));
  }
  for (const int signal : kStopSignals) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
    action.sa_handler = onStopSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
  }
}

bool stopSignalCame() noexcept { return s_came.load(); }

int stopSignalDescriptor() noexcept { return s_wakePipe[0]; }

void ignoreFileSizeSignal() noexcept { signal(SIGXFSZ, SIG_IGN); }

void keepMemoryPrivate() noexcept {
  constexpr rlimit kNone{0, 0};
  setrlimit(RLIMIT_CORE, &kNone);
#ifndef __SANITIZE_ADDRESS__  // whose search for leaks looks into the process
  prctl(PR_SET_DUMPABLE, 0);
#endif
}

Result ORVThreadCreate(ThreadBody body, void* argument, const char* name) {
  const std::string shortName(name, std::min(std::strlen(name), kThreadNameLength));
  const StopSignalBlock block;
  pthread_t thread{};
  const int error = pthread_create(&thread, nullptr, body, argument);
  if (error != 0) return resultOfErrno(error);
  pthread_setname_np(thread, shortName.c_str());
  pthread_detach(thread);
  return 0;
}

void returnFreeMemory() noexcept { malloc_trim(0); }

LocalTime ORVTimeGetLocal() noexcept { return {std::time(nullptr)}; }

std::time_t ORVTimeToPosix(const LocalTime& time) noexcept { return time.seconds; }

}  // namespace orv
