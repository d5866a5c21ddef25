// What every test of the program's parts starts from.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "orv/Object.h"
#include "tests/components/scripted_engine.h"
#include "tests/support/text_comparison.h"
#include "tests/unit/memory_streams.h"
#include "tests/unit/message_folder.h"
#include "tests/unit/printing.h"

namespace component_tests {

using testing_support::sameText;

// Expected lines, each with its line feed. "\t" in a raw literal stands for a tab, so that tabs and
// blanks at the end of a line can be seen.
std::string lines(std::initializer_list<std::string_view> texts);

// Every test gets a new engine, a message folder with short texts, recorded process-wide writers,
// and the process-wide state of a program that has just begun.
class ComponentTest : public ::testing::Test {
 protected:
  ComponentTest();
  ~ComponentTest() override;

  // What went to the process-wide writers so far.
  [[nodiscard]] std::string printed() const { return bytesOf(*output_); }
  [[nodiscard]] std::string printedErrors() const { return bytesOf(*errors_); }

  testing_support::MessageFolder messages_;

 private:
  using Recording = testing_support::RecordingOutputStream;

  static std::string bytesOf(const Recording& stream);

  orv::Reference<Recording> output_ = orv::makeReference<Recording>();
  orv::Reference<Recording> errors_ = orv::makeReference<Recording>();
};

}  // namespace component_tests
