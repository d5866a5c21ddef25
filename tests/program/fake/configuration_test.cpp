// Which settings a configuration file comes to, seen in what the program says of them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/program/fake/expected_text.h"
#include "tests/program/program_under_test.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::Command;
using testing_support::Ending;
using testing_support::maskTimes;
using testing_support::Result;
using testing_support::run;
using testing_support::sameText;
using testing_support::writeFile;

const std::vector<std::string> kKeys = {"SERV", "USER", "PASS", "REFR", "LIMI", "OUTP", "NAME",
                                        "FILE", "SESS", "CONN", "RESO", "COMM", "HAND"};

// The text without the lines that begin with these letters.
std::string without(const std::string& text, const std::string& beginning) {
  const auto at = text.find(beginning + "=");
  return text.substr(0, at) + text.substr(text.find('\n', at) + 1);
}

std::string missing(const std::string& key) {
  return "The key " + key +
         " is missing in the configuration file. Every key must be present; its value may be "
         "empty.\n";
}

class Configuration : public ::testing::Test {
 protected:
  // Runs once with these values; standard output is to show these settings and nothing else.
  void expectShown(const std::vector<std::pair<std::string, std::string>>& changes,
                   const Shown& shown) {
    place_.configure(changes);

    const Result result = run(place_.command(kOnce));

    EXPECT_PRED_FORMAT2(sameText, kBanner + runHeader(shown), maskTimes(result.output));
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.ending, Ending::exit(0));
  }

  Workplace place_;
};

TEST_F(Configuration, NamesTheMissingKey) {
  for (const std::string& key : kKeys) {
    writeFile(place_ / "zelk.cfg", without(configuration(), key));

    const Result result = run(place_.command(kOnce));

    EXPECT_EQ(result.output, kBanner);
    EXPECT_EQ(result.error, missing(key));
    EXPECT_EQ(result.ending, Ending::exit(1));
  }
}

TEST_F(Configuration, MustBeReadable) {
  Command command = place_.unprivilegedCommand(kOnce);
  std::filesystem::permissions(place_ / "zelk.cfg", std::filesystem::perms::none);

  const Result result = run(command);

  EXPECT_EQ(result.error,
            "Cannot read the configuration file \"zelk.cfg\": permission denied (0x80070005). "
            "Check its name and permissions.\n");
  EXPECT_EQ(result.ending, Ending::exit(1));
}

TEST_F(Configuration, NamesTheFirstOfSeveralMissingKeys) {
  std::string text = configuration();
  for (auto key = kKeys.rbegin(); key != kKeys.rend(); ++key) {
    text = without(text, *key);
    writeFile(place_ / "zelk.cfg", text);

    const Result result = run(place_.command(kOnce));

    EXPECT_EQ(result.error, missing(*key));
  }
}

// What is no configuration file must not fill the memory.
TEST_F(Configuration, RefusesASettingThatIsTooLong) {
  const std::string tooLong(70000, 'x');
  for (const std::string& line : {"NAME=" + tooLong, tooLong + "=x"}) {
    writeFile(place_ / "zelk.cfg", configuration() + line + "\n");

    const Result result = run(place_.command(kOnce));

    EXPECT_EQ(result.error,
              "A line of the configuration file is longer than 65536 characters. Is it a "
              "configuration file?\n");
    EXPECT_EQ(result.ending, Ending::exit(1));
  }
}

TEST_F(Configuration, IgnoresALongLineThatIsNoSetting) {
  const std::string tooLong(70000, 'x');
  writeFile(place_ / "zelk.cfg", tooLong + "\n//" + tooLong + "=x\n" + configuration());

  const Result result = run(place_.command(kOnce));

  EXPECT_PRED_FORMAT2(sameText, kBanner + runHeader({}), maskTimes(result.output));
  EXPECT_EQ(result.ending, Ending::exit(0));
}

