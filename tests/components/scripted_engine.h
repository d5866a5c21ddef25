// An engine that answers from tables. The test program itself defines the functions of the engine
// interface, which take precedence over those of libtal.so.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tal.h"

namespace component_tests {

struct ScriptedFile {
  std::string name;
  TalFileInfo info{};
  std::vector<TalFileHandleInfo> handles;
};

struct ScriptedClient {
  tagTALCLIENTID id{};
  TalClientInfo info{};
  std::vector<TalClientHandleInfo> handles;
};

// Calls are written as "TalGetOpenFileName(7, 1)": the connection handle, then what was passed; out
// parameters are left out. Every structure handed over must have been cleared. An index beyond a
// list is answered with TAL_STATUS_NO_ENTRY.
struct ScriptedEngine {
  std::int32_t handle = 7;  // what a connection gets
  std::int32_t engineType = 0;
  TalVersion version{};
  TalUsage usage{};
  TalCommStat communication{};
  std::vector<ScriptedFile> files;
  std::vector<ScriptedClient> clients;
  std::vector<TalSqlConnectionInfo> connections;

  // By call or by function name; what is not listed succeeds.
  std::map<std::string, std::int16_t> statuses;
  // By function name: announced in place of the list's length.
  std::map<std::string, std::uint32_t> counts;
  // Runs within each call, before it is answered; may throw.
  std::function<void(const std::string& call)> onCall = [](const std::string&) {};

  std::vector<std::string> calls;  // made so far

  [[nodiscard]] auto callsOf(const std::string& call) const {
    return std::count(calls.begin(), calls.end(), call);
  }
};

// The engine of this process; replaced by a new one before each test.
ScriptedEngine& engine();

// Puts a text into a field of a structure: with its NUL where that fits, else to the field's end.
template <std::size_t kSize>
void setText(char (&field)[kSize], std::string_view text) {
  std::fill_n(field, kSize, '\0');
  std::copy_n(text.begin(), std::min(text.size(), kSize), field);
}

// A client that the interface knows by this text and task number.
ScriptedClient clientNamed(std::string_view idText, std::uint16_t task = 0);

}  // namespace component_tests
