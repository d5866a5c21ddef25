#pragma once

#include <stdlib.h>

#include <optional>
#include <string>

namespace testing_support {

// Sets an environment variable while this object exists.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    if (const char* const before = ::getenv(name)) before_ = before;
    ::setenv(name, value.c_str(), 1);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() {
    if (before_) {
      ::setenv(name_, before_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

 private:
  const char* name_;
  std::optional<std::string> before_;
};

}  // namespace testing_support
