#include "companions/shared/command_line.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "orv/Exception.h"

namespace companions {
namespace {

constexpr Program kProgram{"zelk-test", "Usage: zelk-test\n"};
constexpr int kUtc = 256;

// What was read: "code=value" for each option, then the other arguments.
std::string read(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "zelk-test");
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  const std::vector<Option> options = {
      {'f', "file", true},
      {'q',   "quiet"      },
      {kUtc,   "utc"},
  };
  std::string seen;
  const auto others = readOptions(kProgram, static_cast<int>(arguments.size()), argv.data(),
                                  options, [&](int code, const std::string& value) {
                                    seen += std::to_string(code) + "=" + value + " ";
                                  });
  if (!others) return seen + "nothing to do";
  for (const std::string& other : *others) seen += other + " ";
  return seen;
}

TEST(CommandLine, HasShortAndLongOptions) {
  EXPECT_EQ(read({}), "");
  EXPECT_EQ(read({"-f", "a", "-q", "--utc"}), "102=a 113= 256= ");
  EXPECT_EQ(read({"--file=a", "--file", "b", "-qfc"}), "102=a 102=b 113= 102=c ");
  EXPECT_EQ(read({"x", "-q", "--", "-f"}), "113= x -f ");
}

TEST(CommandLine, ServesHelpAndVersion) {
  for (const char* const help : {"-h", "--help"}) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(read({help, "-?"}), "nothing to do");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Usage: zelk-test\n");
  }
  for (const char* const version : {"-V", "--version"}) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(read({version}), "nothing to do");
    EXPECT_EQ(testing::internal::GetCapturedStdout().find("zelk-test 1"), 0U);
  }
}

TEST(CommandLine, NamesWhatItRefuses) {
  struct Case {
    std::vector<std::string> arguments;
    const char* complaint;
  };
  const std::vector<Case> cases = {
      {{"-x"},           "unknown option -x"              },
      {{"-qx"},          "unknown option -x"              },
      {{"--none"},       "unknown option --none"          },
      {{"--utc=1"},      "unknown option --utc=1"         },
      {{"-f"},           "the option -f needs a value"    },
      {{"-q", "--file"}, "the option --file needs a value"},
  };
  for (const Case& each : cases) {
    try {
      read(each.arguments);
      ADD_FAILURE() << each.complaint;
    } catch (const WrongCommandLine& failure) {
      EXPECT_STREQ(failure.what(), each.complaint);
    }
  }
}

TEST(CommandLine, TakesWholeNumbersInTheirRange) {
  EXPECT_EQ(wholeNumber("-n", "7", 1, 7), 7);
  for (const char* const wrong : {"", "0", "8", "7x", "+7", " 7", "99999999999999999999"}) {
    EXPECT_THROW(wholeNumber("-n", wrong, 1, 7), WrongCommandLine) << wrong;
  }
}

// It would hold the password.
TEST(CommandLineDeathTest, LeavesNoCoreFile) {
  const auto longestCoreFile = [] {
    rlimit limit{};
    ::getrlimit(RLIMIT_CORE, &limit);
    ::_exit(limit.rlim_max == 0 ? 0 : 1);
  };

  EXPECT_EXIT(runProgram(kProgram, longestCoreFile), testing::ExitedWithCode(0), "");
}

TEST(CommandLine, MakesExitCodesOfFailures) {
  struct Case {
    std::function<void()> body;
    int code;
    const char* error;
  };
  const std::vector<Case> cases = {
      {[] {},                                      0, ""                               },
      {[] { throw WrongCommandLine("no"); },       2,
       "zelk-test: no (zelk-test --help shows the options)\n"                          },
      {[] { throw orv::Exception("a line"); },     1, "zelk-test: a line\n"            },
      {[] { throw orv::ResultException(5); },      1, "zelk-test: failure 0x00000005\n"},
      {[] { throw std::runtime_error("broken"); }, 1, "zelk-test: broken\n"            },
      {[] { throw std::bad_alloc(); },             1, "zelk-test: out of memory\n"     },
  };
  for (const Case& each : cases) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(runProgram(kProgram, each.body), each.code);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), each.error);
  }
}

}  // namespace
}  // namespace companions
