// What a run on the small engine must come to when one of its calls returns a status: the calls,
// and what is left to report.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "tests/program/fake/faults/effects.h"

namespace program_tests {

struct Fault {
  std::string function;
  int call;  // from 1
  int status;
};

enum class Stage { kConnect, kFiles, kSessions, kConnections, kResources, kCommunication };

// One report with all sections, by the rules of the interface.
class ExpectedRun {
 public:
  ExpectedRun(std::optional<Fault> fault, bool handles);

  // A line for each call, as the fake engine writes them.
  [[nodiscard]] const std::string& trace() const { return trace_; }
  [[nodiscard]] int callsOf(const std::string& function) const;

  // The scenario of an engine that has what this run reports and returns no status.
  [[nodiscard]] const std::string& reported() const { return reported_; }

  // Where the status ended the run, if it did.
  [[nodiscard]] std::optional<Stage> failure() const { return failure_; }

 private:
  struct Failed {};

  // Throws Failed if the call's status ends the run.
  Effect call(const std::string& function, const std::string& arguments);

  void readEverything();
  void readFiles();
  void readClients();
  void readConnections();
  // Returns how many handles of the file or client are left.
  int readHandles(const std::string& data, const std::string& info, const std::string& owner);
  // Calls read(index) until it returns false or the entries end, then releases the snapshot,
  // whether that ended well or not.
  template <typename Read>
  void readAndRelease(const std::string& release, const Read& read);

  std::optional<Fault> fault_;
  bool handles_;
  std::map<std::string, int> calls_;
  std::string trace_;
  std::string reported_;
  Stage stage_ = Stage::kConnect;
  std::optional<Stage> failure_;
};

}  // namespace program_tests
