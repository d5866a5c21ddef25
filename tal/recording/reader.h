// Reads the moment in a line of a recording.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "tal/recording/moment.h"

namespace tal::recording {

// A line is not a whole moment; what() gives the reason in one line without control characters.
class Damaged : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A longer line counts as damaged, whatever its content.
inline constexpr std::size_t kLineLimit = std::size_t{1} << 30U;

// This many bytes after a line must be readable. Their content does not matter.
inline constexpr std::size_t kPadding = 64;

// Reads one line after the other. Keeps as much memory as the largest line needed.
class MomentReader {
 public:
  MomentReader();
  MomentReader(MomentReader&&) noexcept;
  MomentReader& operator=(MomentReader&&) noexcept;
  ~MomentReader();

  // The line, without its line end, is followed by kPadding bytes. Any bytes may be given. Throws
  // Damaged.
  Moment read(std::string_view line);

 private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
};

}  // namespace tal::recording
