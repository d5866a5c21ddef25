#include "tests/support/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ostream>
#include <system_error>
#include <utility>

#include "tests/support/launch.h"

namespace testing_support {
namespace {

constexpr int kSliceMilliseconds = 10;

struct Pipe {
  FileDescriptor reader;
  FileDescriptor writer;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

FileDescriptor openFile(const std::filesystem::path& path, int flags) {
  FileDescriptor file(open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0644));
  if (!file.isOpen()) {
    throw std::system_error(errno, std::generic_category(), path.string());
  }
  return file;
}

// The child's end of its standard input; a pipe's other end goes to `writer`.
FileDescriptor openInput(const Command& command, FileDescriptor& writer) {
  switch (command.input.kind) {
    case Input::Kind::kClosed:
      return {};
    case Input::Kind::kFile:
      return openFile(command.input.value, command.controlsTerminal ? O_RDWR : O_RDONLY);
    default:
      Pipe pipe = makePipe();
      writer = std::move(pipe.writer);
      return std::move(pipe.reader);
  }
}

FileDescriptor openOutput(const std::optional<std::filesystem::path>& path,
                          FileDescriptor& reader) {
  if (path) {
    return openFile(*path, O_WRONLY | O_CREAT | O_APPEND);
  }
  Pipe pipe = makePipe();
  reader = std::move(pipe.reader);
  return std::move(pipe.writer);
}

// Reads what the pipe holds; its end closes it.
void readOnce(FileDescriptor& pipe, std::string& text) {
  std::array<char, 65536> buffer;
  const ssize_t count = read(pipe.number(), buffer.data(), buffer.size());
  if (count > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(count));
  } else {
    pipe.close();
  }
}

int countOf(std::string_view text, std::string_view part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Ending& ending) {
  return ending.signal ? out << "killed by signal " << *ending.signal
                       : out << "exit status " << ending.status.value_or(-1);
}

std::ostream& operator<<(std::ostream& out, const Input& input) {
  switch (input.kind) {
    case Input::Kind::kText:
      return out << "text of " << input.value.size() << " bytes";
    case Input::Kind::kPipe:
      return out << "pipe";
    case Input::Kind::kClosed:
      return out << "closed";
    default:
      return out << input.value;
  }
}

Process::Process(const Command& command) {
  const FileDescriptor childInput = openInput(command, input_);
  const FileDescriptor childOutput = openOutput(command.output, output_);
  const FileDescriptor childError = openOutput(command.error, error_);
  id_ = launch(command, {childInput.number(), childOutput.number(), childError.number()});
  handle_ = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, id_, 0)));
  if (command.input.kind == Input::Kind::kText) {
    write(command.input.value);
    closeInput();
  }
}

Process::~Process() {
  if (!ending_) {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
}

void Process::write(std::string_view text) {
  const BlockedSignal brokenPipeIsNoSignal(SIGPIPE);
  while (!text.empty()) {
    const ssize_t count = ::write(input_.number(), text.data(), text.size());
    if (count < 0) {
      return;  // the program reads no more: its end shows why
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

void Process::sendSignal(int number) const {
  if (kill(id_, number) != 0) {
    throw std::system_error(errno, std::generic_category(), "kill");
  }
}

bool Process::hasEnded() {
  if (ending_) {
    return true;
  }
  int status = 0;
  if (waitpid(id_, &status, WNOHANG) != id_) {
    return false;
  }
  ending_ =
      WIFSIGNALED(status) ? Ending::killedBy(WTERMSIG(status)) : Ending::exit(WEXITSTATUS(status));
  return true;
}

Process::Slice Process::readSlice() {
  std::array<pollfd, 3> sources{
      {{output_.number(), POLLIN, 0}, {error_.number(), POLLIN, 0}, {handle_.number(), POLLIN, 0}}
  };
  if (poll(sources.data(), sources.size(), kSliceMilliseconds) <= 0) {
    return Slice::kNothing;
  }
  if (sources[0].revents != 0) {
    readOnce(output_, outputText_);
  }
  if (sources[1].revents != 0) {
    readOnce(error_, errorText_);
  }
  if (sources[0].revents != 0 || sources[1].revents != 0) {
    return Slice::kRead;
  }
  return hasEnded() ? Slice::kEnd : Slice::kNothing;
}

bool Process::waitForOutput(std::string_view text, int times) {
  return waitUntil([&] { return countOf(outputText_, text) >= times; }, text);
}

bool Process::waitUntil(const std::function<bool()>& condition, std::string_view description) {
  const auto deadline = std::chrono::steady_clock::now() + kDeadline;
  Slice slice = Slice::kNothing;
  while (slice != Slice::kEnd && std::chrono::steady_clock::now() < deadline) {
    if (condition()) {
      return true;
    }
    slice = readSlice();
  }
  if (condition()) {
    return true;
  }
  ADD_FAILURE() << "did not come: " << description << "\nstandard output:\n"
                << outputText_ << "\nstandard error:\n"
                << errorText_;
  return false;
}

Ending Process::wait() {
  const auto deadline = std::chrono::steady_clock::now() + kDeadline;
  while (readSlice() != Slice::kEnd) {
    if (std::chrono::steady_clock::now() >= deadline) {
      ADD_FAILURE() << "still running\nstandard output:\n"
                    << outputText_ << "\nstandard error:\n"
                    << errorText_;
      kill(id_, SIGKILL);
    }
  }
  return *ending_;
}

Result run(const Command& command) {
  Process process(command);
  const Ending ending = process.wait();
  return {ending, process.output(), process.error()};
}

}  // namespace testing_support
