// What a report costs, compared with the floor of one write(2) for each of the same lines, and what
// a start costs, compared with that of a program that does nothing. Both sides take turns in
// the same run. At the end a table shows what was aimed at.
//   report_cost ZELK FLOOR NOTHING [MOST_HANDLES]
#include <cstddef>
#include <cstdio>
#include <exception>
#include <string>

#include "bench/aims.h"
#include "bench/child.h"
#include "bench/instructions.h"
#include "bench/reports.h"
#include "bench/series.h"

namespace {

using bench::Aims;
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

// What a line may cost at most, over the floor's.
constexpr double kFileRatio = 1.15;
constexpr double kPipeRatio = 1.25;
constexpr double kDevNullRatio = 1.4;
constexpr double kInstructionsOfLine = 400;
constexpr double kStartMilliseconds = 1.2;
constexpr double kGrowth = 1.05;
constexpr double kBytesOfHandle = 120;

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

Measured measureStart(Reports& reports, const Command& nothing, Aims& aims) {
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
  aims.add("start and an empty report, ms", kStartMilliseconds, zelk.median() * kMilliseconds);
  return {zelk.median(), cost.peakKilobytes};
}

void addRatio(Aims& aims, const Form& form, double ratio) {
  if (form.toFile) {
    aims.add("CPU of a line over the floor's, file", kFileRatio, ratio);
  } else if (form.console == Output::kPipe) {
    aims.add("CPU of a line over the floor's, pipe", kPipeRatio, ratio);
  } else {
    aims.add("CPU of a line over the floor's, /dev/null", kDevNullRatio, ratio);
  }
}

Measured measureForm(Reports& reports, const Form& form, const Size& size, std::size_t lines,
                     Aims& aims) {
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
  addRatio(aims, form, ratio.median());
  return {zelk.median(), cost.peakKilobytes};
}

Measured measureSize(Reports& reports, const Size& size, Aims& aims) {
  reports.setHandles(size.handles);
  Measured textToFile;
  std::size_t lines = 0;
  for (const Form& form : kForms) {
    if (form.toFile) lines = reports.makeLines(form.json);
    const Measured measured = measureForm(reports, form, size, lines, aims);
    if (&form == &kTextToFile) textToFile = measured;
  }
  return textToFile;
}

// Of many lines, with what the start costs taken off.
void countInstructions(Reports& reports, Aims& aims) {
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
    aims.add("zelk's own instructions a line", kInstructionsOfLine, (report - start) / lines);
  }
}

double perHandle(const Measured& measured, const Measured& start, long handles) {
  return (measured.cpuSeconds - start.cpuSeconds) / static_cast<double>(handles);
}

void compareSizes(const Size& size, const Measured& measured, const Measured& fewest,
                  const Measured& start, Aims& aims) {
  const double growth =
      perHandle(measured, start, size.handles) / perHandle(fewest, start, kFewestHandles);
  const double held = static_cast<double>(measured.peakKilobytes - start.peakKilobytes) * 1024 /
                      static_cast<double>(size.handles);
  std::printf("cost of a handle at %ld over at %ld: %.2f\n", size.handles, kFewestHandles, growth);
  std::printf("peak memory of a handle held at %ld: %.0f bytes\n", size.handles, held);
  aims.add("cost of a handle among many over among few", kGrowth, growth);
  aims.add("peak memory of a handle held, bytes", kBytesOfHandle, held);
}

void measureAll(Reports& reports, const Command& nothing, long mostHandles) {
  Aims aims;
  const Measured start = measureStart(reports, nothing, aims);
  countInstructions(reports, aims);
  std::printf(" handles  report, to            lines  ns/line  floor ns  ratio of CPU\n");
  const Measured fewest = measureSize(reports, kSizes[0], aims);
  for (const Size& size : kSizes) {
    if (size.handles == kFewestHandles || size.handles > mostHandles) continue;
    compareSizes(size, measureSize(reports, size, aims), fewest, start, aims);
  }
  aims.print();
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
