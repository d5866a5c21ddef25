#include "app/Failures.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>

#include "monitor/JsonFrame.h"
#include "output/ProcessWide.h"
#include "util/Utils.h"

namespace {

constexpr int kExitClean = 0;
constexpr int kExitDescribed = 1;

// Where writing fails there is nowhere left to say so.
template <class Report>
void attempt(Report report) {
  try {
    report();
  } catch (const orv::io::IoException&) {
    return;
  }
}

// As the user reads it on standard error.
orv::String errorLine(orv::String text) {
  if (!m_JSON) return text;
  Utils::addBackslashChars(text, '"');
  return "\t\"error\": \"" + text + "\"";
}

void printErrorLine(const orv::String& text) {
  attempt([] { displayJSONHeader(m_JSON, 0, 0); });
  attempt([&text] { s_errpw->println(errorLine(text)); });
}

// The last words of a process that cannot report in the ordinary way; returns its exit code.
int lastWords(const orv::Exception& failure) noexcept {
  const bool isDescribed = !failure.getDescription().isEmpty();
  const int code = isDescribed ? kExitDescribed : failure.getResult();
  try {
    const orv::String text =
        isDescribed ? failure.getDescription() : "zelk: failure " + orv::String::valueOf(code);
    std::fprintf(stderr, "%s\n", errorLine(text).toBytes().c_str());
  } catch (const std::bad_alloc&) {
    std::fputs("zelk: out of memory\n", stderr);
  }
  return code;
}

[[noreturn]] void onTerminate() {
  int code = kExitUnknownFailure;
  try {
    if (const auto failure = std::current_exception()) std::rethrow_exception(failure);
  } catch (const std::bad_alloc&) {
    code = kExitOutOfMemory;
    std::fputs("zelk: out of memory\n", stderr);
  } catch (const orv::Exception& failure) {
    code = lastWords(failure);
  } catch (...) {
    std::fputs("zelk: unknown failure\n", stderr);
  }
  std::_Exit(code);
}

}  // namespace

int reportDescription(const orv::String& description) {
  printErrorLine(description);
  attempt([] { displayJSONHeader(m_JSON, 1, 2); });
  return kExitDescribed;
}

int reportFailure(const orv::Exception& failure) {
  if (!failure.getDescription().isEmpty()) return reportDescription(failure.getDescription());
  if (failure.getResult() != 0) return reportFatal(failure.getResult());
  attempt([] { displayJSONHeader(m_JSON, 1, 2); });
  return kExitClean;
}

int reportFatal(int code) {
  printErrorLine(s_msgHelper->getResStr("FATAL_ERROR", code));
  return code;
}

void installTerminateHandler() noexcept { std::set_terminate(onTerminate); }
