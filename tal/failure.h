// The one exception of this library.
#pragma once

#include <exception>

#include "tal/status.h"

namespace tal {

// Thrown by engines; becomes its status at the interface and never crosses it.
class Failure : public std::exception {
 public:
  explicit Failure(Status status) noexcept : status_(status) {}

  [[nodiscard]] Status status() const noexcept { return status_; }

 private:
  Status status_;
};

}  // namespace tal
