#include "tests/limits/simulated_run.h"

#include <fstream>
#include <stdexcept>
#include <string>

namespace limits {
namespace {

long statusLine(const std::string& label) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long value = 0;
    if (word == label && status >> value) return value;
  }
  throw std::runtime_error("no " + label + " in /proc/self/status");
}

}  // namespace

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

long residentMemory() { return statusLine("VmRSS:"); }

long peakResidentMemory() { return statusLine("VmHWM:"); }

void resetPeak() {
  constexpr const char* kResetPeak = "5";
  if (!(std::ofstream("/proc/self/clear_refs") << kResetPeak << std::flush)) {
    throw std::runtime_error("the peak cannot be reset");
  }
}

}  // namespace limits
