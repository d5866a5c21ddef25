#include "tests/support/terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace testing_support {
namespace {

FileDescriptor openMaster() {
  FileDescriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  if (!master.isOpen() || grantpt(master.number()) != 0 || unlockpt(master.number()) != 0) {
    throw std::system_error(errno, std::generic_category(), "posix_openpt");
  }
  return master;
}

Command onTerminal(Command command, const FileDescriptor& master) {
  std::array<char, 128> name{};
  if (ptsname_r(master.number(), name.data(), name.size()) != 0) {
    throw std::system_error(errno, std::generic_category(), "ptsname_r");
  }
  command.input = Input::file(name.data());
  command.output = name.data();
  command.error = name.data();
  command.controlsTerminal = true;
  return command;
}

}  // namespace

Terminal::Terminal(Command command)
    : master_(openMaster()), process_(onTerminal(std::move(command), master_)) {}

void Terminal::type(std::string_view keys) const {
  if (::write(master_.number(), keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
    throw std::system_error(errno, std::generic_category(), "terminal");
  }
}

void Terminal::read() {
  std::array<char, 4096> buffer;
  ssize_t count = 0;
  while ((count = ::read(master_.number(), buffer.data(), buffer.size())) > 0) {
    screen_.append(buffer.data(), static_cast<std::size_t>(count));
  }
  std::erase(screen_, '\r');
}

bool Terminal::waitFor(std::string_view text) {
  return process_.waitUntil(
      [&] {
        read();
        return screen_.find(text) != std::string::npos;
      },
      text);
}

Ending Terminal::wait() {
  // The terminal's buffer is small: it must be emptied for the program to go on.
  process_.waitUntil(
      [&] {
        read();
        return process_.hasEnded();
      },
      "the end of the program");
  const Ending ending = process_.wait();
  read();
  return ending;
}

}  // namespace testing_support
