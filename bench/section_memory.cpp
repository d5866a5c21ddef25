// What a section of very many handles leaves behind: the resident memory of a process before it, at
// the most, and after it, as a run has it that waits for its next refresh.
//   section_memory [HANDLES]
#include <cstdio>
#include <exception>
#include <string>

#include "bench/configuration.h"
#include "bench/refresh.h"
#include "orv/Exception.h"
#include "orv/Process.h"
#include "tests/support/process_memory.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing_support::peakResidentMemory;
using testing_support::resetPeak;
using testing_support::residentMemory;

void measureRefresh(bench::Refresh& refresh, long handles) {
  const long before = residentMemory();
  resetPeak();
  refresh.run();
  const long peak = peakResidentMemory();
  orv::returnFreeMemory();
  std::printf("a section of %ld handles, KiB: before %ld, at the most %ld, after %ld\n", handles,
              before, peak, residentMemory());
}

void measure(long handles) {
  constexpr int kRefreshes = 3;
  const testing_support::TemporaryFolder folder;
  const std::string path = folder / "scenario.toml";
  testing_support::writeFile(path, bench::scenario(handles));
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
