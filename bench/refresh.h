// Refreshes of one section of a report, in this process.
#pragma once

#include <memory>
#include <string>

#include "config/ConfigData.h"
#include "monitor/MonitorProcessor.h"

namespace bench {

// zelk's own classes, connected as zelk; the report goes to /dev/null.
class Refresh {
 public:
  // `section` is one of the switches of ConfigData; it is off while this connects.
  Refresh(const std::string& server, bool ConfigData::*section);

  void run() { processor_->processMonitorRequests(false); }

 private:
  ConfigData config_;
  std::unique_ptr<MonitorProcessor> processor_;
};

}  // namespace bench
