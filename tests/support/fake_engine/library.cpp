// The fake engine as a library that replaces the product's. It gives the answers in the file that
// FAKE_ENGINE names, and appends a line for each call to the file that FAKE_TRACE names. Without
// FAKE_ENGINE it answers like an idle engine; without FAKE_TRACE it writes no trace.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <new>

#include "tests/support/fake_engine/answers.h"
#include "tests/support/file_descriptor.h"

namespace fake_engine {
namespace {

using testing_support::FileDescriptor;

// Made at the first call.
struct Session {
  Answers answers;
  FileDescriptor trace;
  std::map<std::string, int> calls;
};

Session& session() {
  static Session theSession = [] {
    Session result;
    if (const char* const path = std::getenv("FAKE_ENGINE")) result.answers = readAnswers(path);
    if (const char* const path = std::getenv("FAKE_TRACE")) {
      result.trace = FileDescriptor(::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
    }
    return result;
  }();
  return theSession;
}

void trace(const Call& call) {
  if (!session().trace.isOpen()) return;
  const std::string line = textOf(call) + "\n";
  static_cast<void>(!::write(session().trace.number(), line.data(), line.size()));
}

// Opening a FIFO for reading waits for a writer. A signal that is handled must not end this wait.
void waitForWriter(const std::string& fifo) {
  FileDescriptor reader;
  do {
    reader = FileDescriptor(::open(fifo.c_str(), O_RDONLY | O_CLOEXEC));
  } while (!reader.isOpen() && errno == EINTR);
}

// No engine should do this; it shows how the program handles an unknown failure.
[[noreturn]] void throwException(const std::string& what) {
  if (what == "memory") throw std::bad_alloc();
  throw what;
}

}  // namespace

std::int16_t serve(const Call& call, const Next& /*next*/) {
  trace(call);
  const CallNumber number{call.function, ++session().calls[call.function]};
  const Answers& answers = session().answers;
  if (const auto pause = answers.pauses.find(number); pause != answers.pauses.end()) {
    waitForWriter(pause->second);
  }
  if (const auto thrown = answers.exceptions.find(number); thrown != answers.exceptions.end()) {
    throwException(thrown->second);
  }
  const auto status = answers.statuses.find(number);
  return status != answers.statuses.end() && status->second != 0 ? status->second
                                                                 : answer(answers, call);
}

}  // namespace fake_engine
