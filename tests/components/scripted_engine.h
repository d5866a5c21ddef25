// An engine that answers from tables and remembers how it was asked.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/fake_engine/record.h"

namespace component_tests {

using fake_engine::setText;
using ScriptedFile = fake_engine::File;
using ScriptedClient = fake_engine::Client;

// Expects every structure handed over to be cleared.
struct ScriptedEngine : fake_engine::Record {
  ScriptedEngine() { handle = 7; }

  // By call or by function name; what is not listed succeeds.
  std::map<std::string, std::int16_t> statuses;
  // Runs within each call, before it is answered; may throw.
  std::function<void(const std::string& call)> onCall = [](const std::string&) {};

  std::vector<std::string> calls;  // made so far

  [[nodiscard]] auto callsOf(const std::string& call) const {
    return std::count(calls.begin(), calls.end(), call);
  }
};

// The engine of this process; replaced by a new one before each test.
ScriptedEngine& engine();

// A client that the interface knows by this text and task number.
ScriptedClient clientNamed(std::string_view idText, std::uint16_t task = 0);

}  // namespace component_tests
