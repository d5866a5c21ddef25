#include "bench/refresh.h"

namespace bench {

Refresh::Refresh(const std::string& server, bool ConfigData::*section) {
  config_.server = orv::String(server);
  config_.user = "zelk";
  config_.fileOutput = true;
  config_.logFileName = "/dev/null";
  config_.showHandles = true;
  processor_ = std::make_unique<MonitorProcessor>(&config_, false);
  processor_->startMonitoring(true, false);  // connects; no section is switched on yet
  processor_->createOutputFormatter();
  config_.*section = true;
}

}  // namespace bench
