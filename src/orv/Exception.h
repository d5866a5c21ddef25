// The exceptions of the core library. Each says what throwing it does to the program.
#pragma once

#include <exception>
#include <utility>

#include "orv/Result.h"
#include "orv/String.h"

namespace orv {

// Ends the run. With a description: this line on standard error, exit code 1. Without one: the
// fatal-error message with the result, which is also the exit code; no message if the result is 0.
class Exception : public std::exception {
 public:
  Exception() = default;
  explicit Exception(String description, Result result = 0)
      : description_(std::move(description)), result_(result) {}

  [[nodiscard]] const String& getDescription() const noexcept { return description_; }
  [[nodiscard]] Result getResult() const noexcept { return result_; }

 private:
  String description_;
  Result result_ = 0;
};

// A failure that has a result code. Ends the run as Exception does.
class ResultException : public Exception {
 public:
  explicit ResultException(Result result, String description = {})
      : Exception(std::move(description), result) {}
};

namespace io {

// A file or stream that cannot be read or written. Ends the run: its description on standard
// error, exit code 1.
class IoException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace io
}  // namespace orv
