// The fake engine as a library that replaces the product's. Its answers come from the product's own
// library, which simulates the scenario that FAKE_SCENARIO names, whatever the server is called;
// without FAKE_SCENARIO they are those of an idle engine. FAKE_ENGINE names a file that says what
// it does otherwise (disturbances.h). It appends a line for each call to the file that FAKE_TRACE
// names.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "tests/support/fake_engine/disturbances.h"
#include "tests/support/fake_engine/record.h"
#include "tests/support/file_descriptor.h"

namespace fake_engine {
namespace {

using testing_support::FileDescriptor;

// Makes the product's library the one after this.
void* loadProduct() {
  void* const library = ::dlopen(PRODUCT_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
  if (library == nullptr) {
    std::fprintf(stderr, "fake engine: %s\n", ::dlerror());
    std::_Exit(125);
  }
  return library;
}

// Made at the first call.
struct Session {
  Disturbances disturbances;
  FileDescriptor trace;
  std::map<std::string, int> calls;
  std::string server;  // empty if there is no scenario
  void* product = nullptr;
};

Session& session() {
  static Session theSession = [] {
    Session result;
    if (const char* const path = std::getenv("FAKE_ENGINE")) {
      result.disturbances = readDisturbances(path);
    }
    if (const char* const path = std::getenv("FAKE_SCENARIO")) {
      result.server = std::string("sim:") + path;
      result.product = loadProduct();
    }
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

std::int16_t connectToScenario(const Call& call) {
  using Connect = decltype(&TalConnectServer);
  const auto connect = reinterpret_cast<Connect>(::dlsym(session().product, "TalConnectServer"));
  return connect(session().server.c_str(), "", "", call.number);
}

std::int16_t ask(const Call& call, const Next& next) {
  if (session().product == nullptr) return answer({}, call);
  return call.kind == Kind::kConnect ? connectToScenario(call) : next();
}

}  // namespace

std::int16_t serve(const Call& call, const Next& next) {
  trace(call);
  const CallNumber number{call.function, ++session().calls[call.function]};
  const Disturbances& disturbances = session().disturbances;
  if (const auto pause = disturbances.pauses.find(number); pause != disturbances.pauses.end()) {
    waitForWriter(pause->second);
  }
  if (const auto thrown = disturbances.exceptions.find(number);
      thrown != disturbances.exceptions.end()) {
    throwException(thrown->second);
  }
  const std::int16_t served = ask(call, next);
  if (const auto count = disturbances.counts.find(call.function);
      count != disturbances.counts.end()) {
    *call.count = count->second;
  }
  const auto [first, last] = disturbances.pokes.equal_range(number);
  std::for_each(first, last, [&](const auto& poke) {
    std::ranges::copy(poke.second.bytes, filledBytes(call).subspan(poke.second.offset).begin());
  });
  const auto status = disturbances.statuses.find(number);
  return status == disturbances.statuses.end() ? served : status->second;
}

}  // namespace fake_engine
