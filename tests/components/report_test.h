// What a section of the report writes.
#pragma once

#include <string>

#include "monitor/MonitorProcessor.h"
#include "tests/components/component_test.h"

namespace component_tests {

using Section = void (MonitorProcessor::*)(bool json);

// Runs one section over the scripted engine, with the local connection and a log file as output.
class ReportTest : public ComponentTest {
 protected:
  ReportTest();

  // The section's bytes in text or JSON form, without the run header before them.
  std::string textOf(Section section) { return write(section, false); }
  std::string jsonOf(Section section) { return write(section, true); }

  // Lists were made without handle detail, and then it is asked for: the one way to a file or
  // session with an empty list of handles.
  void switchHandleDetailOnAt(const std::string& call);

  ConfigData config_;

 private:
  std::string write(Section section, bool json);

  testing_support::TemporaryFolder folder_;
};

}  // namespace component_tests
