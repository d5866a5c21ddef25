// A run of the program's classes over the simulated engine, without a process of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "config/ConfigData.h"
#include "monitor/MonitorProcessor.h"
#include "tests/program/limits/shim/counts.h"
#include "tests/support/temporary_folder.h"

namespace limits {

// What one action cost.
struct Cost {
  std::uint64_t allocations;
  std::uint64_t engineCalls;
};

Cost costOf(const std::function<void()>& action);

// Connected to an engine with this scenario, all sections with handles switched on; writes to
// /dev/null.
class SimulatedRun {
 public:
  SimulatedRun(std::string_view scenario, bool json);

  [[nodiscard]] MonitorProcessor& processor() { return *processor_; }
  [[nodiscard]] ConfigData& config() { return config_; }
  // What SERV would be.
  [[nodiscard]] const orv::String& server() const { return config_.server; }

 private:
  testing_support::TemporaryFolder folder_;
  ConfigData config_;
  std::unique_ptr<MonitorProcessor> processor_;
};

}  // namespace limits
