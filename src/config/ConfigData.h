// The settings of a run.
#pragma once

#include <cstdint>

#include "orv/String.h"

// The settings of the configuration file, as ConfigFileReader reads them.
class ConfigData {
 public:
  virtual ~ConfigData() = default;

  orv::String server;
  orv::String user;
  orv::String password;            // wiped once the engine is connected
  bool isPasswordExposed = false;  // other users can read the file, and it has a password
  std::int32_t refreshRate = 0;    // seconds, 0 or at least 5; 0: a report when the user asks
  std::int32_t refreshLimit = 0;   // number of refreshes, 0: no limit
  orv::String outputType;          // as it is written in the file
  bool consoleOutput = false;
  bool fileOutput = false;
  orv::String logFileName;
  bool showFiles = false;
  bool showSessions = false;
  bool showConnections = false;
  bool showResources = false;
  bool showCommunications = false;
  bool showHandles = false;
};
