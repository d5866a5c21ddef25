// The process that owns a private server.
#pragma once

#include <cstdint>
#include <filesystem>

namespace testing_support {

struct ServerSettings {
  std::filesystem::path folder;  // exists, is removed at the end
  std::uint16_t port = 0;
  const char* password = "";
};

// Makes a cluster in the folder, runs a server on it until `lifeLine` reaches its end, stops the
// server and removes the folder. A byte on `lifeLine` lets the server start again. For a process of
// its own; never returns.
[[noreturn]] void guardServer(const ServerSettings& settings, int lifeLine);

}  // namespace testing_support
