// What the program takes from its environment, and how long it keeps the password.
#include <unistd.h>

#include <string>

#include "tests/mariadb/server_test.h"
#include "tests/postgresql/server_test.h"
#include "tests/program/servers/monitor.h"
#include "tests/support/process_memory.h"

namespace servers_testing {
namespace {

using testing_support::Command;
using testing_support::Process;

const std::string kPassword = "hidden-password-of-the-user";
const std::string kEnd =
    "-of-the-user";  // what would be left of a copy that is overwritten in part

class PostgresqlPrivacyTest : public testing_support::ServerTest {
 protected:
  PostgresqlPrivacyTest() {
    admin_.run("DROP ROLE IF EXISTS private");
    admin_.run("CREATE ROLE private LOGIN IN ROLE pg_read_all_stats PASSWORD '" + kPassword + "'");
  }

  [[nodiscard]] Target target() const {
    return {"postgresql://127.0.0.1:" + std::to_string(server_.port()) + "/app", "private",
            kPassword};
  }
};

class MariadbPrivacyTest : public mariadb_testing::PlainServerTest {
 protected:
  MariadbPrivacyTest() {
    admin_.execute("CREATE OR REPLACE USER private@'127.0.0.1' IDENTIFIED BY '" + kPassword + "'");
    admin_.execute("GRANT ALL ON *.* TO private@'127.0.0.1'");
  }

  [[nodiscard]] Target target() const {
    return {"mariadb://" + mariadb_testing::locationOf(server_), "private", kPassword};
  }
};

// The client library keeps one copy, for the way in which it logged in, as long as the session
// lives.
TEST_F(PostgresqlPrivacyTest, PasswordIsForgottenButByTheClientLibrary) {
  if (!testing_support::kMemoryIsAsUsual) GTEST_SKIP() << "a sanitizer keeps freed memory";
  if (geteuid() != 0) GTEST_SKIP() << "only root can read the memory of the program";
  const Monitor monitor(target(), {
                                      {"REFR", "0"}
  });
  Process process(monitor.command(kTimed));
  process.waitForOutput("Type r to refresh, q to stop.");

  EXPECT_EQ(testing_support::copiesIn(process.id(), kEnd), 1);
}

TEST_F(MariadbPrivacyTest, PasswordIsForgottenOnceItWasUsed) {
  if (!testing_support::kMemoryIsAsUsual) GTEST_SKIP() << "a sanitizer keeps freed memory";
  if (geteuid() != 0) GTEST_SKIP() << "only root can read the memory of the program";
  const Monitor monitor(target(), {
                                      {"REFR", "0"}
  });
  Process process(monitor.command(kTimed));
  process.waitForOutput("Type r to refresh, q to stop.");

  EXPECT_EQ(testing_support::copiesIn(process.id(), kEnd), 0);
}

// With these, the client library would ask for settings that no server knows.
TEST_F(PostgresqlPrivacyTest, SettingsOfTheEnvironmentAreLeftOut) {
  const Monitor monitor(target());
  Command command = monitor.command(kAsText);
  for (const char* const name : {"PGTZ", "PGDATESTYLE", "PGGEQO"}) {
    command.environment[name] = "nonsense";
  }

  const testing_support::Result result = testing_support::run(command);

  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.ending, testing_support::Ending::exit(0));
}

}  // namespace
}  // namespace servers_testing
