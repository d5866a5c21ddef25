#include "companions/shared/command_line.h"

#include <getopt.h>

#include <cerrno>
#include <charconv>
#include <clocale>
#include <cstdio>
#include <system_error>

#include "companions/shared/engine.h"
#include "orv/Exception.h"
#include "orv/Process.h"

namespace companions {
namespace {

constexpr Option kHelp{'h', "help"};
constexpr Option kVersion{'V', "version"};
constexpr int kLongestLetter = 255;

// The options in the form for getopt_long.
class Getopt {
 public:
  explicit Getopt(std::span<const Option> options) {
    for (const Option& each : options) add(each);
    add(kHelp);
    add(kVersion);
    long_.push_back({});
  }

  // The code of the next option; -1 after the last one.
  int next(int argc, char** argv) {
    return getopt_long(argc, argv, short_.c_str(), long_.data(), nullptr);
  }

 private:
  void add(const Option& each) {
    long_.push_back(
        {each.name, each.hasValue ? required_argument : no_argument, nullptr, each.code});
    if (each.code > kLongestLetter) return;
    short_ += static_cast<char>(each.code);
    if (each.hasValue) short_ += ':';
  }

  // With the colon, getopt_long returns ":" for a missing value and prints no message.
  std::string short_ = ":";
  std::vector<option> long_;
};

// The argument that getopt_long has just refused.
std::string refusedArgument(char** argv) {
  const std::string argument = argv[optind - 1];
  const bool isShort = optopt > 0 && optopt <= kLongestLetter && !argument.starts_with("--");
  return isShort ? std::string("-") + static_cast<char>(optopt) : argument;
}

void print(const std::string& text) {
  if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
    throw std::system_error(errno, std::generic_category(), "standard output");
  }
}

int fail(const Program& program, int code, const std::string& text) {
  std::fprintf(stderr, "%s: %s\n", program.name, text.c_str());
  return code;
}

std::string described(const orv::Exception& failure) {
  if (!failure.getDescription().isEmpty()) return failure.getDescription().toBytes();
  char text[32];
  std::snprintf(text, sizeof text, "failure 0x%08X", static_cast<unsigned>(failure.getResult()));
  return text;
}

}  // namespace

std::optional<std::vector<std::string>> readOptions(
    const Program& program, int argc, char** argv, std::span<const Option> options,
    const std::function<void(int code, const std::string& value)>& take) {
  Getopt getopt(options);
  optind = 0;  // starts again from the first argument
  for (int code = getopt.next(argc, argv); code != -1; code = getopt.next(argc, argv)) {
    switch (code) {
      case 'h':
        print(program.help);
        return std::nullopt;
      case 'V':
        print(std::string(program.name) + " " ZELK_VERSION "\n");
        return std::nullopt;
      case ':':
        throw WrongCommandLine("the option " + refusedArgument(argv) + " needs a value");
      case '?':
        throw WrongCommandLine("unknown option " + refusedArgument(argv));
      default:
        take(code, optarg != nullptr ? optarg : "");
    }
  }
  return std::vector<std::string>(argv + optind, argv + argc);
}

long long wholeNumber(const std::string& option, const std::string& text, long long lowest,
                      long long highest) {
  long long number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < lowest || number > highest) {
    throw WrongCommandLine("the value of " + option + " is \"" + text +
                           "\"; give a whole number from " + std::to_string(lowest) + " to " +
                           std::to_string(highest));
  }
  return number;
}

int runProgram(const Program& program, const std::function<void()>& body) noexcept {
  constexpr int kFailed = 1;
  constexpr int kWrongCommandLine = 2;
  std::setlocale(LC_MESSAGES, "");  // of the locale nothing but the language is used
  try {
    orv::keepStandardDescriptors();
    orv::ignoreFileSizeSignal();
    orv::keepMemoryPrivate();
    body();
    return 0;
  } catch (const WrongCommandLine& failure) {
    const std::string hint = std::string(" (") + program.name + " --help shows the options)";
    return fail(program, kWrongCommandLine, failure.what() + hint);
  } catch (const CallFailure& failure) {
    return fail(program, kFailed, std::to_string(failure.status()) + ": " + failure.text());
  } catch (const orv::Exception& failure) {
    return fail(program, kFailed, described(failure));
  } catch (const std::bad_alloc&) {
    return fail(program, kFailed, "out of memory");
  } catch (const std::exception& failure) {
    return fail(program, kFailed, failure.what());
  }
}

}  // namespace companions
