// A moment of one engine as plain values: all answers of the interface at one time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tal/engine.h"

namespace tal::recording {

// The place of a moment in the run of a recorder. Durations are in microseconds.
struct Heading {
  std::string run;             // a UUID, a new one for each run
  std::uint64_t sequence = 1;  // 1, 2, 3, ... within the run
  std::int64_t time = 0;       // when collecting began, microseconds since 1970 UTC
  std::int32_t zone = 0;       // the local time was so many minutes ahead of UTC then
  std::uint64_t elapsed = 0;   // since the run began, by a clock that nobody sets
  std::uint64_t interval = 0;  // as requested
  std::uint64_t missed = 0;    // moments that were skipped since the last one
  std::uint64_t took = 0;      // how long collecting took
  std::string server;          // the server name as configured
};

// The reason why a moment is not complete.
struct Error {
  std::string call;         // the function of the interface
  std::int16_t status = 0;  // what it returned
  std::string text;         // what the status means, for people
};

// A section is absent if it was not requested. In a moment that failed, sections that could not be
// collected completely are absent too.
struct Moment {
  Heading heading;
  std::optional<Information> engine;
  std::optional<Version> version;
  std::optional<std::vector<OpenFile>> files;
  std::optional<std::vector<Client>> clients;
  std::optional<std::vector<SqlConnection>> sqlConnections;
  std::optional<Usage> usage;
  std::optional<Communication> communication;
  std::optional<Error> error;
};

}  // namespace tal::recording
