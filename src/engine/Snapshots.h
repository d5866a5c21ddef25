// How the engine's snapshots and the texts of its structures are read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "orv/String.h"

// Releases a snapshot at the end of its scope.
class SnapshotRelease {
 public:
  using Release = std::int16_t (*)(std::int32_t handle);

  SnapshotRelease(Release release, std::int32_t handle) noexcept
      : release_(release), handle_(handle) {}
  SnapshotRelease(const SnapshotRelease&) = delete;
  SnapshotRelease& operator=(const SnapshotRelease&) = delete;
  ~SnapshotRelease() { release_(handle_); }

 private:
  Release release_;
  std::int32_t handle_;
};

// The text of a fixed field: up to its NUL, or up to the end of the field if there is no NUL.
template <std::size_t kSize>
[[nodiscard]] std::string_view fieldBytes(const char (&field)[kSize]) noexcept {
  return {field, strnlen(field, kSize)};
}
template <std::size_t kSize>
[[nodiscard]] orv::String fieldText(const char (&field)[kSize]) {
  return orv::String(fieldBytes(field));
}
