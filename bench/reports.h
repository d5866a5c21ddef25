// Reports of a simulated engine with many handles, and the same lines from the floor.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "bench/child.h"
#include "tests/support/temporary_folder.h"

namespace bench {

// One form of a report to one kind of place.
struct Form {
  const char* name;
  bool json;
  bool toFile;
  Output console;  // of the program's standard output
};

// A command that is ready to be run: its files are written until the next one is asked for.
using Command = std::vector<std::string>;

class Reports {
 public:
  Reports(std::string zelk, std::string floor) : zelk_(std::move(zelk)), floor_(std::move(floor)) {}

  // How many handles the engine has; with none, reports have no section.
  void setHandles(long handles);

  Command report(const Form& form);
  // Needs makeLines() for the same form.
  [[nodiscard]] Command floor(const Form& form) const;

  // Makes the lines of the report in this form; returns how many they are.
  std::size_t makeLines(bool json);

  [[nodiscard]] std::string scratch() const { return folder_ / "scratch"; }

 private:
  std::string zelk_;
  std::string floor_;
  testing_support::TemporaryFolder folder_;
  long handles_ = 0;
};

// Runs a command to its end. Throws std::runtime_error when it fails.
Cost runChecked(const Command& command, Output output);

}  // namespace bench
