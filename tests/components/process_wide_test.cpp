#include "output/ProcessWide.h"

#include <string>

#include "orv/Exception.h"
#include "orv/io/OutputStreams.h"
#include "tests/components/component_test.h"
#include "tests/support/redirected_streams.h"

namespace component_tests {
namespace {

using testing_support::CapturedOutput;

class ProcessWide : public ComponentTest {};

TEST_F(ProcessWide, StandardOutputIsFlushedWithEachLine) {
  const CapturedOutput output;
  createProcessWideObjects();

  s_pw->print("not yet");
  EXPECT_EQ(output.text(), "");
  s_pw->println("");

  EXPECT_EQ(output.text(), "not yet\n");
}

TEST_F(ProcessWide, MessagesAreTheProgramsOwn) {
  createProcessWideObjects();

  EXPECT_EQ(s_msgHelper->getResStr("NAME", kProgramVersion), "product 15.21.016.000");
}

TEST_F(ProcessWide, AWriterKeepsItsTextUntilItIsFlushed) {
  const auto stream = orv::makeReference<testing_support::RecordingOutputStream>();
  const auto writer = newPrintWriter(stream, false);

  writer->println("kept back");
  EXPECT_TRUE(stream->writes().empty());
  writer->flush();

  EXPECT_EQ(stream->writes(), std::vector<std::string>{"kept back\n"});
}

// A device on which every write fails as on a full disk.
TEST_F(ProcessWide, AFailedWriteNamesTheFileAndTheReason) {
  const auto full = newPrintWriter(
      orv::makeReference<orv::io::FileOutputStream>(orv::String("/dev/full"), false), true);

  try {
    full->println("lost");
    FAIL() << "the write succeeded";
  } catch (const orv::io::IoException& failure) {
    EXPECT_EQ(failure.getDescription(), "incomplete: /dev/full: No space left on device");
  }
}

TEST_F(ProcessWide, AFailedWriteNamesAStandardStreamInTheUsersLanguage) {
  const auto textFor = [](const char* target) {
    try {
      orv::io::writeFully(-1, "x", target);
    } catch (const orv::io::IoException& failure) {
      return failure.getDescription();
    }
    return orv::String("nothing was thrown");
  };

  EXPECT_EQ(textFor(orv::io::kStandardOutput), "incomplete: the console: Bad file descriptor");
  EXPECT_EQ(textFor(orv::io::kStandardError), "incomplete: the error output: Bad file descriptor");
}

}  // namespace
}  // namespace component_tests
