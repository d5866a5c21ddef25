#include "orv/io/Writers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orv/Exception.h"
#include "tests/unit/memory_streams.h"

namespace {

using orv::makeReference;
using orv::String;
using orv::io::OutputStreamWriter;
using orv::io::PrintWriter;
using testing_support::RecordingOutputStream;
using Writes = std::vector<std::string>;

TEST(OutputStreamWriter, HandsOverOneWriteForAFlush) {
  const auto stream = makeReference<RecordingOutputStream>();
  OutputStreamWriter writer(stream, 2048U);

  writer.write("a");
  writer.write("b\n");
  EXPECT_EQ(stream->writes(), Writes{});
  writer.flush();
  writer.flush();

  EXPECT_EQ(stream->writes(), Writes{"ab\n"});
}

TEST(OutputStreamWriter, SpendsAWriteOnAFullBufferAlone) {
  const auto stream = makeReference<RecordingOutputStream>();
  OutputStreamWriter writer(stream, 2);

  writer.write("0123456789");
  writer.flush();

  EXPECT_EQ(stream->writes(), (Writes{"01234567", "89"}));
}

TEST(OutputStreamWriter, NeverCutsACharacter) {
  const auto stream = makeReference<RecordingOutputStream>();
  OutputStreamWriter writer(stream, 1);

  writer.write("a\xF0\x9F\x98\x80\xC3\xA4\xE2\x82\xAC\xFF");
  writer.flush();

  EXPECT_EQ(stream->writes(), (Writes{"a", "\xF0\x9F\x98\x80", "\xC3\xA4", "\xE2\x82\xAC\xFF"}));
}

TEST(OutputStreamWriter, KeepsALongTextWhole) {
  const std::string text(100000, 'x');
  const auto stream = makeReference<RecordingOutputStream>();
  OutputStreamWriter writer(stream, 2048U);

  writer.write(text);
  writer.flush();

  std::string written;
  for (const std::string& part : stream->writes()) written += part;
  EXPECT_EQ(written, text);
}

TEST(OutputStreamWriter, KeepsWhatCouldNotBeWritten) {
  const auto stream = makeReference<RecordingOutputStream>(1U);
  OutputStreamWriter writer(stream, 2048U);
  writer.write("first");
  writer.flush();

  writer.write("second");
  EXPECT_THROW(writer.flush(), orv::io::IoException);
  EXPECT_THROW(writer.flush(), orv::io::IoException);
  stream->recover();
  writer.flush();
  writer.flush();

  EXPECT_EQ(stream->writes(), (Writes{"first", "second"}));
}

TEST(OutputStreamWriter, ClosesTheStream) {
  const auto stream = makeReference<RecordingOutputStream>();

  OutputStreamWriter(stream, 1).close();

  EXPECT_EQ(stream->closings(), 1);
}

TEST(PrintWriter, HandsOverEachLineAtOnceWhenItFlushesByItself) {
  const auto stream = makeReference<RecordingOutputStream>();
  PrintWriter writer(makeReference<OutputStreamWriter>(stream, 2048U), true);

  writer.print("one ");
  writer.print("line");
  EXPECT_EQ(stream->writes(), Writes{});
  writer.println();
  writer.println("another");

  EXPECT_EQ(stream->writes(), (Writes{"one line\n", "another\n"}));
}

TEST(PrintWriter, TakesASumAsItIs) {
  const auto stream = makeReference<RecordingOutputStream>();
  PrintWriter writer(makeReference<OutputStreamWriter>(stream, 2048U), true);
  const String text("text");

  writer.print("\t" + text);
  writer.println(text + ": " + text + ",");

  EXPECT_EQ(stream->writes(), Writes{"\ttexttext: text,\n"});
}

TEST(PrintWriter, CollectsLinesOtherwise) {
  const auto stream = makeReference<RecordingOutputStream>();
  PrintWriter writer(makeReference<OutputStreamWriter>(stream, 2048U), false);

  writer.println("one");
  writer.println("two");
  EXPECT_EQ(stream->writes(), Writes{});
  writer.flush();
  writer.close();

  EXPECT_EQ(stream->writes(), Writes{"one\ntwo\n"});
  EXPECT_EQ(stream->closings(), 1);
}

TEST(PrintWriter, TellsThatALineIsLost) {
  const auto stream = makeReference<RecordingOutputStream>(0U);
  PrintWriter writer(makeReference<OutputStreamWriter>(stream, 2048U), true);

  EXPECT_THROW(writer.println("lost"), orv::io::IoException);
}

}  // namespace
