#include "tests/program/servers/kill_server.h"

#include <libpq-fe.h>
#include <signal.h>

#include "tests/postgresql/server_test.h"
#include "tests/program/servers/shared_memory.h"
#include "tests/support/wait_until.h"

namespace servers_testing {

void killServer(const testing_support::PrivateServer& server) {
  const pid_t process = server.process();
  const SharedMemory memory(process);
  ::kill(process, SIGKILL);
  const std::string address = server.connectionString("postgres", "secret", "app");
  ASSERT_TRUE(
      testing_support::waitUntil([&] { return PQping(address.c_str()) == PQPING_NO_RESPONSE; }));
  memory.remove();
}

void killServer(const mariadb_testing::PrivateServer& server) { ::kill(server.process(), SIGKILL); }

}  // namespace servers_testing
