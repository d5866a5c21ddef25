#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tal/sim/read_scenario.h"
#include "tal/sim/sim.h"

namespace tal::sim {
namespace {

// The engine of a scenario, asked as the interface asks it.
class Simulation {
 public:
  explicit Simulation(std::string_view text) : engine_(parseScenario(text, "test")) {}

  std::vector<OpenFile> openFiles() {
    announce(Call::kGetOpenFilesData);
    return engine_.openFiles();
  }
  std::vector<Client> clients() {
    announce(Call::kGetZorbClientsData);
    return engine_.clients();
  }
  std::vector<SqlConnection> sqlConnections() {
    announce(Call::kGetSQLConnectionsData);
    return engine_.sqlConnections();
  }
  Version version() {
    announce(Call::kGetZorbVersion);
    return engine_.version();
  }
  Usage usage() {
    announce(Call::kGetZorbUsageEx2);
    return engine_.usage();
  }
  Communication communication() {
    announce(Call::kGetZorbCommStatEx);
    return engine_.communication();
  }
  Information information() {
    announce(Call::kGetEngineInformation);
    return engine_.information();
  }

 private:
  void announce(Call call) { EXPECT_EQ(engine_.answerInstead(call), Status::kSuccess); }

  SimulatedEngine engine_;
};

TEST(Scenario, IsEmptyWithoutAnything) {
  Simulation simulation("");

  EXPECT_EQ(simulation.openFiles().size(), 0U);
  EXPECT_EQ(simulation.clients().size(), 0U);
  EXPECT_EQ(simulation.sqlConnections().size(), 0U);
  EXPECT_EQ(simulation.communication().protocols.size(), 0U);
  EXPECT_EQ(simulation.version().major, 0);
}

struct NumberCase {
  const char* value;
  std::vector<std::uint32_t> byRefresh;
};

TEST(Scenario, MovesNumbersByRefresh) {
  const std::vector<NumberCase> cases = {
      {"7",                                {7, 7, 7, 7}                                    },
      {"[7]",                              {7, 7, 7, 7}                                    },
      {"[7, 9, 8]",                        {7, 9, 8, 8}                                    },
      {"{ start = 7, step = 2 }",          {7, 9, 11, 13}                                  },
      {"{ step = 2 }",                     {0, 2, 4, 6}                                    },
      {"{ start = 7, each = 5 }",          {7, 7, 7, 7}                                    },
      {"{ start = 3, step = -2 }",         {3, 1, 0, 0}                                    },
      {"{ start = 4294967290, step = 4 }", {4294967290, 4294967294, 4294967295, 4294967295}},
      {"{ step = 4294967295 }",            {0, 4294967295, 4294967295, 4294967295}         },
      {"{}",                               {0, 0, 0, 0}                                    },
  };
  for (const NumberCase& each : cases) {
    Simulation simulation(std::string("[usage]\nup_time_seconds = ") + each.value);

    for (const std::uint32_t expected : each.byRefresh) {
      EXPECT_EQ(simulation.usage().upTimeSeconds, expected) << each.value;
    }
  }
}

TEST(Scenario, StepsNumbersByItem) {
  Simulation simulation(R"(
[[client]]
id = "c{n}"
count = 3
task_number = { start = 10, step = 1, each = 100 }
)");

  simulation.clients();
  const std::vector<Client> clients = simulation.clients();

  ASSERT_EQ(clients.size(), 3U);
  EXPECT_EQ(clients[0].taskNumber, 11);
  EXPECT_EQ(clients[1].taskNumber, 111);
  EXPECT_EQ(clients[2].taskNumber, 211);
}

TEST(Scenario, SumsStopAtTheEndsOfTheirRange) {
  using Limits = std::numeric_limits<std::int64_t>;
  constexpr std::int64_t kLargest = 4294967295;  // of a step

  EXPECT_EQ(sim::afterSteps(7, kLargest, 3), 7 + 3 * kLargest);
  EXPECT_EQ(sim::afterSteps(7, kLargest, kLargest), Limits::max());
  EXPECT_EQ(sim::afterSteps(-7, -kLargest, kLargest), Limits::min());
  EXPECT_EQ(sim::afterSteps(Limits::max(), 1, 1), Limits::max());
  EXPECT_EQ(sim::afterSteps(Limits::min(), -1, 1), Limits::min());
}

struct TextCase {
  const char* value;
  std::string third;
};

TEST(Scenario, FillsPlaceholdersInTexts) {
  const std::vector<TextCase> cases = {
      {"'plain'",           "plain"          },
      {"'{n}'",             "3"              },
      {"'a{n}b{n}c'",       "a3b3c"          },
      {"'{owner}'",         "1"              },
      {"'{xFF}{xe4}'",      "\xff\xe4"       },
      {"'{x1}{x123}{xG0}'", "{x1}{x123}{xG0}"},
      {"'{x0G}{abc}'",      "{x0G}{abc}"     },
      {"'{other} {n}'",     "{other} 3"      },
      {"'{{n}}'",           "{3}"            },
      {"'{'",               "{"              },
      {"'{n'",              "{n"             },
      {"'}{n}'",            "}3"             },
      {"['first']",         "first"          },
  };
  for (const TextCase& each : cases) {
    Simulation simulation(std::string("[[file]]\ncount = 3\nname = ") + each.value);

    EXPECT_EQ(simulation.openFiles().at(2).name, each.third) << each.value;
  }
}

TEST(Scenario, ChangesTextsByRefresh) {
  Simulation simulation("[[sql_connection]]\nuser_name = ['anna', 'bert']");

  EXPECT_EQ(simulation.sqlConnections().at(0).userName, "anna");
  EXPECT_EQ(simulation.sqlConnections().at(0).userName, "bert");
  EXPECT_EQ(simulation.sqlConnections().at(0).userName, "bert");
}

TEST(Scenario, NumbersHandlesWithinTheirOwners) {
  Simulation simulation(R"(
[[file]]
name = "f{n}"
count = 2
handle = [{ client = "c{n} of {owner}", client_index = { start = 1, each = 1 }, count = 2 }]
)");

  const std::vector<OpenFile> files = simulation.openFiles();

  ASSERT_EQ(files.size(), 2U);
  ASSERT_EQ(files[1].handles.size(), 2U);
  EXPECT_EQ(files[1].name, "f2");
  EXPECT_EQ(files[1].handles[0].clientName, "c1 of 2");
  EXPECT_EQ(files[1].handles[1].clientName, "c2 of 2");
  EXPECT_EQ(files[1].handles[1].clientIndex, 2U);
}

TEST(Scenario, LetsItemsComeAndGo) {
  Simulation simulation(R"(
[[file]]
name = "always{n}"
count = [1, 0, 2]
[[file]]
name = "second"
from = 2
until = 2
)");
  std::vector<std::string> listed;

  for (int refresh = 0; refresh < 4; ++refresh) {
    std::string names;
    for (const OpenFile& file : simulation.openFiles()) names += file.name + " ";
    listed.push_back(names);
  }

  EXPECT_EQ(listed, (std::vector<std::string>{"always1 ", "second ", "always1 always2 ",
                                              "always1 always2 "}));
}

TEST(Scenario, CountsTheRefreshesOfEachListAlone) {
  Simulation simulation(R"(
[version]
major = [1, 2]
[[file]]
name = ["first", "second"]
[[client]]
id = ["first", "second"]
)");

  simulation.openFiles();

  EXPECT_EQ(simulation.clients().at(0).id, "first");
  EXPECT_EQ(simulation.openFiles().at(0).name, "second");
  EXPECT_EQ(simulation.version().major, 1);
  EXPECT_EQ(simulation.version().major, 2);
}

TEST(Scenario, GivesEveryValueOfTheCounters) {
  Simulation simulation(R"(
[engine]
type = 1
flag = 2
first = 3
second = 4
third = 5
[version]
major = 6
minor = 7
build = 8
[usage]
locks = { current = 9, peak = 10 }
sessions = { current = 11, peak = 12, maximum = -1 }
[communication]
requests = 13
counter_1 = 14
counter_2 = 15
counter_3 = 16
threads = { current = 17, peak = 18, maximum = 19 }
timeouts = 20
recoveries = 21
protocol = [{ code = "netbios", requests = 22, current_sessions = 23, peak_sessions = 24 }]
)");

  const Information information = simulation.information();
  const Version version = simulation.version();
  const Usage usage = simulation.usage();
  const Communication communication = simulation.communication();

  EXPECT_EQ(information.engineType, 1);
  EXPECT_EQ(information.flag, 2);
  EXPECT_EQ(information.first, 3);
  EXPECT_EQ(information.second, 4);
  EXPECT_EQ(information.third, 5);
  EXPECT_EQ(version.major, 6);
  EXPECT_EQ(version.minor, 7);
  EXPECT_EQ(version.build, 8);
  EXPECT_EQ(usage.locks.current, 9U);
  EXPECT_EQ(usage.locks.peak, 10U);
  EXPECT_EQ(usage.sessions.current, 11U);
  EXPECT_EQ(usage.sessions.peak, 12U);
  EXPECT_EQ(usage.sessions.maximum, -1);
  EXPECT_EQ(communication.requests, 13U);
  EXPECT_EQ(communication.counters[0], 14U);
  EXPECT_EQ(communication.counters[1], 15U);
  EXPECT_EQ(communication.counters[2], 16U);
  EXPECT_EQ(communication.threads.current, 17U);
  EXPECT_EQ(communication.threads.peak, 18U);
  EXPECT_EQ(communication.threads.maximum, 19);
  EXPECT_EQ(communication.timeouts, 20U);
  EXPECT_EQ(communication.recoveries, 21U);
  ASSERT_EQ(communication.protocols.size(), 1U);
  EXPECT_EQ(communication.protocols[0].code, 12U);
  EXPECT_EQ(communication.protocols[0].requests, 22U);
  EXPECT_EQ(communication.protocols[0].currentSessions, 23U);
  EXPECT_EQ(communication.protocols[0].peakSessions, 24U);
}

TEST(Scenario, GivesEveryValueOfAClient) {
  Simulation simulation(R"(
[[client]]
id = "anna"
first_number = 1
task_number = 2
site = "local"
network_address = "address"
reserved = 3
records_deleted = 4
records_updated = 5
records_inserted = 6
records_read = 7
disk_accesses = 8
cache_accesses = 9
locks_used = 10
transaction_state = "concurrent"
process_id = 11
connection_number = 12
session_name = "session"
handle = [{ file = "f", open_mode = 1, record_lock = 2, wait_state = 3, transaction_state = 4 }]
)");

  const Client client = simulation.clients().at(0);

  EXPECT_EQ(client.id, "anna");
  EXPECT_EQ(client.firstNumber, 1);
  EXPECT_EQ(client.taskNumber, 2);
  EXPECT_EQ(client.site, site::kLocal);
  EXPECT_EQ(client.networkAddress, "address");
  EXPECT_EQ(client.reserved, 3);
  EXPECT_EQ(client.recordsDeleted, 4U);
  EXPECT_EQ(client.recordsUpdated, 5U);
  EXPECT_EQ(client.recordsInserted, 6U);
  EXPECT_EQ(client.recordsRead, 7U);
  EXPECT_EQ(client.diskAccesses, 8U);
  EXPECT_EQ(client.cacheAccesses, 9U);
  EXPECT_EQ(client.locksUsed, 10U);
  EXPECT_EQ(client.transactionState, 1019);
  EXPECT_EQ(client.processId, 11U);
  EXPECT_EQ(client.connectionNumber, 12U);
  EXPECT_EQ(client.sessionName, "session");
  ASSERT_EQ(client.handles.size(), 1U);
  EXPECT_EQ(client.handles[0].fileName, "f");
  EXPECT_EQ(client.handles[0].openMode, 1);
  EXPECT_EQ(client.handles[0].recordLockType, 2);
  EXPECT_EQ(client.handles[0].waitState, 3);
  EXPECT_EQ(client.handles[0].transactionState, 4);
}

}  // namespace
}  // namespace tal::sim
