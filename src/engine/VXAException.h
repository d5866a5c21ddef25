// Failures of the engine.
#pragma once

#include <cstdint>

#include "orv/Exception.h"

// The engine answered with a status that is an error. Ends the run: the status and its text on
// standard error, exit code 1.
class VXAException : public orv::Exception {
 public:
  VXAException(orv::String const& message, int code) : Exception(message), code_(code) {}

  // The engine's status.
  [[nodiscard]] std::int32_t getErrorCode() const noexcept { return code_; }

 private:
  std::int32_t code_;
};
