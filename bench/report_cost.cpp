// What a report costs, compared with the floor of one write(2) for each of the same lines, and what
// a start costs, compared with that of a program that does nothing. Measured in the same run, turn
// by turn.
//   report_cost ZELK FLOOR NOTHING [MOST_HANDLES]
#include <cstddef>
#include <cstdio>
#include <exception>
#include <string>

#include "bench/child.h"
#include "bench/instructions.h"
#include "bench/reports.h"
#include "bench/series.h"

namespace {

using bench::Command;
using bench::Cost;
using bench::Form;
using bench::instructionsOf;
using bench::Output;
using bench::Reports;
using bench::runChecked;
using bench::Series;

constexpr double kMilliseconds = 1e3;
constexpr double kNanoseconds = 1e9;
constexpr double kMillion = 1e6;
constexpr int kStarts = 40;
constexpr long kFewestHandles = 10'000;

constexpr Form kForms[] = {
    {"text, file",      false, true,  Output::kDevNull},
    {"text, pipe",      false, false, Output::kPipe   },
    {"text, /dev/null", false, false, Output::kDevNull},
    {"JSON, file",      true,  true,  Output::kDevNull},
    {"JSON, pipe",      true,  false, Output::kPipe   },
    {"JSON, /dev/null", true,  false, Output::kDevNull},
};
constexpr const Form& kTextToFile = kForms[0];

// What takes longer is repeated less often.
struct Size {
  long handles;
  int repetitions;
};
constexpr Size kSizes[] = {
    {kFewestHandles, 15},
    {100'000,        5 },
    {1'000'000,      3 },
};

// Of a text report to a file.
struct Measured {
  double cpuSeconds = 0;   // the median
  long peakKilobytes = 0;  // the last
};

void printStart(const char* what, const Command& command, const Series& cpu,
                const Reports& reports) {
  std::printf("%-28s %6.2f (%.2f to %.2f)  %8.2f\n", what, cpu.median() * kMilliseconds,
              cpu.least() * kMilliseconds, cpu.greatest() * kMilliseconds,
              instructionsOf(command, reports.scratch()) / kMillion);
}

Measured measureStart(Reports& reports, const Command& nothing) {
  reports.setHandles(0);
  const Command report = reports.report(kTextToFile);
  Series floor;
  Series zelk;
  Cost cost;
  for (int i = 0; i < kStarts; ++i) {
    floor.add(runChecked(nothing, Output::kDevNull).cpuSeconds);
    cost = runChecked(report, Output::kDevNull);
    zelk.add(cost.cpuSeconds);
  }
  std::printf("start, %d turns                ms of CPU        million instructions\n", kStarts);
  printStart("a C++ program with a thread", nothing, floor, reports);
  printStart("zelk, an empty report", report, zelk, reports);
  return {zelk.median(), cost.peakKilobytes};
}

Measured measureForm(Reports& reports, const Form& form, const Size& size, std::size_t lines) {
  const Command report = reports.report(form);
  const Command least = reports.floor(form);
  Series zelk;
  Series floor;
  Series ratio;
  Cost cost;
  for (int i = 0; i < size.repetitions; ++i) {
    cost = runChecked(report, form.console);
    zelk.add(cost.cpuSeconds);
    const double floorSeconds = runChecked(least, form.console).cpuSeconds;
    floor.add(floorSeconds);
    ratio.add(cost.cpuSeconds / floorSeconds);
  }
  const double perLine = kNanoseconds / static_cast<double>(lines);
  std::printf("%8ld  %-16s %9zu  %7.0f  %8.0f  %5.2f (%.2f to %.2f)\n", size.handles, form.name,
              lines, zelk.median() * perLine, floor.median() * perLine, ratio.median(),
              ratio.least(), ratio.greatest());
  std::fflush(stdout);
  return {zelk.median(), cost.peakKilobytes};
}

Measured measureSize(Reports& reports, const Size& size) {
  reports.setHandles(size.handles);
  Measured textToFile;
  std::size_t lines = 0;
  for (const Form& form : kForms) {
    if (form.toFile) lines = reports.makeLines(form.json);
    const Measured measured = measureForm(reports, form, size, lines);
    if (&form == &kTextToFile) textToFile = measured;
  }
  return textToFile;
}

// Of many lines, with what the start costs taken off.
void countInstructions(Reports& reports) {
  for (const bool json : {false, true}) {
    const Form form{"", json, true, Output::kDevNull};
    reports.setHandles(0);
    const double start = instructionsOf(reports.report(form), reports.scratch());
    reports.setHandles(kFewestHandles);
    const auto lines = static_cast<double>(reports.makeLines(json));
    const double report = instructionsOf(reports.report(form), reports.scratch());
    const double floor = instructionsOf(reports.floor(form), reports.scratch());
    std::printf("instructions a line, %s: zelk %.0f, floor %.0f\n", json ? "JSON" : "text",
                (report - start) / lines, floor / lines);
  }
}

double perHandle(const Measured& measured, const Measured& start, long handles) {
  return (measured.cpuSeconds - start.cpuSeconds) / static_cast<double>(handles);
}

void measureAll(Reports& reports, const Command& nothing, long mostHandles) {
  const Measured start = measureStart(reports, nothing);
  countInstructions(reports);
  std::printf(" handles  report, to            lines  ns/line  floor ns  ratio of CPU\n");
  const Measured fewest = measureSize(reports, kSizes[0]);
  for (const Size& size : kSizes) {
    if (size.handles == kFewestHandles || size.handles > mostHandles) continue;
    const Measured measured = measureSize(reports, size);
    const long held = (measured.peakKilobytes - start.peakKilobytes) * 1024;
    std::printf(
        "cost of a handle at %ld over at %ld: %.2f\n", size.handles, kFewestHandles,
        perHandle(measured, start, size.handles) / perHandle(fewest, start, kFewestHandles));
    std::printf("peak memory of a handle held at %ld: %.0f bytes\n", size.handles,
                static_cast<double>(held) / static_cast<double>(size.handles));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fputs("usage: report_cost ZELK FLOOR NOTHING [MOST_HANDLES]\n", stderr);
    return 2;
  }
  try {
    Reports reports(argv[1], argv[2]);
    constexpr long kMostHandles = 1'000'000;
    measureAll(reports, {argv[3]}, argc > 4 ? std::stol(argv[4]) : kMostHandles);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "report_cost: %s\n", failure.what());
    return 1;
  }
}
