// From a line of a recording to its moment.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "tal/recording/moment.h"

namespace tal::recording {

// A line is no whole moment; what() says why, in one line without control characters.
class Damaged : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A longer line is damaged, whatever stands in it.
inline constexpr std::size_t kLineLimit = std::size_t{1} << 30U;

// So many bytes behind a line must be readable; what they hold does not matter.
inline constexpr std::size_t kPadding = 64;

// Reads one line after the other; keeps the memory that the largest of them needed.
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
