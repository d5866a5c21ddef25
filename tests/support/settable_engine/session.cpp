#include "tests/support/settable_engine/session.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <new>

namespace settable {
namespace {

// Opening a FIFO for reading waits for a writer; a signal that is handled must not end the wait.
void waitForWriter(const std::string& fifo) {
  testing_support::FileDescriptor reader;
  do {
    reader = testing_support::FileDescriptor(open(fifo.c_str(), O_RDONLY | O_CLOEXEC));
  } while (!reader.isOpen() && errno == EINTR);
}

// No engine should do this; it shows what the program makes of a failure without a name.
[[noreturn]] void throwException(const std::string& what) {
  if (what == "memory") {
    throw std::bad_alloc();
  }
  throw what;
}

}  // namespace

Session::Session() {
  if (const char* const path = std::getenv("SETTABLE_ENGINE")) {
    answers_ = readAnswers(path);
  }
  if (const char* const path = std::getenv("SETTABLE_TRACE")) {
    trace_ = testing_support::FileDescriptor(
        open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  }
}

std::int16_t Session::enter(const std::string& function, std::string_view arguments) {
  const CallNumber call{function, ++calls_[function]};
  if (trace_.isOpen()) {
    const std::string line =
        function + (arguments.empty() ? "" : " ") + std::string(arguments) + "\n";
    static_cast<void>(!write(trace_.number(), line.data(), line.size()));
  }
  if (const auto pause = answers_.pauses.find(call); pause != answers_.pauses.end()) {
    waitForWriter(pause->second);
  }
  if (const auto thrown = answers_.exceptions.find(call); thrown != answers_.exceptions.end()) {
    throwException(thrown->second);
  }
  const auto status = answers_.statuses.find(call);
  return status == answers_.statuses.end() ? std::int16_t{0} : status->second;
}

}  // namespace settable
