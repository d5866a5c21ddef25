// The settable engine during one run of the program.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tests/support/file_descriptor.h"
#include "tests/support/settable_engine/answers.h"

namespace settable {

// Made at the first call. The environment names the file with the answers, SETTABLE_ENGINE (none:
// an idle engine), and a file to which a line is appended for each call, SETTABLE_TRACE (none: no
// trace). A line is the function's name and its arguments, separated by blanks.
class Session {
 public:
  Session();

  [[nodiscard]] const Answers& answers() const { return answers_; }

  // Counts and traces the call, waits if a pause is set for it. Returns the status set for this
  // call, or 0.
  std::int16_t enter(const std::string& function, std::string_view arguments);

 private:
  Answers answers_;
  testing_support::FileDescriptor trace_;
  std::map<std::string, int> calls_;
};

}  // namespace settable
