// What the fake engine does that no scenario can say, read from a file with a line for each of
// these; blank lines and lines that begin with "#" are skipped:
//
//   announce FUNCTION N              the count that a ...Data function returns, whatever follows
//   status FUNCTION CALL N           what this function's call with that number, from 1, returns
//   poke FUNCTION CALL OFFSET HEX    these bytes are put into the structure that the call filled
//   throw FUNCTION CALL WHAT         that call throws: "memory" (std::bad_alloc) or "other"
//   pause FUNCTION CALL FIFO         that call waits until somebody opens the FIFO for writing
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace fake_engine {

// A function and the number of its call, counted from 1.
using CallNumber = std::pair<std::string, int>;

struct Poke {
  std::size_t offset;
  std::string bytes;
};

struct Disturbances {
  std::map<std::string, std::uint32_t> counts;
  std::map<CallNumber, std::int16_t> statuses;
  std::multimap<CallNumber, Poke> pokes;
  std::map<CallNumber, std::string> exceptions;
  std::map<CallNumber, std::string> pauses;
};

// Ends the process with a message on standard error if a line cannot be understood: a test with a
// wrong file must not pass.
Disturbances readDisturbances(const std::string& path);

}  // namespace fake_engine
