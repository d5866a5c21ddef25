// Takes the place of the program's main: runs it again and again, each time in a forked process
// with a fault that a line on standard input orders, so that thousands of runs take seconds.
//
//   FAULT NUMBER      the faults are in the table below
//
// A run writes its standard output and error to the files "out" and "err" of the current folder and
// reads nothing. Its answer is a line of numbers, which ProgramRuns reads: exit status, or minus
// the signal that ended it; allocations, and what was begun and not ended.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "tests/program/limits/shim/counts.h"
#include "tests/program/limits/shim/writes.h"

namespace {

using limits::Target;
using Main = int (*)(int, char**, char**);

constexpr unsigned kSecondsForARun = 20;  // a run that hangs is killed by SIGALRM
constexpr int kServerFailed = 125;

Main s_main = nullptr;

struct Fault {
  const char* name;
  void (*arrange)(std::uint64_t number);
};

constexpr Fault kFaults[] = {
    {"none",          [](std::uint64_t) {}                                                     },
    {"allocation",    [](std::uint64_t number) { limits::failAllocation(number, false); }      },
    {"allocations",   [](std::uint64_t number) { limits::failAllocation(number, true); }       },
    {"disturbance",   [](std::uint64_t number) { limits::disturbWrites(number); }              },
    {"console-room",  [](std::uint64_t number) { limits::limitRoom(Target::kConsole, number); }},
    {"log-room",      [](std::uint64_t number) { limits::limitRoom(Target::kLog, number); }    },
    {"console-write", [](std::uint64_t number) { limits::failConsoleWrite(number); }           },
    {"log-close",     [](std::uint64_t) { limits::failClosingOfLog(); }                        },
    {"both-room",     [](std::uint64_t number) { limits::limitRoom(Target::kBoth, number); }   },
};

void arrange(const char* name, std::uint64_t number) {
  for (const Fault& fault : kFaults) {
    if (std::strcmp(fault.name, name) == 0) return fault.arrange(number);
  }
  std::_Exit(kServerFailed);
}

void redirect(int descriptor, const char* path, int flags) {
  const int file = open(path, flags | O_CLOEXEC, 0644);
  if (file < 0 || dup2(file, descriptor) < 0) std::_Exit(kServerFailed);
  close(file);
}

void answer(int status) {
  const limits::Counts& counts = limits::counts();
  dprintf(STDOUT_FILENO, "%d %" PRIu64 " %" PRId64 " %" PRId64 " %" PRId64 "\n",
          WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status), counts.allocations.load(),
          counts.starts.load(), counts.connections.load(), counts.snapshots.load());
}

int serve(int argc, char** argv, char** environment) {
  char name[32];
  std::uint64_t number = 0;
  setvbuf(stdin, nullptr, _IONBF, 0);  // a forked process must not read on
  while (std::scanf("%31s %" SCNu64, name, &number) == 2) {
    limits::shareCounts();
    const pid_t child = fork();
    if (child == 0) {
      redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
      redirect(STDOUT_FILENO, "out", O_WRONLY | O_CREAT | O_TRUNC | O_APPEND);
      redirect(STDERR_FILENO, "err", O_WRONLY | O_CREAT | O_TRUNC | O_APPEND);
      alarm(kSecondsForARun);
      arrange(name, number);
      return s_main(argc, argv, environment);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child) return kServerFailed;
    answer(status);
  }
  return 0;
}

}  // namespace

// It is always the same second, so that outputs can be compared byte by byte.
extern "C" time_t time(time_t* seconds) {
  constexpr time_t kNow = 1'700'000'000;
  if (seconds != nullptr) *seconds = kNow;
  return kNow;
}

// A hundred times quicker than asked for, so that a test need not wait for a refresh.
extern "C" int usleep(useconds_t microseconds) {
  const timespec slice{0, static_cast<long>(microseconds) * 10};
  return nanosleep(&slice, nullptr);
}

// What the C library's start code calls, with the program's main.
extern "C" int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(),
                                 void (*loaderFini)(), void* stackEnd) {
  s_main = main;
  using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(serve, argc, argv, init, fini, loaderFini, stackEnd);
}
