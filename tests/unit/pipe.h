// What tests of streams need from the system.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "tests/support/file_descriptor.h"

namespace testing_support {

class Pipe {
 public:
  Pipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    read_ = FileDescriptor(ends[0]);
    write_ = FileDescriptor(ends[1]);
  }

  [[nodiscard]] int readEnd() const { return read_.number(); }
  [[nodiscard]] int writeEnd() const { return write_.number(); }
  void closeReadEnd() { read_.close(); }
  void closeWriteEnd() { write_.close(); }

  // Everything up to the end.
  [[nodiscard]] std::string readAll() const {
    std::string text;
    char buffer[4096];
    for (ssize_t count = 1; count > 0;) {
      count = ::read(readEnd(), buffer, sizeof buffer);
      if (count > 0) text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  FileDescriptor read_;
  FileDescriptor write_;
};

// Makes system calls return early while it lives: a signal that is handled by doing nothing.
class InterruptingSignal {
 public:
  static constexpr int kNumber = SIGUSR1;

  InterruptingSignal() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(kNumber, &action, &before_);
  }
  InterruptingSignal(const InterruptingSignal&) = delete;
  InterruptingSignal& operator=(const InterruptingSignal&) = delete;
  ~InterruptingSignal() { sigaction(kNumber, &before_, nullptr); }

 private:
  struct sigaction before_ {};
};

}  // namespace testing_support
