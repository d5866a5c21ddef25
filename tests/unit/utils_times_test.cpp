#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

#include "tests/unit/printing.h"
#include "util/Utils.h"

namespace {

using orv::String;

TEST(UtilsTimes, WritesDurations) {
  struct Case {
    long seconds;
    const char* expected;
  };
  constexpr Case kCases[] = {
      {0,        "0 day  00:00:00"                    },
      {59,       "0 day  00:00:59"                    },
      {60,       "0 day  00:01:00"                    },
      {3599,     "0 day  00:59:59"                    },
      {3600,     "0 day  01:00:00"                    },
      {36610,    "0 day  10:10:10"                    },
      {86399,    "0 day  23:59:59"                    },
      {86400,    "1 day  00:00:00"                    },
      {93784,    "1 day  02:03:04"                    },
      {172799,   "1 day  23:59:59"                    },
      {172800,   "2 days  00:00:00"                   },
      {360000,   "4 days  04:00:00"                   },
      {-1,       "0 day  00:00:0-1"                   },
      {-93784,   "-1 day  0-2:0-3:0-4"                },
      {-259200,  "-3 day  00:00:00"                   },
      {-40271,   "0 day  0-11:0-11:0-11"              },
      {LONG_MAX, "106751991167300 days  15:30:07"     },
      {LONG_MIN, "-106751991167300 day  0-15:0-30:0-8"},
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(Utils::convertTimeInSecs(row.seconds), row.expected);
  }
}

// Another time zone while it lives.
class TimeZone {
 public:
  explicit TimeZone(const char* name) { setenv("TZ", name, 1); }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;
  ~TimeZone() {
    if (wasSet_) {
      setenv("TZ", before_.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
  }

 private:
  bool wasSet_ = std::getenv("TZ") != nullptr;
  std::string before_ = wasSet_ ? std::getenv("TZ") : "";
};

TEST(UtilsTimes, FormatsTheLocalTime) {
  const TimeZone zone("AHEAD-13:30");
  const auto expected = [](std::time_t now) {
    now += (13 * 60 + 30) * 60;
    char buffer[64];
    std::tm parts{};
    gmtime_r(&now, &parts);
    return String(std::string_view(
        buffer, std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S AHEAD +1330", &parts)));
  };

  // A second may pass while the time is taken.
  const std::time_t before = std::time(nullptr);
  const String text = Utils::getTime("%Y-%m-%d %H:%M:%S %Z %z");
  const std::time_t after = std::time(nullptr);

  bool isOneOf = false;
  for (std::time_t now = before; now <= after; ++now) isOneOf = isOneOf || text == expected(now);
  EXPECT_TRUE(isOneOf) << text.toBytes();
}

TEST(UtilsTimes, FollowsAnotherTimeZone) {
  {
    const TimeZone zone("ONE-1");
    EXPECT_EQ(Utils::getTime("%Z"), "ONE");
  }
  const TimeZone zone("TWO+2");

  EXPECT_EQ(Utils::getTime("%Z"), "TWO");
}

TEST(UtilsTimes, FormatsTimesOfUpTo99Bytes) {
  EXPECT_EQ(Utils::getTime(""), "");
  EXPECT_EQ(Utils::getTime("%%"), "%");
  EXPECT_EQ(Utils::getTime(std::string(99, 'x').c_str()), String(std::string(99, 'x')));
  EXPECT_EQ(Utils::getTime(std::string(100, 'x').c_str()), "");
}

}  // namespace
