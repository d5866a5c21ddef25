#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>

#include "orv/Exception.h"
#include "orv/io/FileDescriptor.h"
#include "orv/io/OutputStreams.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/pipe.h"
#include "tests/unit/printing.h"

namespace {

using orv::ResultException;
using orv::String;
using orv::io::FileOutputStream;
using orv::io::IoException;
using testing_support::Pipe;
using testing_support::readFile;
using testing_support::TemporaryFolder;
using testing_support::writeFile;

// Far more than a pipe holds.
const std::string kLongText = [] {
  std::string text;
  const std::string filling(1000, '.');
  while (text.size() < (1U << 20U)) text += std::to_string(text.size()) + filling + "\n";
  return text;
}();

String narrow(const std::filesystem::path& path) { return String(path.string()); }

template <class Action>
String descriptionOf(const Action& action) {
  try {
    action();
  } catch (const IoException& exception) {
    return exception.getDescription();
  }
  return "nothing was thrown";
}

TEST(WriteFully, GoesOnAfterShortWritesToANonBlockingPipe) {
  Pipe pipe;
  ASSERT_EQ(fcntl(pipe.writeEnd(), F_SETFL, O_NONBLOCK), 0);
  std::string received;
  std::thread reader([&] { received = pipe.readAll(); });

  orv::io::writeFully(pipe.writeEnd(), kLongText, "the pipe");
  pipe.closeWriteEnd();
  reader.join();

  EXPECT_EQ(received, kLongText);
}

TEST(WriteFully, GoesOnAfterSignals) {
  const testing_support::InterruptingSignal signal;
  Pipe pipe;
  const pthread_t writer = pthread_self();
  std::string received;
  std::thread reader([&] {
    char buffer[4096];
    while (received.size() < kLongText.size()) {
      pthread_kill(writer, signal.kNumber);
      received.append(buffer, orv::io::readSome(pipe.readEnd(), buffer, sizeof buffer));
    }
  });

  orv::io::writeFully(pipe.writeEnd(), kLongText, "the pipe");
  reader.join();

  EXPECT_EQ(received, kLongText);
}

TEST(WriteFully, NamesWhatCannotBeWritten) {
  const String description = descriptionOf([] { orv::io::writeFully(-1, "x", "the target"); });

  EXPECT_EQ(description, "Cannot write to the target: Bad file descriptor");
}

TEST(WriteFully, AsksTheSystemNothingForNoBytes) {
  EXPECT_NO_THROW(orv::io::writeFully(-1, "", "the target"));
}

TEST(WriteFullyDeathTest, TakesItsErrorTextFromTheProgram) {
  const auto writeWithText = [] {
    orv::io::setWriteErrorText(
        [](const String& target, const String& reason) -> String { return target + "|" + reason; });
    FileOutputStream full("/dev/full");
    std::cerr << descriptionOf([&] { full.write("x"); }).toBytes();
    std::exit(1);
  };

  EXPECT_EXIT(writeWithText(), ::testing::ExitedWithCode(1),
              "^/dev/full\\|No space left on device$");
}

TEST(FileOutputStream, TellsThatTheDiskIsFull) {
  FileOutputStream full("/dev/full");

  try {
    full.write("x");
    FAIL() << "the write was silent";
  } catch (const IoException& exception) {
    EXPECT_EQ(exception.getDescription(), "Cannot write to /dev/full: No space left on device");
    EXPECT_EQ(exception.getResult(), orv::resultOfErrno(ENOSPC));
  }
}

TEST(FileOutputStream, EmptiesTheFileUnlessItAppends) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "log", "old");

  FileOutputStream(narrow(folder / "log"), true).write(" and new");
  EXPECT_EQ(readFile(folder / "log"), "old and new");
  FileOutputStream(narrow(folder / "log")).write("newer");

  EXPECT_EQ(readFile(folder / "log"), "newer");
}

TEST(FileOutputStream, WritesToTheEndOfAFileThatWasEmptied) {
  const TemporaryFolder folder;
  FileOutputStream stream(narrow(folder / "log"));
  stream.write("before the rotation");

  std::filesystem::resize_file(folder / "log", 0);
  stream.write("after");

  EXPECT_EQ(readFile(folder / "log"), "after");
}

