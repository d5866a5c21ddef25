#include "tests/support/launch.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

#include "tests/support/process.h"

namespace testing_support {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> changedEnvironment(const Command& command) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (!command.environment.contains(text.substr(0, text.find('=')))) {
      result.push_back(text);
    }
  }
  for (const auto& [name, value] : command.environment) {
    if (value) {
      result.push_back(name + "=" + *value);
    }
  }
  return result;
}

// A signal that the test runner ignores or blocks must not be inherited.
void resetSignals(const Command& command) {
  for (int number = 1; number < SIGRTMIN; ++number) {
    signal(number, SIG_DFL);
  }
  for (const int number : command.ignoredSignals) {
    signal(number, SIG_IGN);
  }
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

// The descriptors are above 2: the test has its own standard files open.
void placeStandardFiles(const std::array<int, 3>& standardFiles) {
  for (int target = 0; target < 3; ++target) {
    const int source = standardFiles[static_cast<std::size_t>(target)];
    if (source < 0) {
      close(target);
    } else {
      dup2(source, target);
    }
  }
}

void limitFileSize(const Command& command) {
  if (command.fileSizeLimit) {
    const rlimit limit{*command.fileSizeLimit, *command.fileSizeLimit};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
}

// True if it is done or not needed.
bool dropPrivileges(const Command& command) {
  constexpr uid_t kNobody = 65534;
  return !command.withoutPrivileges || geteuid() != 0 || setuid(kNobody) == 0;
}

// What is run: the program with its arguments. The program under test is given to ZELK_WRAPPER, if
// that is set.
std::vector<std::string> commandLine(const Command& command) {
  std::vector<std::string> words;
  const char* const wrapper = std::getenv("ZELK_WRAPPER");
  if (wrapper != nullptr && command.program.filename() == "zelk") words.emplace_back(wrapper);
  words.push_back(command.program.string());
  words.insert(words.end(), command.arguments.begin(), command.arguments.end());
  return words;
}

[[noreturn]] void refuse(const std::string& program) {
  const std::string message = "cannot run " + program + "\n";
  static_cast<void>(!write(STDERR_FILENO, message.data(), message.size()));
  _exit(127);
}

}  // namespace

pid_t launch(const Command& command, const std::array<int, 3>& standardFiles) {
  std::vector<std::string> arguments = commandLine(command);
  const std::string& program = arguments.front();
  std::vector<std::string> environment = changedEnvironment(command);
  const std::vector<char*> argumentPointers = pointersTo(arguments);
  const std::vector<char*> environmentPointers = pointersTo(environment);
  const pid_t child = fork();
  if (child < 0) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (child > 0) {
    return child;
  }
  resetSignals(command);
  if (command.controlsTerminal) {
    setsid();
    ioctl(standardFiles[0], TIOCSCTTY, 0);
  }
  placeStandardFiles(standardFiles);
  limitFileSize(command);
  if (!command.folder.empty() && chdir(command.folder.c_str()) != 0) {
    refuse(command.folder.string());
  }
  if (!dropPrivileges(command)) {
    refuse(program + " without privileges");
  }
  execvpe(program.c_str(), argumentPointers.data(), environmentPointers.data());
  refuse(program);
}

BlockedSignal::BlockedSignal(int number) {
  sigemptyset(&signal_);
  sigaddset(&signal_, number);
  pthread_sigmask(SIG_BLOCK, &signal_, &before_);
}

BlockedSignal::~BlockedSignal() {
  const timespec noTime{};
  while (sigtimedwait(&signal_, nullptr, &noTime) >= 0) {
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

}  // namespace testing_support
