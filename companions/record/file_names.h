// The names of the files of a recording that is divided by time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace companions::record {

// A name with conversions of strftime(3).
class FileNames {
 public:
  FileNames(std::string pattern, bool utc);

  // The name for a wall time, in microseconds since 1970 UTC. Throws std::runtime_error for a
  // pattern that gives no name.
  [[nodiscard]] std::string at(std::int64_t wallTime) const;

  // The folder of a name, as it can be opened.
  [[nodiscard]] static std::string folderOf(const std::string& name);

  // The existing regular files that the pattern can name, the oldest time first. Only the last part
  // of the pattern may have conversions.
  [[nodiscard]] std::vector<std::string> existing() const;

 private:
  std::string pattern_;
  bool utc_;
};

}  // namespace companions::record
