#include "companions/record/options.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace companions::record {

const Program kProgram{
    "zelk-record",
    "Usage: zelk-record -f FILE [-i SECONDS] [-n COUNT] [-o FILE]\n"
    "Record what a database engine server is doing, a line for each moment.\n"
    "\n"
    "  -f, --file=FILE          zelk's configuration file, which names the server\n"
    "  -i, --interval=SECONDS   time between moments, from 0.1; without it the refresh\n"
    "                           rate of the configuration, or 10\n"
    "  -n, --count=COUNT        stop after so many moments\n"
    "  -o, --output=FILE        write to this file instead of standard output; the name\n"
    "                           may hold conversions of strftime(3), and a name that\n"
    "                           ends in .zst is written compressed\n"
    "      --utc                make the name of universal instead of local time\n"
    "      --keep=N             keep so many files that such a name can stand for\n"
    "      --leave-free=SIZE    pause while the disk has less room; SIZE in bytes, or with\n"
    "                           K, M, G or T\n"
    "      --no-sync            do not wait until each moment has reached the disk\n"
    "      --wait               wait for a server that cannot be reached at the start\n"
    "  -h, --help               show this\n"
    "  -V, --version            show the version\n"
    "\n"
    "SIGHUP opens the output file anew.\n"};

namespace {

enum LongOnly { kUtc = 256, kKeep, kLeaveFree, kNoSync, kWait };

constexpr std::array kOptions = {
    Option{'f',        "file",       true },
    Option{'i',        "interval",   true },
    Option{'n',        "count",      true },
    Option{'o',        "output",     true },
    Option{kUtc,       "utc",        false},
    Option{kKeep,      "keep",       true },
    Option{kLeaveFree, "leave-free", true },
    Option{kNoSync,    "no-sync",    false},
    Option{kWait,      "wait",       false},
};

constexpr long long kHighest = std::numeric_limits<long long>::max();

std::uint64_t positive(const std::string& option, const std::string& value) {
  return static_cast<std::uint64_t>(wholeNumber(option, value, 1, kHighest));
}

std::uint64_t intervalOf(const std::string& text) {
  constexpr double kMicroseconds = 1e6;
  constexpr double kShortest = 0.1;
  constexpr double kLongest = 86400;  // a day
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
  if (error != std::errc() || stop != end || !(seconds >= kShortest && seconds <= kLongest)) {
    throw WrongCommandLine("the value of --interval is \"" + text +
                           "\"; give seconds from 0.1 to 86400");
  }
  return static_cast<std::uint64_t>(std::llround(seconds * kMicroseconds));
}

std::uint64_t sizeOf(std::string text) {
  constexpr std::string_view kUnits = "KMGT";
  constexpr unsigned kBitsPerUnit = 10;
  const std::size_t unit = text.empty() ? std::string_view::npos : kUnits.find(text.back());
  if (unit == std::string_view::npos) return positive("--leave-free", text);
  const auto bits = static_cast<unsigned>(unit + 1) * kBitsPerUnit;
  text.pop_back();
  return static_cast<std::uint64_t>(wholeNumber("--leave-free", text, 1, kHighest >> bits)) << bits;
}

void take(Options& options, int code, const std::string& value) {
  switch (code) {
    case 'f':
      options.configuration = value;
      break;
    case 'i':
      options.interval = intervalOf(value);
      break;
    case 'n':
      options.count = positive("--count", value);
      break;
    case 'o':
      options.output = value;
      break;
    case kUtc:
      options.utc = true;
      break;
    case kKeep:
      options.keep = positive("--keep", value);
      break;
    case kLeaveFree:
      options.leaveFree = sizeOf(value);
      break;
    case kNoSync:
      options.sync = false;
      break;
    default:
      options.wait = true;
      break;
  }
}

// Refuses an option that would have no effect.
void check(const Options& options) {
  if (options.configuration.empty()) throw WrongCommandLine("give a configuration file with -f");
  const bool hasConversion = options.output.find('%') != std::string::npos;
  if (options.output.empty() && (options.leaveFree > 0 || !options.sync)) {
    throw WrongCommandLine("--leave-free and --no-sync need a file; give one with -o");
  }
  if (!hasConversion && (options.keep > 0 || options.utc)) {
    throw WrongCommandLine("--keep and --utc need a file name with a time in it, as in -o day-%F");
  }
  const std::size_t name = options.output.rfind('/') + 1;
  if (options.keep > 0 && options.output.find('%') < name) {
    throw WrongCommandLine("--keep needs the time in the file's own name, not in its folder's");
  }
}

}  // namespace

std::optional<Options> optionsOf(int argc, char** argv) {
  Options options;
  const auto others =
      readOptions(kProgram, argc, argv, kOptions,
                  [&options](int code, const std::string& value) { take(options, code, value); });
  if (!others) return std::nullopt;
  if (!others->empty()) throw WrongCommandLine("unexpected argument " + others->front());
  check(options);
  return options;
}

}  // namespace companions::record
