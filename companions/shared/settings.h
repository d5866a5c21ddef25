// The settings that a companion takes from a configuration file of zelk.
#pragma once

#include <cstdint>
#include <string>

#include "companions/shared/engine.h"

namespace companions {

// The sections that the configuration switches on.
struct Sections {
  bool files = true;
  bool clients = true;
  bool sqlConnections = true;
  bool usage = true;
  bool communication = true;
};

struct Settings {
  Login login;
  std::int32_t refreshRate = 0;  // seconds; 0 if none is set
  Sections sections;
};

// Reads the whole file, which must be complete as zelk wants it. Throws orv::Exception with a
// description that says what is wrong, and orv::ResultException for a file that cannot be read.
[[nodiscard]] Settings readSettings(const std::string& fileName);

}  // namespace companions