// Another user of the shared folder puts a link there and takes it away, again and again.
TEST(FileOutputStream, EmptiesNothingThroughALinkThatComesAndGoes) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a link to another user";
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.path(), std::filesystem::perms{01777});
  writeFile(folder / "victim", "kept");
  std::filesystem::create_symlink(folder / "victim", folder / "planted");
  ASSERT_EQ(lchown((folder / "planted").c_str(), 12345, 12345), 0);
  const std::string away = folder / "planted";
  const std::string there = folder / "log";
  std::atomic<bool> isOver = false;
  std::thread other([&] {
    while (!isOver) {
      std::rename(away.c_str(), there.c_str());
      std::rename(there.c_str(), away.c_str());
    }
  });

  for (int i = 0; i < 2000 && readFile(folder / "victim") == "kept"; ++i) {
    try {
      FileOutputStream(String(there), false);
    } catch (const ResultException&) {
      continue;
    }
  }

  isOver = true;
  other.join();
  EXPECT_EQ(readFile(folder / "victim"), "kept");
}

TEST(FileOutputStream, WritesEveryByteAtOnce) {
  const TemporaryFolder folder;
  FileOutputStream stream(narrow(folder / "log"));

  stream.write(std::string_view("a\0\xFF", 3));

  EXPECT_EQ(readFile(folder / "log"), std::string("a\0\xFF", 3));
}

// Why a path cannot be opened; 0 if it can.
orv::Result refusalOf(const std::string& path) {
  try {
    const FileOutputStream stream{String(path)};
    return 0;
  } catch (const orv::ResultException& exception) {
    return exception.getResult();
  }
}

TEST(FileOutputStream, TellsWhyItCannotOpen) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "");

  EXPECT_EQ(refusalOf((folder / "file").string()), 0);
  EXPECT_EQ(refusalOf((folder / "missing/log").string()), orv::kFileNotFound);
  EXPECT_EQ(refusalOf((folder / "file/below").string()), orv::kFileNotFound);
  EXPECT_EQ(refusalOf(folder.path().string()), orv::resultOfErrno(EISDIR));
  EXPECT_EQ(refusalOf(""), orv::kFileNotFound);
  EXPECT_EQ(refusalOf(std::string(5000, 'x')), orv::resultOfErrno(ENAMETOOLONG));
}

TEST(FileOutputStream, OpensNamesInAnyEncoding) {
  const TemporaryFolder folder;
  const std::string name = (folder / "\xFF\xC3\xA4\xC3").string();

  FileOutputStream{String(name)}.write("x");

  EXPECT_EQ(readFile(name), "x");
}

TEST(FileOutputStream, RefusesToWriteOnceClosed) {
  const TemporaryFolder folder;
  FileOutputStream stream(narrow(folder / "log"));

  stream.close();
  stream.close();

  EXPECT_THROW(stream.write("x"), IoException);
}

TEST(FileOutputStream, TellsWhenItCannotBeClosed) {
  const TemporaryFolder folder;
  const int next = dup(STDERR_FILENO);  // what the stream will open as
  ::close(next);
  FileOutputStream stream(narrow(folder / "log"));
  ASSERT_EQ(::close(next), 0);

  const String description = descriptionOf([&] { stream.close(); });

  EXPECT_EQ(description, "Cannot write to " + narrow(folder / "log") + ": Bad file descriptor");
  EXPECT_NO_THROW(stream.close());
}

TEST(StdioOutputStreamDeathTest, WritesToStandardError) {
  const auto writeError = [] {
    const auto stream = orv::io::StdioOutputStream::getStdErrorStream();
    stream->close();
    stream->write("still open");
    std::exit(0);
  };

  EXPECT_EXIT(writeError(), ::testing::ExitedWithCode(0), "^still open$");
}

TEST(StdioOutputStreamDeathTest, NamesStandardOutputWhenItIsClosed) {
  const auto writeClosed = [] {
    ::close(STDOUT_FILENO);
    orv::io::StdioOutputStream stream;
    std::cerr << descriptionOf([&] { stream.write("x"); }).toBytes();
    std::exit(1);
  };

  EXPECT_EXIT(writeClosed(), ::testing::ExitedWithCode(1),
              "^Cannot write to standard output: Bad file descriptor$");
}

}  // namespace
