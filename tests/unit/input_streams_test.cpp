#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <thread>

#include "orv/Exception.h"
#include "orv/io/FileDescriptor.h"
#include "orv/io/InputStreams.h"
#include "orv/io/Readers.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/memory_streams.h"
#include "tests/unit/pipe.h"

namespace {

using orv::makeReference;
using orv::String;
using orv::io::FileInputStream;
using orv::io::InputStreamReader;
using testing_support::MemoryInputStream;
using testing_support::Pipe;
using testing_support::TemporaryFolder;

TEST(FileInputStream, GivesEveryByteAndThenTheEnd) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", std::string("a\0\xFF", 3));
  FileInputStream stream(String((folder / "file").string()));

  EXPECT_EQ(stream.read(), 'a');
  EXPECT_EQ(stream.read(), 0);
  EXPECT_EQ(stream.read(), 255);
  EXPECT_EQ(stream.read(), -1);
  EXPECT_EQ(stream.read(), -1);
}

TEST(FileInputStream, GivesAsManyBytesAsItMay) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "12345");
  const String path((folder / "file").string());
  char bytes[10];

  EXPECT_EQ(FileInputStream(path, 5).read(bytes, sizeof bytes), 5U);
  EXPECT_THROW(static_cast<void>(FileInputStream(path, 4).read(bytes, sizeof bytes)),
               orv::ResultException);

  FileInputStream inPieces(path, 4);
  EXPECT_EQ(inPieces.read(bytes, 4), 4U);
  EXPECT_THROW(static_cast<void>(inPieces.read(bytes, 4)), orv::ResultException);
}

// Why a path cannot be opened; 0 if it can.
orv::Result refusalOf(const std::string& path) {
  try {
    const FileInputStream stream{String(path)};
    return 0;
  } catch (const orv::ResultException& exception) {
    return exception.getResult();
  }
}

TEST(FileInputStream, TellsWhyItCannotOpen) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "");

  EXPECT_EQ(refusalOf((folder / "file").string()), 0);
  EXPECT_EQ(refusalOf((folder / "missing").string()), orv::kFileNotFound);
  EXPECT_EQ(refusalOf((folder / "file/below").string()), orv::kFileNotFound);
  EXPECT_EQ(refusalOf(folder.path().string()), orv::resultOfErrno(EISDIR));
  EXPECT_EQ(refusalOf(""), orv::kFileNotFound);
  EXPECT_EQ(refusalOf(std::string(5000, 'x')), orv::resultOfErrno(ENAMETOOLONG));
}

TEST(ReadSome, GoesOnAfterSignals) {
  const testing_support::InterruptingSignal signal;
  const Pipe pipe;
  const pthread_t reader = pthread_self();
  std::thread interrupter([&] {
    for (int i = 0; i < 100; ++i) pthread_kill(reader, signal.kNumber);
    orv::io::writeFully(pipe.writeEnd(), "x", "the pipe");
  });

  char byte = 0;
  const std::size_t count = orv::io::readSome(pipe.readEnd(), &byte, 1);
  interrupter.join();

  EXPECT_EQ(count, 1U);
  EXPECT_EQ(byte, 'x');
}

TEST(ReadSome, TellsWhatWentWrong) {
  char byte = 0;

  try {
    orv::io::readSome(-1, &byte, 1);
    FAIL() << "the read was silent";
  } catch (const orv::ResultException& exception) {
    EXPECT_EQ(exception.getResult(), orv::resultOfErrno(EBADF));
  }
}

// Puts a descriptor in place of standard input while it lives; -1 closes it.
class StandardInput {
 public:
  explicit StandardInput(int descriptor) : before_(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)) {
    if (descriptor < 0) {
      ::close(STDIN_FILENO);
    } else {
      dup2(descriptor, STDIN_FILENO);
    }
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;
  ~StandardInput() {
    if (before_.isOpen()) dup2(before_.number(), STDIN_FILENO);
  }

 private:
  testing_support::FileDescriptor before_;
};

TEST(StdioInputStream, ReadsNothingAhead) {
  Pipe pipe;
  orv::io::writeFully(pipe.writeEnd(), "qr", "the pipe");
  pipe.closeWriteEnd();
  const StandardInput input(pipe.readEnd());

  orv::io::StdioInputStream stream;
  EXPECT_EQ(stream.read(), 'q');

  EXPECT_EQ(pipe.readAll(), "r");
  EXPECT_EQ(stream.read(), -1);
}

TEST(StdioInputStream, IsAtItsEndWhenClosed) {
  const StandardInput input(-1);

  orv::io::StdioInputStream stream;

  EXPECT_EQ(stream.read(), -1);
}

TEST(StdioInputStream, IsAtItsEndWhenItCannotBeRead) {
  const testing_support::FileDescriptor writable(open("/dev/null", O_WRONLY | O_CLOEXEC));
  const StandardInput input(writable.number());

  orv::io::StdioInputStream stream;

  EXPECT_EQ(stream.read(), -1);
}

std::wstring readAll(InputStreamReader& reader) {
  std::wstring all;
  std::wstring text;
  while (reader.read(text), !text.empty()) all += text;
  return all;
}

TEST(InputStreamReader, DecodesAcrossTheEdgesOfItsBuffer) {
  std::string bytes;
  for (int i = 0; i < 50; ++i) bytes += "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xFF\xE2\x82";
  const std::wstring expected = String(bytes).wide();

  for (const std::size_t bufferSize : {4U, 5U, 7U, 64U, 2048U}) {
    for (const std::size_t pieceSize : {1U, 2U, 3U, 1000U}) {
      InputStreamReader reader(makeReference<MemoryInputStream>(bytes, pieceSize), bufferSize);
      EXPECT_EQ(readAll(reader), expected) << bufferSize << ' ' << pieceSize;
    }
  }
}

TEST(InputStreamReader, DropsAByteOrderMarkAtTheStartAlone) {
  struct Case {
    const char* bytes;
    const wchar_t* text;
  };
  constexpr Case kCases[] = {
      {"\xEF\xBB\xBF",              L""             },
      {"\xEF\xBB\xBFx",             L"x"            },
      {"x\xEF\xBB\xBF",             L"x\uFEFF"      },
      {"\xEF\xBB\xBF\xEF\xBB\xBFx", L"\uFEFFx"      },
      {"\xEF\xBBx",                 L"\xDCEF\xDCBBx"},
      {"",                          L""             },
  };

  for (const Case& start : kCases) {
    for (const std::size_t pieceSize : {1U, 2U, 100U}) {
      InputStreamReader reader(makeReference<MemoryInputStream>(start.bytes, pieceSize), 4);
      EXPECT_EQ(readAll(reader), start.text) << ::testing::PrintToString(start.bytes);
    }
  }
}

TEST(InputStreamReader, GivesABrokenEndAsItIs) {
  InputStreamReader reader(makeReference<MemoryInputStream>("a\xE2\x82", 1U), 16);

  EXPECT_EQ(String(readAll(reader)).toBytes(), "a\xE2\x82");
}

}  // namespace
