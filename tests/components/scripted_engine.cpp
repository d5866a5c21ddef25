#include "tests/components/scripted_engine.h"

#include <gtest/gtest.h>

namespace component_tests {

ScriptedEngine& engine() {
  static ScriptedEngine s_engine;
  return s_engine;
}

ScriptedClient clientNamed(std::string_view idText, std::uint16_t task) {
  ScriptedClient client;
  setText(client.id.text, idText);
  client.id.task = task;
  return client;
}

}  // namespace component_tests

// Answers also with a status that is an error: a caller must not take what it gets then.
std::int16_t fake_engine::serve(const Call& call, const Next& /*next*/) {
  auto& engine = component_tests::engine();
  const std::string text = textOf(call);
  EXPECT_TRUE(isCleared(call)) << text << ": not cleared by the caller";
  EXPECT_TRUE(call.name == nullptr || *call.count == TAL_NAME_SIZE) << "not the buffer's size";
  engine.calls.push_back(text);
  engine.onCall(text);
  const std::int16_t status = answer(engine, call);
  for (const std::string& name : {text, std::string(call.function)}) {
    const auto found = engine.statuses.find(name);
    if (found != engine.statuses.end()) return found->second;
  }
  return status;
}
