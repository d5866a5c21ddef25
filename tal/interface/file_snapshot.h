// The open files as they were at one moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tal/engine.h"

namespace tal::interface {

// Owns the files of one answer of the engine. Their names are made final here: cleaned, cut to the
// interface's buffer, and unique, because a name is the key of every look-up. A name that has
// already been taken gets "#2", "#3", ... at its end.
class FileSnapshot {
 public:
  explicit FileSnapshot(std::vector<OpenFile> files);
  // The index refers to the names inside the files.
  FileSnapshot(const FileSnapshot&) = delete;
  FileSnapshot& operator=(const FileSnapshot&) = delete;

  [[nodiscard]] std::size_t count() const noexcept;

  // Throws Failure kNoEntry beyond the last file.
  [[nodiscard]] const OpenFile& at(std::uint32_t index) const;

  // Takes the time of a hash look-up. Throws Failure kFileClosed for a name that is not listed.
  [[nodiscard]] const OpenFile& find(std::string_view name) const;

 private:
  std::vector<OpenFile> files_;
  std::unordered_map<std::string_view, std::size_t> positions_;
};

}  // namespace tal::interface
