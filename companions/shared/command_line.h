// Command lines and exit codes, alike in all companions.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace companions {

// Ends a companion with exit code 2, after a line that says what is wrong.
class WrongCommandLine : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Program {
  const char* name;
  const char* help;  // what --help prints
};

struct Option {
  int code;          // the letter of the short form; a number above 255 if there is none
  const char* name;  // the long form, without its dashes
  bool hasValue = false;
};

// Calls `take` for each option in order, with its value or an empty text, and returns the other
// arguments. Options and other arguments may be mixed; "--" ends the options. Returns nothing if
// --help or --version was given and printed: the program then has nothing more to do. Throws
// WrongCommandLine for an option that is unknown or lacks its value, and what `take` throws.
std::optional<std::vector<std::string>> readOptions(
    const Program& program, int argc, char** argv, std::span<const Option> options,
    const std::function<void(int code, const std::string& value)>& take);

// A whole number from `lowest` to `highest`. Throws WrongCommandLine, which names the option.
long long wholeNumber(const std::string& option, const std::string& text, long long lowest,
                      long long highest);

// Runs a companion and returns its exit code: 0 when `body` returns; otherwise 2 for a wrong
// command line and 1 for every other exception, after a line on standard error that begins with the
// program's name.
int runProgram(const Program& program, const std::function<void()>& body) noexcept;

}  // namespace companions
