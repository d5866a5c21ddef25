// Runs the program thousands of times, each time with a fault.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace limits {

// The report's form and where it goes, as OUTP has it.
struct Form {
  const char* name;
  bool json;
  const char* output;
  // Refreshes at a fixed rate, without a limit, instead of one report.
  bool timed = false;
};

inline constexpr Form kTextToBoth = {"TextToBoth", false, "BOTH"};
inline constexpr Form kJsonToBoth = {"JsonToBoth", true, "BOTH"};

// For the names of parametrised tests and for their messages.
std::string nameOf(const ::testing::TestParamInfo<Form>& form);
void PrintTo(const Form& form, std::ostream* out);

// What a run did, at a time that is always the same.
struct Report {
  testing_support::Ending ending;
  std::uint64_t allocations = 0;  // through operator new, from the beginning of main on
  // Begun and not ended.
  std::int64_t starts = 0;
  std::int64_t connections = 0;
  std::int64_t snapshots = 0;
  std::string output;
  std::string error;
  std::string log;
};

// A small simulated engine with two entries in each list, two handles on each, and a configuration
// with all sections; the log is the file "zelk.log".
class ProgramRuns {
 public:
  explicit ProgramRuns(const Form& form);

  // One run. The faults are those of shim/server.cpp.
  Report run(const std::string& fault, std::uint64_t number);

 private:
  testing_support::TemporaryFolder folder_;
  testing_support::Process server_;
  std::size_t answered_ = 0;  // bytes of the server's output
};

// A line as standard error has it.
std::string errorLine(const Form& form, const std::string& text);

// True if `part` is a number of whole lines from the beginning of `whole`.
bool areFirstLinesOf(std::string_view part, std::string_view whole);

}  // namespace limits
