// A configuration that cannot be used.
#pragma once

#include <utility>

#include "orv/Exception.h"

// Ends the run: its description, a line of the message bundle, on standard error, exit code 1.
class ConfigException : public orv::Exception {
 public:
  ConfigException() = default;
  explicit ConfigException(orv::String description) : Exception(std::move(description)) {}
};
