#include "tests/program/limits/simulated_run.h"

namespace limits {

Cost costOf(const std::function<void()>& action) {
  const std::uint64_t allocations = counts().allocations;
  const std::uint64_t engineCalls = counts().engineCalls;
  action();
  return {counts().allocations - allocations, counts().engineCalls - engineCalls};
}

SimulatedRun::SimulatedRun(std::string_view scenario, bool json) {
  testing_support::writeFile(folder_ / "engine.toml", scenario);
  config_.server = orv::String("sim:" + (folder_ / "engine.toml").string());
  config_.fileOutput = true;
  config_.logFileName = "/dev/null";
  processor_ = std::make_unique<MonitorProcessor>(&config_, json);
  processor_->startMonitoring(true, json);  // no section yet: what is measured comes later
  processor_->createOutputFormatter();
  config_.showFiles = true;
  config_.showSessions = true;
  config_.showConnections = true;
  config_.showResources = true;
  config_.showCommunications = true;
  config_.showHandles = true;
}

}  // namespace limits
