// Snapshots of the engine are released whatever happens.
#pragma once

#include <cstdint>

// Releases a snapshot that was taken when it goes out of scope.
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
