#include "tests/support/fake_engine/call.h"

#include <algorithm>
#include <cstring>

namespace fake_engine {
namespace {

std::string textOf(const tagTALCLIENTID& client) {
  return std::string(client.text, strnlen(client.text, sizeof client.text)) + "/" +
         std::to_string(client.first) + "/" + std::to_string(client.task);
}

template <typename Filled>
std::span<char> bytesOf(Filled* filled) {
  return {reinterpret_cast<char*>(filled), sizeof *filled};
}

std::span<char> bytesOf(std::monostate /*nothing*/) { return {}; }

}  // namespace

std::string textOf(const Call& call) {
  std::string arguments;
  const auto add = [&](const std::string& argument) { arguments += ", " + argument; };
  if (call.handle) add(std::to_string(*call.handle));
  if (call.client != nullptr) add(textOf(*call.client));
  for (const char* const text : call.texts) {
    if (text != nullptr) add(text);
  }
  if (call.index) add(std::to_string(*call.index));
  std::string text = call.function;
  text.append("(").append(arguments.empty() ? "null" : arguments.substr(2)).append(")");
  return text;
}

std::span<char> filledBytes(const Call& call) {
  if (call.name != nullptr) return {call.name, TAL_NAME_SIZE};
  return std::visit([](auto filled) { return bytesOf(filled); }, call.structure);
}

bool isCleared(const Call& call) {
  return std::ranges::all_of(filledBytes(call), [](char byte) { return byte == '\0'; });
}

}  // namespace fake_engine
