// Times that read the same everywhere.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace component_tests {

// The process's time zone is UTC while this lives.
class UtcTime {
 public:
  UtcTime() {
    if (const char* zone = std::getenv("TZ")) original_ = zone;
    setenv("TZ", "UTC", 1);
  }
  UtcTime(const UtcTime&) = delete;
  UtcTime& operator=(const UtcTime&) = delete;
  ~UtcTime() {
    if (original_) {
      setenv("TZ", original_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
  }

 private:
  std::optional<std::string> original_;
};

}  // namespace component_tests
