// Metrics of the exporter's own process.
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "companions/exporter/metrics.h"

namespace exporter {
namespace {

constexpr double kMicroseconds = 1e-6;

double seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * kMicroseconds;
}

double residentBytes() {
  std::ifstream pages("/proc/self/statm");
  double size = 0;
  double resident = 0;
  pages >> size >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double descriptors() {
  std::error_code unreadable;
  const std::filesystem::directory_iterator list("/proc/self/fd", unreadable);
  return unreadable ? 0 : static_cast<double>(std::distance(begin(list), end(list)));
}

// Taken when the program is loaded.
const std::chrono::duration<double> kStart = std::chrono::system_clock::now().time_since_epoch();

}  // namespace

void addProcess(Metrics& metrics) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  metrics.add(Metric::kExporterBuild, 1,
              {
                  {"version", ZELK_VERSION}
  });
  metrics.add(Metric::kProcessCpu, seconds(usage.ru_utime) + seconds(usage.ru_stime));
  metrics.add(Metric::kProcessMemory, residentBytes());
  metrics.add(Metric::kProcessDescriptors, descriptors());
  metrics.add(Metric::kProcessStart, kStart.count());
}

}  // namespace exporter
