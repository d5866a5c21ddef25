// The sudden death of a server.
#pragma once

#include "tests/mariadb/private_server.h"
#include "tests/postgresql/private_server.h"

namespace servers_testing {

// Kills the first process of the server alone; the others notice it and end. Returns when nobody
// answers any more.
void killServer(const testing_support::PrivateServer& server);

void killServer(const mariadb_testing::PrivateServer& server);

}  // namespace servers_testing