TEST_F(Configuration, MakesARefreshRateOfWhatIsWritten) {
  struct Row {
    const char* written;
    const char* rate;
  };
  const Row rows[] = {
      {"",           "0"         },
      {"0",          "0"         },
      {"1",          "5"         },
      {"2",          "5"         },
      {"3",          "5"         },
      {"4",          "5"         },
      {"5",          "5"         },
      {"6",          "6"         },
      {"+7",         "7"         },
      {"-2",         "0"         },
      {"08",         "8"         },
      {"00",         "0"         },
      {"abc",        "0"         },
      {"9s",         "0"         },
      {"1.5",        "0"         },
      {"0x10",       "0"         },
      {"3600",       "3600"      },
      {"2147483647", "2147483647"},
      {"2147483648", "0"         }
  };

  for (const Row& row : rows) {
    SCOPED_TRACE(row.written);
    expectShown(
        {
            {"REFR", row.written}
    },
        {.rate = row.rate});
  }
}

TEST_F(Configuration, MakesALimitOfWhatIsWritten) {
  struct Row {
    const char* rate;
    const char* written;
    const char* shownRate;
    const char* limit;
  };
  const Row rows[] = {
      {"5",  "",     "5", "0"   },
      {"5",  "0",    "5", "0"   },
      {"5",  "1",    "5", "1"   },
      {"3",  "7",    "5", "7"   },
      {"5",  "-1",   "5", "0"   },
      {"5",  "x",    "5", "0"   },
      {"5",  "00",   "5", "0"   },
      {"5",  "1000", "5", "1000"},
      {"0",  "3",    "0", "0"   },
      {"-2", "3",    "0", "0"   },
      {"x",  "3",    "0", "0"   },
      {"",   "3",    "0", "0"   }
  };

  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.rate) + " " + row.written);
    expectShown(
        {
            {"REFR", row.rate   },
            {"LIMI", row.written}
    },
        {.rate = row.shownRate, .limit = row.limit});
  }
}

TEST_F(Configuration, SendsTheOutputWhereItIsToGo) {
  struct Row {
    const char* written;
    bool console;
    bool file;
  };
  const Row rows[] = {
      {"cons",       true,  false},
      {"CONSOLE",    true,  false},
      {"cOnSidered", true,  false},
      {"both",       true,  true },
      {"BoTh",       true,  true },
      {"bothering",  true,  true },
      {"FILE",       false, true },
      {"con",        false, true },
      {"bot",        false, true },
      {"anything",   false, true },
      {" BOTH",      false, true },
      {"x",          false, true }
  };

  for (const Row& row : rows) {
    SCOPED_TRACE(row.written);
    std::filesystem::remove(place_ / "monitor.log");
    place_.configure({
        {"OUTP", row.written}
    });
    const std::string report = runHeader({.output = row.written});

    const Result result = run(place_.command(kOnce));

    EXPECT_PRED_FORMAT2(sameText, kBanner + (row.console ? report : ""), maskTimes(result.output));
    EXPECT_PRED_FORMAT2(sameText, row.file ? report : "", place_.maskedFile("monitor.log"));
    EXPECT_EQ(std::filesystem::exists(place_ / "monitor.log"), row.file);
  }
}

TEST_F(Configuration, SwitchesOffWithNoAlone) {
  struct Row {
    const char* written;
    bool isOn;
  };
  const Row rows[] = {
      {"NO",    false},
      {"no",    false},
      {"No",    false},
      {"nO",    false},
      {"N",     true },
      {"false", true },
      {"0",     true },
      {"",      true },
      {" NO",   true },
      {"NOT",   true },
      {"YES",   true },
      {"1",     true },
      {"off",   true }
  };

  for (const Row& row : rows) {
    SCOPED_TRACE(row.written);
    expectShown(
        {
            {"HAND", row.written}
    },
        {.handles = row.isOn});
  }
}

TEST_F(Configuration, ShowsTheNameOfTheLog) {
  expectShown(
      {
          {"NAME", ""}
  },
      {.file = "monitor.log"});
  expectShown(
      {
          {"NAME", "other name.txt"}
  },
      {.file = "other name.txt"});
  EXPECT_FALSE(std::filesystem::exists(place_ / "other name.txt"));
}

