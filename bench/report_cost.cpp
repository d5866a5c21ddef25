// What a report costs, beside the floor of one write(2) for each of the same lines, measured in the
// same run, turn by turn.
//   report_cost ZELK FLOOR [HANDLES [REPETITIONS]]
#include <sys/types.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/child.h"
#include "bench/series.h"

namespace {

using bench::Cost;
using bench::Output;
using bench::Series;

constexpr long kHandlesPerFile = 100;

// A folder for the run's files.
class WorkFolder {
 public:
  WorkFolder()
      : path_(std::filesystem::temp_directory_path() / ("zelk-bench-" + std::to_string(getpid()))) {
    std::filesystem::create_directory(path_);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;
  ~WorkFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] std::string file(const std::string& name) const { return path_ / name; }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(file(name), std::ios::binary) << text;
  }

 private:
  std::filesystem::path path_;
};

std::string scenarioOf(long handles) {
  return "[[file]]\nname = '/data/shop/orders_{n}.dat'\ncount = " +
         std::to_string(handles / kHandlesPerFile) +
         "\npage_size = 4096\nread_only = 'no'\n"
         "[[file.handle]]\nclient = 'app01@shop'\ncount = " +
         std::to_string(kHandlesPerFile) + "\nopen_mode = 'normal'\nrecord_lock = 'single'\n";
}

std::string configurationOf(const std::string& scenario, const std::string& output,
                            const std::string& log, bool withFiles) {
  return "SERV=sim:" + scenario + "\nUSER=\nPASS=\nREFR=0\nLIMI=0\nOUTP=" + output +
         "\nNAME=" + log + "\nFILE=" + (withFiles ? "YES" : "NO") +
         "\nSESS=NO\nCONN=NO\nRESO=NO\nCOMM=NO\nHAND=YES\n";
}

Cost runChecked(const std::vector<std::string>& command, Output output) {
  const Cost cost = bench::run(command, output);
  if (cost.exitStatus != 0) throw std::runtime_error(command.front() + " failed");
  return cost;
}

std::size_t linesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::size_t lines = 0;
  for (std::string line; std::getline(file, line);) ++lines;
  return lines;
}

// One kind of report to one kind of place.
struct Case {
  const char* name;
  bool json;
  const char* output;  // the key OUTP
  Output console;
};

constexpr Case kCases[] = {
    {"text, file",      false, "FILE",    Output::kDevNull},
    {"text, pipe",      false, "CONSOLE", Output::kPipe   },
    {"text, /dev/null", false, "CONSOLE", Output::kDevNull},
    {"JSON, file",      true,  "FILE",    Output::kDevNull},
    {"JSON, pipe",      true,  "CONSOLE", Output::kPipe   },
    {"JSON, /dev/null", true,  "CONSOLE", Output::kDevNull},
};

class Bench {
 public:
  Bench(std::string zelk, std::string floor, int repetitions)
      : zelk_(std::move(zelk)), floor_(std::move(floor)), repetitions_(repetitions) {}

  // Prints a row for each case; returns the least CPU seconds of a text report to a file.
  double measureReports(long handles) {
    folder_.write("scenario.toml", scenarioOf(handles));
    double textToFile = 0;
    for (const Case& row : kCases) {
      const double seconds = measureCase(row, handles);
      if (textToFile == 0) textToFile = seconds;
    }
    return textToFile;
  }

  // CPU seconds and memory of a report with no section at all.
  Cost measureIdle() {
    folder_.write("scenario.toml", "");
    folder_.write("zelk.cfg", configurationOf(folder_.file("scenario.toml"), "FILE",
                                              folder_.file("zelk.log"), false));
    Series cpu;
    Cost cost;
    for (int i = 0; i < repetitions_ * 4; ++i) {
      cost = runChecked(command(false), Output::kDevNull);
      cpu.add(cost.cpuSeconds);
    }
    std::printf("start and empty report: %.1f ms CPU (%.1f to %.1f)\n", cpu.median() * 1e3,
                cpu.least() * 1e3, cpu.greatest() * 1e3);
    return cost;
  }

  [[nodiscard]] long peakKilobytes() const { return peakKilobytes_; }

 private:
  std::vector<std::string> command(bool json) const {
    std::vector<std::string> words{zelk_, "-f", folder_.file("zelk.cfg"), "-runonce"};
    if (json) words.emplace_back("-JSON");
    return words;
  }

  double measureCase(const Case& row, long handles) {
    const std::string log = folder_.file("zelk.log");
    const bool toFile = std::string(row.output) == "FILE";
    const auto configure = [&](const char* output) {
      folder_.write("zelk.cfg", configurationOf(folder_.file("scenario.toml"), output, log, true));
    };
    configure("FILE");
    runChecked(command(row.json), Output::kDevNull);
    const std::string lines = folder_.file("lines");
    std::filesystem::rename(log, lines);
    const std::size_t count = linesOf(lines);
    configure(row.output);

    Series zelk;
    Series floor;
    Series ratio;
    for (int i = 0; i < repetitions_; ++i) {
      const Cost report = runChecked(command(row.json), row.console);
      const Cost least = runChecked({floor_, lines, toFile ? log : "-"}, row.console);
      peakKilobytes_ = report.peakKilobytes;
      zelk.add(report.cpuSeconds);
      floor.add(least.cpuSeconds);
      ratio.add(report.cpuSeconds / least.cpuSeconds);
    }
    const double perLine = 1e9 / static_cast<double>(count);
    std::printf("%8ld  %-16s %9zu  %8.0f  %8.0f  %6.2f (%.2f to %.2f)\n", handles, row.name, count,
                zelk.median() * perLine, floor.median() * perLine, ratio.median(), ratio.least(),
                ratio.greatest());
    std::fflush(stdout);
    return zelk.least();
  }

  std::string zelk_;
  std::string floor_;
  int repetitions_;
  long peakKilobytes_ = 0;
  WorkFolder folder_;
};

void runAll(Bench& bench, long handles) {
  const Cost idle = bench.measureIdle();
  std::printf(" handles  report, to            lines   ns/line  floor ns  ratio of CPU\n");
  const long fewer = handles / 100;
  const double small = bench.measureReports(fewer);
  const double large = bench.measureReports(handles);
  const double held = static_cast<double>(bench.peakKilobytes() - idle.peakKilobytes) * 1024;
  std::printf("cost of a handle at %ld over at %ld: %.2f\n", handles, fewer,
              (large / static_cast<double>(handles)) / (small / static_cast<double>(fewer)));
  std::printf("peak memory of a handle held: %.0f bytes\n", held / static_cast<double>(handles));
}

}  // namespace

int main(int argc, char** argv) {
  constexpr long kHandles = 1'000'000;
  constexpr int kRepetitions = 5;
  if (argc < 3) {
    std::fputs("usage: report_cost ZELK FLOOR [HANDLES [REPETITIONS]]\n", stderr);
    return 2;
  }
  try {
    Bench bench(argv[1], argv[2], argc > 4 ? std::atoi(argv[4]) : kRepetitions);
    runAll(bench, argc > 3 ? std::atol(argv[3]) : kHandles);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "report_cost: %s\n", failure.what());
    return 1;
  }
}
