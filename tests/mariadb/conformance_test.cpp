// What every engine must do, on both servers.
#include "tests/tal/conformance.h"

#include "tests/mariadb/server_test.h"

namespace tal::test {
namespace {

Target targetOn(const mariadb_testing::PrivateServer& server) {
  return {"mariadb://" + mariadb_testing::locationOf(server), "zelk", "secret"};
}

INSTANTIATE_TEST_SUITE_P(
    MariaDb, Conformance,
    testing::Values(EngineUnderTest{"Instrumented",
                                    [] { return targetOn(mariadb_testing::instrumentedServer()); }},
                    EngineUnderTest{"Plain",
                                    [] { return targetOn(mariadb_testing::plainServer()); }}),
    nameOf);

}  // namespace
}  // namespace tal::test
