// The command line of zelk-record.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "companions/shared/command_line.h"

namespace companions::record {

extern const Program kProgram;

struct Options {
  std::string configuration;
  std::optional<std::uint64_t> interval;  // microseconds
  std::uint64_t count = 0;                // moments; 0: without end
  std::string output;                     // a file's name; empty: standard output
  bool utc = false;                       // whether names are made from UTC
  bool sync = true;
  bool wait = false;
  std::uint64_t keep = 0;       // files; 0: all
  std::uint64_t leaveFree = 0;  // bytes
};

// Nothing if there is nothing to do. Throws WrongCommandLine.
std::optional<Options> optionsOf(int argc, char** argv);

}  // namespace companions::record
