#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tal/sim/calls.h"
#include "tal/sim/read_scenario.h"

namespace tal::sim {
namespace {

Calls callsWith(const std::string& fault) {
  return Calls(parseScenario("[[fault]]\n" + fault + "\nstatus = 7015\n", "test").faults);
}

// Which of so many calls fail, as "x" for a failure and "." for success, over three refreshes of
// three look-ups each.
std::string walkThreeRefreshes(Calls& calls) {
  std::string outcome;
  const auto note = [&](Call call) {
    outcome += calls.count(call) == Status::kFileClosed ? 'x' : '.';
  };
  for (int refresh = 0; refresh < 3; ++refresh) {
    note(Call::kGetOpenFilesData);
    for (int file = 0; file < 3; ++file) note(Call::kGetFileInfo2);
    note(Call::kFreeOpenFilesData);
    outcome += ' ';
  }
  return outcome;
}

struct Case {
  const char* fault;
  const char* outcome;
};

TEST(Faults, HitTheCallsTheyName) {
  const std::vector<Case> cases = {
      {"call = 'TalGetFileInfo2'",                      ".xxx. .xxx. .xxx. "},
      {"call = 'TalGetFileInfo2'\nat = 2",              "..x.. ..... ..... "},
      {"call = 'TalGetFileInfo2'\nat = 5",              "..... ..x.. ..... "},
      {"call = 'TalGetFileInfo2'\nrefresh = 2",         "..... .xxx. ..... "},
      {"call = 'TalGetFileInfo2'\nrefresh = 3\nat = 1", "..... ..... .x... "},
      {"call = 'TalGetFileInfo2'\nrefresh = 3\nat = 4", "..... ..... ..... "},
      {"call = 'TalGetOpenFilesData'\nrefresh = 2",     "..... x.... ..... "},
      {"call = 'TalGetOpenFilesData'\nat = 2",          "..... x.... ..... "},
      {"call = 'TalFreeOpenFilesData'",                 "....x ....x ....x "},
      {"call = 'TalGetFileHandlesData'",                "..... ..... ..... "},
  };
  for (const Case& each : cases) {
    Calls calls = callsWith(each.fault);

    EXPECT_EQ(walkThreeRefreshes(calls), each.outcome) << each.fault;
  }
}

TEST(Faults, CountInTheOrderOfTheScenario) {
  const std::vector<std::string> keys = {"", "at = 1\n", "refresh = 1\n", "refresh = 1\nat = 1\n"};
  for (const std::string& first : keys) {
    for (const std::string& second : keys) {
      Calls calls = callsWith("call = 'TalStop'\n" + first +
                              "status = 7001\n[[fault]]\ncall = 'TalStop'\n" + second);

      EXPECT_EQ(static_cast<int>(calls.count(Call::kStop)), 7001) << first << second;
    }
  }
}

TEST(Faults, NameEveryFunctionButTalStart) {
  const std::vector<std::pair<std::string, Call>> names = {
      {"TalStop",                     Call::kStop                    },
      {"TalConnectServer",            Call::kConnectServer           },
      {"TalDisconnect",               Call::kDisconnect              },
      {"TalGetEngineInformation",     Call::kGetEngineInformation    },
      {"TalGetZorbVersion",           Call::kGetZorbVersion          },
      {"TalGetZorbUsageEx2",          Call::kGetZorbUsageEx2         },
      {"TalGetZorbCommStatEx",        Call::kGetZorbCommStatEx       },
      {"TalGetOpenFilesData",         Call::kGetOpenFilesData        },
      {"TalGetOpenFileName",          Call::kGetOpenFileName         },
      {"TalGetFileInfo2",             Call::kGetFileInfo2            },
      {"TalFreeOpenFilesData",        Call::kFreeOpenFilesData       },
      {"TalGetFileHandlesData",       Call::kGetFileHandlesData      },
      {"TalGetFileHandleInfo",        Call::kGetFileHandleInfo       },
      {"TalGetZorbClientsData",       Call::kGetZorbClientsData      },
      {"TalGetZorbClientId",          Call::kGetZorbClientId         },
      {"TalGetZorbClientInfo",        Call::kGetZorbClientInfo       },
      {"TalGetZorbClientHandlesData", Call::kGetZorbClientHandlesData},
      {"TalGetZorbClientHandleInfo",  Call::kGetZorbClientHandleInfo },
      {"TalFreeZorbClientsData",      Call::kFreeZorbClientsData     },
      {"TalGetSQLConnectionsData",    Call::kGetSQLConnectionsData   },
      {"TalGetSQLConnectionInfo2",    Call::kGetSQLConnectionInfo2   },
      {"TalFreeSQLConnectionsData",   Call::kFreeSQLConnectionsData  },
  };
  for (const auto& [name, call] : names) EXPECT_EQ(callNamed(name), call) << name;
  for (const char* name : {"", "TalStart", "talstop", "TalStop "}) {
    EXPECT_FALSE(callNamed(name).has_value()) << name;
  }
}

}  // namespace
}  // namespace tal::sim
