// What every engine behind the interface must do, whatever it serves.
//
// To run the suite on an engine, link `tal_conformance` (and GTest::gtest_main) to its test
// program and name in one source where to connect to:
//
//   INSTANTIATE_TEST_SUITE_P(PostgreSql, Conformance,
//                            testing::Values(EngineUnderTest{"Version15", [] {
//                              return Target{server().name(), "monitor", "secret"};
//                            }}),
//                            nameOf);
//
// The function is called by each test, not when tests are listed; it may start a server at its
// first call. What the engine lists may be empty and may change at any time. The tests drive the
// C interface only, and nothing else of the process may use it meanwhile.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/tal/interface.h"

namespace tal::test {

struct EngineUnderTest {
  std::string name;  // letters and digits
  std::function<Target()> target;
};

inline std::string nameOf(const testing::TestParamInfo<EngineUnderTest>& info) {
  return info.param.name;
}

class Conformance : public testing::TestWithParam<EngineUnderTest> {
 protected:
  [[nodiscard]] std::int32_t connection() const { return connected(GetParam().target()); }

  Started started_;
};

}  // namespace tal::test
