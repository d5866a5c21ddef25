// Runs a program as a user sees it: on a terminal.
#pragma once

#include <string>
#include <string_view>

#include "tests/support/file_descriptor.h"
#include "tests/support/process.h"

namespace testing_support {

// A pseudo-terminal, the program's controlling one, on its standard input, output and error. It
// echoes what is typed and hands it over by lines, as a user's terminal does.
class Terminal {
 public:
  // Starts the command on a new terminal; its own settings of the standard files are replaced.
  explicit Terminal(Command command);

  // Types the keys. "\x03" interrupts, as Ctrl-C does.
  void type(std::string_view keys) const;

  // Reads until the screen holds the text; if the deadline passes or the program ends first, the
  // test fails.
  bool waitFor(std::string_view text);

  // Closes the terminal, as a lost connection does: the program gets SIGHUP and can no longer use
  // it.
  void hangUp() { master_.close(); }

  // Reads all that is written and waits for the program's end.
  Ending wait();

  // The output so far, with line ends as "\n".
  [[nodiscard]] const std::string& screen() const { return screen_; }

 private:
  // Reads the output that is in the terminal at the moment.
  void read();

  FileDescriptor master_;
  Process process_;
  std::string screen_;
};

}  // namespace testing_support
