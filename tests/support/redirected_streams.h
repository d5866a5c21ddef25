// The standard streams of the process while a test reads or replaces them.
#pragma once

#include <string>
#include <string_view>

#include "tests/support/file_descriptor.h"
#include "tests/support/temporary_folder.h"

namespace testing_support {

// While this exists, standard output goes into a file.
class CapturedOutput {
 public:
  CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;
  ~CapturedOutput();

  // The bytes written so far.
  [[nodiscard]] std::string text() const;

 private:
  testing_support::TemporaryFolder folder_;
  testing_support::FileDescriptor original_;
};

// While this exists, standard input has these bytes and then ends.
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
