// What the program writes in text before its first section, times masked.
#pragma once

#include <string>

namespace program_tests {

// The settings as they are shown; as they stand here, those of configuration().
struct Shown {
  std::string server = "engine";
  std::string rate = "0";
  std::string limit = "0";
  std::string output = "CONSOLE";
  std::string file = "monitor.log";
  bool files = false;
  bool sessions = false;
  bool connections = false;
  bool resources = false;
  bool communication = false;
  bool handles = false;
};

// The settings, and the lines of an engine without a version.
std::string runHeader(const Shown& shown);

// The resource section of an engine whose figures are all 0.
inline constexpr const char* kIdleResources =
    "==============\n"
    "RESOURCE USAGE\n"
    "==============\n"
    "Engine Uptime: 0 day  00:00:00 (hh:mm:ss)\n"
    "\n"
    "\t                       Current\t\tPeak\t\tMaximum\n"
    "\tFiles:                 0\t\t0\t\tunlimited\n"
    "\tHandles:               0\t\t0\t\tunlimited\n"
    "\tClients:               0\t\t0\t\tunlimited\n"
    "\tWorker Threads:        0\t\t0\t\tunlimited\n"
    "\tUser Count:            0\t\t0\t\t0\n"
    "\tSession Count:         0\t\t0\t\tn/a\n"
    "\tData in Use MB:        0\t\t0\t\tn/a\n"
    "\tTransactions:          0\t\t0\t\tunlimited\n"
    "\tLocks:                 0\t\t0\t\tunlimited\n";

}  // namespace program_tests
