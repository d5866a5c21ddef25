// Runs a program as a child: what it reads, where it writes, how it ends.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/file_descriptor.h"

namespace testing_support {

// The longest time that a test waits. It is far above any real duration, so that a busy machine or
// a sanitizer cannot break a test. A test that reaches it has failed.
inline constexpr std::chrono::seconds kDeadline{30};

// Standard input of a program.
struct Input {
  enum class Kind {
    kText,    // a pipe with this text in it, then the end
    kPipe,    // a pipe that stays open until closeInput()
    kClosed,  // no file descriptor 0 at all
    kFile,    // this file, opened for reading (a terminal for reading and writing)
  };
  Kind kind = Kind::kText;
  std::string value;  // the text or the file's path

  static Input text(std::string text) { return {Kind::kText, std::move(text)}; }
  static Input pipe() { return {Kind::kPipe, ""}; }
  static Input closed() { return {Kind::kClosed, ""}; }
  static Input file(const std::filesystem::path& path) { return {Kind::kFile, path.string()}; }
};

std::ostream& operator<<(std::ostream& out, const Input& input);

// A program and its environment. Signals that are not named start with their default action.
struct Command {
  std::filesystem::path program;
  std::vector<std::string> arguments = {};
  // Changes to the environment of the test; a variable without a value is removed.
  std::map<std::string, std::optional<std::string>> environment = {};
  std::filesystem::path folder = {};  // empty: that of the test
  Input input = {};
  std::optional<std::filesystem::path> output = {};  // a file to write to instead of being captured
  std::optional<std::filesystem::path> error = {};
  std::optional<std::size_t> fileSizeLimit = {};  // bytes, of every regular file written
  std::vector<int> ignoredSignals = {};
  bool withoutPrivileges = false;  // run as an ordinary user, even if the test is root
  bool controlsTerminal = false;   // lead a session of its own, standard input is its terminal
};

// Exit status or the signal that ended the program; exactly one of the two is set.
struct Ending {
  std::optional<int> status;
  std::optional<int> signal;

  static Ending exit(int status) { return {status, {}}; }
  static Ending killedBy(int signal) { return {{}, signal}; }
  bool operator==(const Ending&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Ending& ending);

class Process {
 public:
  // Starts the program. Throws std::system_error if that is impossible; a program that does not
  // exist ends with the status 127 and a message on standard error.
  explicit Process(const Command& command);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  // Kills the program if it still runs, and reaps it.
  ~Process();

  [[nodiscard]] pid_t id() const { return id_; }

  // Writes to the pipe on its standard input.
  void write(std::string_view text);
  void closeInput() { input_.close(); }

  // Closes the reading end of its standard output: the next write meets a broken pipe.
  void closeOutput() { output_.close(); }

  void sendSignal(int number) const;

  // Reads until the captured standard output holds the text so many times. A deadline or the end
  // of the program before that fails the test and returns false.
  bool waitForOutput(std::string_view text, int times = 1);

  // Waits until the condition holds, which is asked again every few milliseconds while the output
  // is read. A deadline or the end of the program before that fails the test and returns false.
  bool waitUntil(const std::function<bool()>& condition, std::string_view description);

  // Reads all output, waits for the end and reaps the program. A program that outlives the
  // deadline is killed, which fails the test.
  Ending wait();

  // True once the program has ended; reaps it.
  bool hasEnded();

  // The output that was read so far.
  [[nodiscard]] const std::string& output() const { return outputText_; }
  [[nodiscard]] const std::string& error() const { return errorText_; }

 private:
  enum class Slice { kRead, kNothing, kEnd };

  // Reads what either pipe holds, waiting a few milliseconds for it.
  Slice readSlice();

  pid_t id_ = -1;
  FileDescriptor handle_;  // readable when the program has ended
  std::optional<Ending> ending_;
  FileDescriptor input_;
  FileDescriptor output_;
  FileDescriptor error_;
  std::string outputText_;
  std::string errorText_;
};

// The output and the end of a finished program.
struct Result {
  Ending ending;
  std::string output;
  std::string error;
};

// Runs a program to its end.
Result run(const Command& command);

}  // namespace testing_support
