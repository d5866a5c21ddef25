// What the client library is told about a connection.
#pragma once

#include <cstdint>
#include <string>

namespace tal::postgresql {

struct Target {
  std::string host;     // name, numeric address or socket folder; the password file is asked for it
  std::string address;  // numeric; empty for a socket
  std::uint16_t port = 0;
  std::string database;
  std::string user;
  std::string password;  // empty: only the user's own password file may supply one
  bool requireTls = false;
};

// The connection string for a target. It names every parameter that the client library would
// otherwise take from an environment variable, empty ones too (which only this form can do), so
// that a monitor does the same wherever it is started. The settings that the library sends beside
// its parameters are left to WithoutSessionVariables.
std::string connectionString(const Target& target);

}  // namespace tal::postgresql
