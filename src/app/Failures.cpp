#include "app/Failures.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <utility>

#include "monitor/JsonFrame.h"
#include "output/ProcessWide.h"
#include "util/Utils.h"

namespace {

constexpr int kExitClean = 0;
constexpr int kExitDescribed = 1;

// If this write fails, no other place is left to report it.
template <class Report>
void attempt(Report report) {
  try {
    report();
  } catch (const orv::io::IoException&) {
    return;
  }
}

// As the user reads it on standard error.
orv::String line(const char* jsonName, orv::String text) {
  if (!m_JSON) return text;
  Utils::addBackslashChars(text, '"');
  return "\t\"" + orv::String(jsonName) + "\": \"" + text + "\"";
}

orv::String errorLine(orv::String text) { return line("error", std::move(text)); }

void printErrorLine(const orv::String& text) {
  attempt([] { displayJSONHeader(m_JSON, 0, 0); });
  attempt([&text] { s_errpw->println(errorLine(text)); });
}

orv::String fatalText(int code) {
  if (!s_msgHelper && code == kExitOutOfMemory) return "zelk: out of memory";
  if (!s_msgHelper) return "zelk: failure " + orv::String::valueOf(code);
  return s_msgHelper->getResStr("FATAL_ERROR", code);
}

// Prints the last line of a process that cannot report in the ordinary way; returns its exit code.
int sayLastWords(int code, const orv::String& text) {
  std::fprintf(stderr, "%s\n", errorLine(text).toBytes().c_str());
  return code;
}

int sayLastWordsOn(const orv::Exception& failure) {
  if (!failure.getDescription().isEmpty()) {
    return sayLastWords(kExitDescribed, failure.getDescription());
  }
  return sayLastWords(failure.getResult(), fatalText(failure.getResult()));
}

int sayLastWords() {
  const std::exception_ptr exception = std::current_exception();
  // There is no exception if there was no memory to make one.
  if (!exception) return sayLastWords(kExitOutOfMemory, fatalText(kExitOutOfMemory));
  try {
    std::rethrow_exception(exception);
  } catch (const std::bad_alloc&) {
    return sayLastWords(kExitOutOfMemory, fatalText(kExitOutOfMemory));
  } catch (const orv::Exception& failure) {
    return sayLastWordsOn(failure);
  } catch (...) {
    return sayLastWords(kExitUnknownFailure, fatalText(kExitUnknownFailure));
  }
}

// Prints the message without allocating memory, and ends the process.
[[noreturn]] void endOutOfMemory() {
  std::fputs(m_JSON ? "\t\"error\": \"zelk: out of memory\"\n" : "zelk: out of memory\n", stderr);
  std::_Exit(kExitOutOfMemory);
}

[[noreturn]] void onTerminate() {
  static std::atomic<bool> s_isEnding{false};
  if (s_isEnding.exchange(true)) endOutOfMemory();  // the last message itself has failed
  try {
    std::_Exit(sayLastWords());
  } catch (...) {
    endOutOfMemory();
  }
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

void reportWarning(const orv::String& text) {
  attempt([&text] { s_errpw->println(line("warning", text)); });
}

void installTerminateHandler() noexcept { std::set_terminate(onTerminate); }
