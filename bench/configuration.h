// What zelk reads.
#pragma once

#include <map>
#include <string>

namespace bench {

// A complete configuration file: no section, handles, a log file. `values` replaces those of keys.
std::string configuration(const std::map<std::string, std::string>& values);

// A scenario of the simulated engine with so many handles, 100 on each file.
std::string scenario(long handles);

}  // namespace bench
