#include "bench/child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace bench {
namespace {

constexpr std::size_t kReadSize = 65536;

double secondsOf(const timeval& time) {
  constexpr double kMicrosecond = 1e-6;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * kMicrosecond;
}

int openOutput(Output output, int& readEnd) {
  readEnd = -1;
  if (output == Output::kDevNull) return open("/dev/null", O_WRONLY | O_CLOEXEC);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return -1;
  readEnd = ends[0];
  return ends[1];
}

void readDry(int descriptor) {
  std::array<char, kReadSize> buffer;
  while (read(descriptor, buffer.data(), buffer.size()) > 0) {
  }
  close(descriptor);
}

}  // namespace

Cost run(const std::vector<std::string>& command, Output output) {
  int readEnd = -1;
  const int writeEnd = openOutput(output, readEnd);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, writeEnd, STDOUT_FILENO);

  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  pid_t child = 0;
  const int error = posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(writeEnd);
  if (error != 0) throw std::system_error(error, std::generic_category(), command.front());
  if (readEnd >= 0) readDry(readEnd);

  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  return {secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime), usage.ru_maxrss,
          WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

}  // namespace bench
