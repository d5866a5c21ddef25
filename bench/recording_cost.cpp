// What a recording costs, as a table: processor time and memory of zelk-record and of zelk -JSON
// for the same handles, the speed of reading, and how soon a replay of a large file begins. It
// needs 10 GB in the folder for temporary files.
//   recording_cost <folder of the programs> [HANDLES]
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
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
    configure("sim:" + (folder_ / "s.toml").string());
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
  // A report of a recording.
  [[nodiscard]] Cost replay(const std::string& recording) const {
    configure("replay:" + recording);
    return report();
  }
  [[nodiscard]] std::string recording() const { return folder_ / "r.ndjson"; }

 private:
  void configure(const std::string& server) const {
    testing_support::writeFile(
        folder_ / "zelk.cfg",
        bench::configuration({
            {"SERV", server                    },
            {"FILE", "YES"                     },
            {"NAME", (folder_ / "log").string()}
    }));
  }
  [[nodiscard]] std::string configuration() const { return folder_ / "zelk.cfg"; }

  std::string programs_;
  TemporaryFolder folder_;
};

// A line of the table.
void print(const std::string& figure, const char* aim, const std::string& result) {
  std::printf("| %s | %s | %s |\n", figure.c_str(), aim, result.c_str());
  std::fflush(stdout);
}

std::string text(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string range(const char* format, const Series& series) {
  return text(format, series.median()) + " (" + text(format, series.least()) + " to " +
         text(format, series.greatest()) + ")";
}

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
  const std::string many = std::to_string(handles) + " handles";
  print("processor time of one of " + many + ", zelk -JSON to a file", "",
        range("%.0f ns", report));
  print("the same, zelk-record to a file", "", range("%.0f ns", record));
  print("the second over the first", "0.5", range("%.2f", ratio));
  print("peak memory at " + many + ", zelk -JSON", "", std::to_string(reportMemory) + " KiB");
  print("the same, zelk-record", "not more", std::to_string(recordMemory) + " KiB");
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
  print("reading moments of " + std::to_string(line.size()) + " bytes", "200 MB/s",
        range("%.0f MB/s", speed));
}

// A recording of 10 GB, of which the last moment alone is of the year 2100.
class LargeRecording {
 public:
  explicit LargeRecording(const std::string& line)
      : file_(::open(path().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)) {
    constexpr std::size_t kLarge = 10'000'000'000;
    std::string last = line;
    last.replace(last.find("\"time\":\"20"), 10, "\"time\":\"21");
    for (std::size_t size = 0; size < kLarge; size += line.size()) put(line);
    put(last);
    if (::fdatasync(file_) != 0) throw std::runtime_error("the large file cannot be written");
  }
  LargeRecording(const LargeRecording&) = delete;
  LargeRecording& operator=(const LargeRecording&) = delete;
  ~LargeRecording() { ::close(file_); }

  [[nodiscard]] std::string path() const { return folder_ / "large.ndjson"; }

  // Makes the next read come from the disk.
  void forget() const { ::posix_fadvise(file_, 0, 0, POSIX_FADV_DONTNEED); }

 private:
  void put(const std::string& text) const {
    if (::write(file_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
      throw std::runtime_error("the large file cannot be written");
    }
  }

  TemporaryFolder folder_;
  int file_;
};

// Opens the recording at its first moment, or at its last one; returns the time that passes and
// that of the processor.
std::string timesToOpen(const LargeRecording& recording, bool atEnd) {
  const auto begin = std::chrono::steady_clock::now();
  const double before = cpuSeconds();
  tal::recording::Moment moment;
  tal::recording::RecordingReader reader(recording.path(), ignore);
  constexpr std::int64_t kIn2100 = 4'102'444'800'000'000;
  const bool isThere = atEnd ? reader.nextFrom(kIn2100, moment) : reader.next(moment);
  if (!isThere) throw std::runtime_error("the large file has no moment");
  const double used = cpuSeconds() - before;
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
  return atEnd ? text("%.1f s", passed.count()) + ", of the processor " + text("%.1f s", used)
               : text("%.1f ms", passed.count() * 1e3) + ", of the processor " +
                     text("%.1f ms", used * 1e3);
}

void measureLargeFile(const Runs& runs) {
  const LargeRecording recording(testing_support::readFile(runs.recording()));
  for (const char* const from : {"from the disk", "from memory"}) {
    if (from[5] == 't') recording.forget();
    print(std::string("first moment of 10 GB, ") + from, "50 ms", timesToOpen(recording, false));
    print(std::string("the one at its end, by its time, ") + from, "10 s",
          timesToOpen(recording, true));
  }
  const Cost replay = runs.replay(recording.path() + "@2100-01-01T00:00:00Z");
  print("peak memory of zelk on that one", "", std::to_string(replay.peakKilobytes) + " KiB");
}

void measure(const std::string& programs, long handles) {
  const Runs runs(programs, handles);
  const Runs empty(programs, 0);
  std::printf("| | Aim | Measured |\n|---|---|---|\n");
  measureRecording(runs, empty, handles);
  const Runs usual(programs, 1000);
  static_cast<void>(usual.record());
  measureLargeFile(usual);  // before this process is large: a child's peak begins with its parent's
  measureReading(usual.recording());
  measureReading(runs.recording());
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