TEST_F(Configuration, HandsTheCredentialsOverAndShowsNone) {
  for (const char* const status : {"0", "7104"}) {
    for (const auto& arguments : {kOnce, kOnceJson}) {
      std::filesystem::remove(place_ / "trace");
      place_.disturb(std::string("status TalConnectServer 1 ") + status + "\n");
      place_.configure({
          {"SERV", "the server"         },
          {"USER", "somebody"           },
          {"PASS", " s3cr\xC3\xA4t\xFF "},
          {"OUTP", "BOTH"               }
      });

      const Result result = run(place_.command(arguments));

      const std::string all = result.output + result.error + place_.maskedFile("monitor.log");
      EXPECT_EQ(all.find("s3cr"), std::string::npos) << all;
      EXPECT_EQ(all.find("somebody"), std::string::npos) << all;
      EXPECT_NE(all.find("the server"), std::string::npos) << all;
      EXPECT_NE(
          place_.trace().find("\nTalConnectServer(the server, somebody,  s3cr\xC3\xA4t\xFF)\n"),
          std::string::npos)
          << place_.trace();
    }
  }
}

TEST_F(Configuration, RefusesCredentialsThatAreTooLong) {
  for (const char* const key : {"SERV", "USER", "PASS"}) {
    std::filesystem::remove(place_ / "trace");
    place_.configure({
        {key, std::string(256, 'x')}
    });

    const Result result = run(place_.command(kOnce));

    EXPECT_EQ(result.error,
              "The server name, the user name or the password is longer than 255 bytes or holds a "
              "NUL byte. Correct it in the configuration file.\n");
    EXPECT_EQ(result.ending, Ending::exit(1));
    EXPECT_EQ(place_.trace(), "TalStart(null)\nTalStop(null)\n");
  }
}

TEST_F(Configuration, WarnsOfAPasswordThatOthersCanRead) {
  const std::string warning =
      "Warning: other users can read the configuration file \"zelk.cfg\", which holds a password. "
      "Make it readable by its owner alone (chmod 600).";
  const std::string jsonWarning =
      "\t\"warning\": \"Warning: other users can read the configuration file \\\"zelk.cfg\\\", "
      "which holds a password. Make it readable by its owner alone (chmod 600).\"";
  const auto errorWith = [this](const std::string& password, unsigned permissions,
                                const std::vector<std::string>& arguments) {
    place_.configure({
        {"PASS", password}
    });
    std::filesystem::permissions(place_ / "zelk.cfg", std::filesystem::perms(permissions));
    const Result result = run(place_.command(arguments));
    EXPECT_EQ(result.ending, Ending::exit(0));
    EXPECT_EQ(result.output.find("Warning"), std::string::npos);
    return result.error;
  };

  EXPECT_EQ(errorWith("secret", 0644, kOnce), warning + "\n");
  EXPECT_EQ(errorWith("secret", 0644, kOnceJson), jsonWarning + "\n");
  EXPECT_EQ(errorWith("secret", 0600, kOnce), "");
  EXPECT_EQ(errorWith("", 0644, kOnce), "");
}

TEST_F(Configuration, RefusesAnEndlessFile) {
  for (const std::string file : {"/dev/zero", "/dev/urandom"}) {
    const Result result = run(place_.command({"-f", file, "-runonce"}));

    EXPECT_EQ(result.error,
              "The configuration file is larger than 4 MiB. Is it a configuration file?\n");
    EXPECT_EQ(result.ending, Ending::exit(1));
  }
}

// The exit code must not depend on what a file of messages says.
TEST_F(Configuration, RefusesCredentialsThatAreTooLongWithoutAText) {
  writeFile(place_ / "tree/share/zelk/messages/ZELK.properties",
            "ZELK_ERR_CREDENTIALS_TOO_LONG=\nZELK_FATAL_ERROR=fatal 0x%08X\n");
  place_.configure({
      {"PASS", std::string(256, 'x')}
  });

  const Result result = run(place_.command(kOnce));

  EXPECT_EQ(result.error, "fatal 0x80070016\n");
  EXPECT_EQ(result.ending, Ending::exit(0x16));
}

TEST_F(Configuration, TakesCredentialsOf255Bytes) {
  const std::string longest(255, 'x');
  place_.configure({
      {"SERV", longest},
      {"USER", longest},
      {"PASS", longest}
  });

  const Result result = run(place_.command(kOnce));

  EXPECT_EQ(result.ending, Ending::exit(0));
  EXPECT_NE(
      place_.trace().find("TalConnectServer(" + longest + ", " + longest + ", " + longest + ")"),
      std::string::npos);
}

}  // namespace
}  // namespace program_tests
