#include <gtest/gtest.h>

#include "config/ConfigData.h"
#include "tests/unit/configuration.h"
#include "tests/unit/printing.h"

namespace {

using testing_support::Configuration;

class ConfigFileReaderValues : public ::testing::Test {
 protected:
  [[nodiscard]] orv::OwningPtr<ConfigData> read(const Configuration& configuration) const {
    return configurations_.read(configuration.text());
  }

 private:
  const testing_support::ConfigurationFolder configurations_;
};

TEST_F(ConfigFileReaderValues, RaisesSmallRefreshRatesToFive) {
  struct Case {
    const char* value;
    int rate;
  };
  constexpr Case kCases[] = {
      {"",            0         },
      {"0",           0         },
      {"1",           5         },
      {"3",           5         },
      {"4",           5         },
      {"5",           5         },
      {"6",           6         },
      {" 7 ",         7         },
      {"+8",          8         },
      {"-1",          0         },
      {"-2",          0         },
      {"00",          0         },
      {"ten",         0         },
      {"10s",         0         },
      {"2147483647",  2147483647},
      {"2147483648",  0         },
      {"-2147483648", 0         },
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(read(Configuration().with("REFR", row.value))->refreshRate, row.rate) << row.value;
  }
}

TEST_F(ConfigFileReaderValues, LimitsRepeatedRefreshesAlone) {
  struct Case {
    const char* rate;
    const char* limit;
    int expected;
  };
  constexpr Case kCases[] = {
      {"10",  "3",          3         },
      {"10",  "",           0         },
      {"10",  "0",          0         },
      {"10",  "-3",         0         },
      {"10",  "many",       0         },
      {"10",  " 3 ",        3         },
      {"10",  "2147483647", 2147483647},
      {"10",  "2147483648", 0         },
      {"3",   "3",          3         },
      {"0",   "3",          0         },
      {"",    "3",          0         },
      {"-2",  "3",          0         },
      {"ten", "3",          0         },
  };

  for (const Case& row : kCases) {
    const auto data = read(Configuration().with("REFR", row.rate).with("LIMI", row.limit));
    EXPECT_EQ(data->refreshLimit, row.expected) << row.rate << ' ' << row.limit;
  }
}

TEST_F(ConfigFileReaderValues, SendsOutputWhereTheFirstFourLettersSay) {
  struct Case {
    const char* value;
    bool console;
    bool file;
  };
  constexpr Case kCases[] = {
      {"CONSOLE",    true,  false},
      {"console",    true,  false},
      {"cons",       true,  false},
      {"constant",   true,  false},
      {"BoTh",       true,  true },
      {"bothersome", true,  true },
      {"FILE",       false, true },
      {"con",        false, true },
      {"bot",        false, true },
      {" BOTH",      false, true },
      {"x",          false, true },
  };

  for (const Case& row : kCases) {
    const auto data = read(Configuration().with("OUTP", row.value));
    EXPECT_EQ(data->outputType, row.value);
    EXPECT_EQ(data->consoleOutput, row.console) << row.value;
    EXPECT_EQ(data->fileOutput, row.file) << row.value;
  }
}

TEST_F(ConfigFileReaderValues, NamesTheLogFileItself) {
  EXPECT_EQ(read(Configuration().with("NAME", ""))->logFileName, "monitor.log");
  EXPECT_EQ(read(Configuration().with("NAME", "/var/log/z.log"))->logFileName, "/var/log/z.log");
  EXPECT_EQ(read(Configuration().with("NAME", "a=b"))->logFileName, "monitor.log");
}

TEST_F(ConfigFileReaderValues, SwitchesAReportOffByNoAlone) {
  struct Flag {
    const char* key;
    bool ConfigData::*field;
  };
  constexpr Flag kFlags[] = {
      {"FILE", &ConfigData::showFiles         },
      {"SESS", &ConfigData::showSessions      },
      {"CONN", &ConfigData::showConnections   },
      {"RESO", &ConfigData::showResources     },
      {"COMM", &ConfigData::showCommunications},
      {"HAND", &ConfigData::showHandles       },
  };

  for (const Flag& flag : kFlags) {
    for (const char* off : {"NO", "no", "No", "nO", "NO \t"}) {
      EXPECT_FALSE((*read(Configuration().with(flag.key, off))).*flag.field) << flag.key << off;
    }
    for (const char* on : {"", "YES", "N", "false", "0", " NO", "NON", "NO=NO", "n o"}) {
      EXPECT_TRUE((*read(Configuration().with(flag.key, on))).*flag.field) << flag.key << on;
    }
  }
}

}  // namespace
