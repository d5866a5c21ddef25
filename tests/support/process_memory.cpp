#include "tests/support/process_memory.h"

#include <fstream>
#include <stdexcept>
#include <string>

namespace testing_support {
namespace {

long statusLine(const std::string& label) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long value = 0;
    if (word == label && status >> value) return value;
  }
  throw std::runtime_error("no " + label + " in /proc/self/status");
}

}  // namespace

long residentMemory() { return statusLine("VmRSS:"); }

long peakResidentMemory() { return statusLine("VmHWM:"); }

void resetPeak() {
  constexpr const char* kResetPeak = "5";
  if (!(std::ofstream("/proc/self/clear_refs") << kResetPeak << std::flush)) {
    throw std::runtime_error("the peak cannot be reset");
  }
}

}  // namespace testing_support
