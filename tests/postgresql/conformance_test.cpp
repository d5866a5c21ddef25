// The engine behind the C interface.
#include "tests/tal/conformance.h"

#include "tests/postgresql/server_test.h"

namespace tal::test {
namespace {

Target privateServer() {
  using testing_support::PrivateServer;
  const PrivateServer& server = testing_support::sharedServer();
  return {"postgresql://127.0.0.1:" + std::to_string(server.port()) + "/app", "zelk",
          PrivateServer::kPassword};
}

INSTANTIATE_TEST_SUITE_P(PostgreSql, Conformance,
                         testing::Values(EngineUnderTest{"PrivateServer", &privateServer}), nameOf);

}  // namespace
}  // namespace tal::test
