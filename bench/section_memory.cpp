// What a section of very many handles leaves behind: the resident memory of a process before it, at
// the most, and after it, as a run has it that waits for its next refresh.
//   section_memory [HANDLES]
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>

#include "bench/configuration.h"
#include "bench/refresh.h"
#include "bench/work_folder.h"
#include "orv/Exception.h"
#include "orv/Functions.h"

namespace {

// In KiB.
long statusLine(const std::string& label) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long value = 0;
    if (word == label && status >> value) return value;
  }
  throw std::runtime_error("no " + label + " in /proc/self/status");
}

void resetPeak() {
  constexpr const char* kResetPeak = "5";
  std::ofstream("/proc/self/clear_refs") << kResetPeak;
}

void measureRefresh(bench::Refresh& refresh, long handles) {
  const long before = statusLine("VmRSS:");
  resetPeak();
  refresh.run();
  const long peak = statusLine("VmHWM:");
  orv::returnFreeMemory();
  std::printf("a section of %ld handles, KiB: before %ld, at the most %ld, after %ld\n", handles,
              before, peak, statusLine("VmRSS:"));
}

void measure(long handles) {
  constexpr int kRefreshes = 3;
  const bench::WorkFolder folder;
  const std::string path = folder.write("scenario.toml", bench::scenario(handles));
  bench::Refresh refresh("sim:" + path, &ConfigData::showFiles);
  for (int i = 0; i < kRefreshes; ++i) measureRefresh(refresh, handles);
}

}  // namespace

int main(int argc, char** argv) {
  constexpr long kHandles = 1'000'000;
  try {
    measure(argc > 1 ? std::stol(argv[1]) : kHandles);
    return 0;
  } catch (const orv::Exception& failure) {
    std::fprintf(stderr, "section_memory: %s\n", failure.getDescription().toBytes().c_str());
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "section_memory: %s\n", failure.what());
  }
  return 1;
}
