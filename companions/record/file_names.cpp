#include "companions/record/file_names.h"

#include <time.h>

#include <algorithm>
#include <array>
#include <climits>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>

namespace companions::record {
namespace {

constexpr std::int64_t kMicroseconds = 1'000'000;

std::string formatted(const std::string& pattern, const tm& time) {
  std::array<char, PATH_MAX> name{};
  const std::size_t length = strftime(name.data(), name.size(), pattern.c_str(), &time);
  return {name.data(), length};
}

// The time for which the pattern gives this name; nothing if it gives it for no time.
std::optional<time_t> timeNamed(const std::string& pattern, const std::string& name) {
  tm time{};
  time.tm_mday = 1;
  time.tm_isdst = -1;
  const char* const end = strptime(name.c_str(), pattern.c_str(), &time);
  if (end == nullptr || *end != '\0') return std::nullopt;
  tm complete = time;
  const time_t seconds = timegm(&complete);
  if (formatted(pattern, complete) != name) return std::nullopt;
  return seconds;
}

}  // namespace

FileNames::FileNames(std::string pattern, bool utc) : pattern_(std::move(pattern)), utc_(utc) {}

std::string FileNames::at(std::int64_t wallTime) const {
  if (pattern_.find('%') == std::string::npos) return pattern_;
  const time_t seconds = wallTime / kMicroseconds;
  tm time{};
  utc_ ? gmtime_r(&seconds, &time) : localtime_r(&seconds, &time);
  std::string name = formatted(pattern_, time);
  if (name.empty()) throw std::runtime_error("the file name \"" + pattern_ + "\" names no file");
  return name;
}

std::string FileNames::folderOf(const std::string& name) {
  const std::size_t slash = name.rfind('/');
  return slash == std::string::npos ? "." : name.substr(0, slash + 1);
}

std::vector<std::string> FileNames::existing() const {
  const std::string prefix = pattern_.substr(0, pattern_.rfind('/') + 1);
  const std::string pattern = pattern_.substr(prefix.size());
  std::vector<std::pair<time_t, std::string>> found;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folderOf(pattern_), error)) {
    const std::string name = entry.path().filename().string();
    const auto time = timeNamed(pattern, name);
    std::error_code ignored;
    if (time && entry.symlink_status(ignored).type() == std::filesystem::file_type::regular) {
      found.emplace_back(*time, prefix + name);
    }
  }
  std::ranges::sort(found);
  std::vector<std::string> names;
  for (auto& [time, name] : found) names.push_back(std::move(name));
  return names;
}

}  // namespace companions::record
