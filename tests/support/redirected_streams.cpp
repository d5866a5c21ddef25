#include "tests/support/redirected_streams.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace testing_support {
namespace {

using testing_support::FileDescriptor;

int checked(int result, const char* call) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), call);
  return result;
}

// Opens the file with this descriptor number; returns a copy of the descriptor that had it.
FileDescriptor replaceByFile(int number, const std::filesystem::path& path, int flags) {
  FileDescriptor original(checked(fcntl(number, F_DUPFD_CLOEXEC, 0), "fcntl"));
  const FileDescriptor file(checked(open(path.c_str(), flags, 0600), "open"));
  checked(dup2(file.number(), number), "dup2");
  return original;
}

}  // namespace

CapturedOutput::CapturedOutput() {
  std::fflush(stdout);
  original_ = replaceByFile(STDOUT_FILENO, folder_ / "output", O_WRONLY | O_CREAT | O_APPEND);
}

CapturedOutput::~CapturedOutput() { dup2(original_.number(), STDOUT_FILENO); }

std::string CapturedOutput::text() const { return testing_support::readFile(folder_ / "output"); }

TypedInput::TypedInput(std::string_view bytes) {
  const testing_support::TemporaryFolder folder;
  testing_support::writeFile(folder / "input", bytes);
  original_ = replaceByFile(STDIN_FILENO, folder / "input", O_RDONLY);
}

TypedInput::~TypedInput() { dup2(original_.number(), STDIN_FILENO); }

}  // namespace testing_support
