// What the tests of VXAMonitorHelper have in common.
#pragma once

#include <cstdint>
#include <new>
#include <string>
#include <vector>

#include "engine/VXAMonitorHelper.h"
#include "tests/components/component_test.h"

namespace component_tests {

using Calls = std::vector<std::string>;
using Statuses = std::vector<std::int16_t>;

// Has a helper that is connected under the handle 7; its connecting is not among the calls.
class EngineTest : public ComponentTest {
 protected:
  EngineTest() {
    helper_.connect("server", "user", "password");
    engine().calls.clear();
  }

  // The status of the VXAException that the operation ends with; 0 if it ends normally.
  template <class Operation>
  static int failureOf(Operation operation) {
    try {
      operation();
    } catch (const VXAException& failure) {
      return failure.getErrorCode();
    }
    return 0;
  }

  // A call that fails because there is no memory.
  static void runOutOfMemoryAt(const std::string& call) {
    engine().onCall = [call](const std::string& made) {
      if (made == call) throw std::bad_alloc();
    };
  }

  VXAMonitorHelper helper_;
};

}  // namespace component_tests
