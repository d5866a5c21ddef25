// The process's standard streams, while a test looks at them.
#pragma once

#include <string>
#include <string_view>

#include "tests/support/file_descriptor.h"
#include "tests/support/temporary_folder.h"

namespace testing_support {

// Standard output goes into a file while this lives.
class CapturedOutput {
 public:
  CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;
  ~CapturedOutput();

  // What was written so far.
  [[nodiscard]] std::string text() const;

 private:
  testing_support::TemporaryFolder folder_;
  testing_support::FileDescriptor original_;
};

// Standard input holds these bytes, and then ends, while this lives.
class TypedInput {
 public:
  explicit TypedInput(std::string_view bytes);
  TypedInput(const TypedInput&) = delete;
  TypedInput& operator=(const TypedInput&) = delete;
  ~TypedInput();

 private:
  testing_support::FileDescriptor original_;
};

}  // namespace testing_support
