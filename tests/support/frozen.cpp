#include "tests/support/frozen.h"

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/support/process.h"

namespace testing_support {
namespace {

namespace fs = std::filesystem;

bool isStopped(const fs::directory_entry& thread) {
  std::string state;
  std::getline(std::ifstream(thread.path() / "stat"), state);
  const auto nameEnd = state.rfind(") ");
  return nameEnd != std::string::npos && state.compare(nameEnd, 3, ") T") == 0;
}

bool areAllStopped(pid_t process) {
  const fs::directory_iterator threads("/proc/" + std::to_string(process) + "/task");
  return std::all_of(begin(threads), end(threads), isStopped);
}

}  // namespace

Frozen::Frozen(pid_t process) : process_(process) {
  ::kill(process_, SIGSTOP);
  const auto end = std::chrono::steady_clock::now() + kDeadline;
  while (!areAllStopped(process_)) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("a process runs on");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

Frozen::~Frozen() { ::kill(process_, SIGCONT); }

}  // namespace testing_support
