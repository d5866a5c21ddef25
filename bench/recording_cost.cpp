// What a recording costs: CPU and memory of zelk-record and of zelk -JSON for the same handles, the
// speed of reading, and how soon a replay of a large file begins.
//   recording_cost <folder of the programs> [HANDLES]
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "bench/configuration.h"
#include "bench/reports.h"
#include "bench/series.h"
#include "tal/recording/lines.h"
#include "tests/support/temporary_folder.h"

namespace {

using bench::Cost;
using bench::Series;
using testing_support::TemporaryFolder;

constexpr int kRounds = 5;

double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Runs with a scenario of so many handles, in a folder of its own.
class Runs {
 public:
  Runs(std::string programs, long handles) : programs_(std::move(programs)) {
    testing_support::writeFile(folder_ / "s.toml", bench::scenario(handles));
    testing_support::writeFile(folder_ / "zelk.cfg",
                               bench::configuration({
                                   {"SERV", "sim:" + (folder_ / "s.toml").string()},
                                   {"FILE", "YES"                                 },
                                   {"NAME", (folder_ / "log").string()            }
    }));
  }

  [[nodiscard]] Cost report() const {
    return bench::runChecked({programs_ + "/zelk", "-f", configuration(), "-runonce", "-JSON"},
                             bench::Output::kDevNull);
  }
  [[nodiscard]] Cost record() const {
    std::remove(recording().c_str());
    return bench::runChecked(
        {programs_ + "/zelk-record", "-f", configuration(), "-n", "1", "-o", recording()},
        bench::Output::kDevNull);
  }
  [[nodiscard]] std::string recording() const { return folder_ / "r.ndjson"; }

 private:
  [[nodiscard]] std::string configuration() const { return folder_ / "zelk.cfg"; }

  std::string programs_;
  TemporaryFolder folder_;
};

void measureRecording(const Runs& runs, const Runs& empty, long handles) {
  Series report;
  Series record;
  Series ratio;
  long reportMemory = 0;
  long recordMemory = 0;
  const auto perHandle = [handles](const Cost& cost, const Cost& start) {
    return (cost.cpuSeconds - start.cpuSeconds) * 1e9 / static_cast<double>(handles);
  };
  for (int round = 0; round < kRounds; ++round) {
    const Cost reported = runs.report();
    const Cost recorded = runs.record();
    report.add(perHandle(reported, empty.report()));
    record.add(perHandle(recorded, empty.record()));
    ratio.add(perHandle(recorded, empty.record()) / perHandle(reported, empty.report()));
    reportMemory = reported.peakKilobytes;
    recordMemory = recorded.peakKilobytes;
  }
  std::printf(
      "CPU of a handle at %ld: zelk -JSON %.0f ns, zelk-record %.0f ns, ratio %.2f (%.2f to "
      "%.2f)\n",
      handles, report.median(), record.median(), ratio.median(), ratio.least(), ratio.greatest());
  std::printf("memory at %ld handles: zelk -JSON %ld KiB, zelk-record %ld KiB\n", handles,
              reportMemory, recordMemory);
}

void ignore(const std::string& /*complaint*/) {}

void measureReading(const std::string& recording) {
  const std::string line = testing_support::readFile(recording);
  constexpr std::size_t kBytes = 400'000'000;
  const TemporaryFolder folder;
  const std::string path = folder / "many";
  std::string lines;
  while (lines.size() < kBytes) lines += line;
  testing_support::writeFile(path, lines);
  Series speed;
  for (int round = 0; round < kRounds; ++round) {
    tal::recording::RecordingReader reader(path, ignore);
    tal::recording::Moment moment;
    const double before = cpuSeconds();
    while (reader.next(moment)) {
    }
    speed.add(static_cast<double>(lines.size()) * 1e-6 / (cpuSeconds() - before));
  }
  std::printf("reading moments of %zu bytes: %.0f MB/s (%.0f to %.0f)\n", line.size(),
              speed.median(), speed.least(), speed.greatest());
}

// A file of 10 GB whose middle is a hole, which reads as NUL bytes.
void measureLargeFile(const std::string& recording) {
  constexpr off_t kLarge = 10'000'000'000;
  const std::string line = testing_support::readFile(recording);
  const TemporaryFolder folder;
  const std::string path = folder / "large";
  std::string later = "\n" + line;
  later.replace(later.find("\"time\":\"20"), 10, "\"time\":\"21");
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  const auto put = [file](const std::string& text, off_t at) {
    if (::pwrite(file, text.data(), text.size(), at) != static_cast<ssize_t>(text.size())) {
      throw std::runtime_error("the large file cannot be written");
    }
  };
  put(line, 0);
  put(later, kLarge);
  ::close(file);
  const auto seconds = [&](bool atEnd) {
    tal::recording::Moment moment;
    const double before = cpuSeconds();
    tal::recording::RecordingReader reader(path, ignore);
    constexpr std::int64_t kIn2100 = 4'102'444'800'000'000;
    const bool isThere = atEnd ? reader.nextFrom(kIn2100, moment) : reader.next(moment);
    if (!isThere) throw std::runtime_error("the large file has no moment");
    return cpuSeconds() - before;
  };
  std::printf("a file of 10 GB: the first moment after %.1f ms, one at its end after %.1f s\n",
              seconds(false) * 1e3, seconds(true));
}

void measure(const std::string& programs, long handles) {
  const Runs runs(programs, handles);
  const Runs empty(programs, 0);
  measureRecording(runs, empty, handles);
  const Runs usual(programs, 1000);
  static_cast<void>(usual.record());
  measureReading(usual.recording());
  measureReading(runs.recording());
  measureLargeFile(usual.recording());
}

}  // namespace

int main(int argc, char** argv) {
  constexpr long kHandles = 100'000;
  try {
    measure(argc > 1 ? argv[1] : ".", argc > 2 ? std::stol(argv[2]) : kHandles);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "recording_cost: %s\n", failure.what());
    return 1;
  }
}
