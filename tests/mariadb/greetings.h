// The words of servers of the tests' own making.
#pragma once

#include <string>

namespace mariadb_testing {

// A packet of the protocol.
inline std::string packet(char number, const std::string& content) {
  return std::string{static_cast<char>(content.size()), '\0', '\0', number} + content;
}

inline std::string greetingOf(const std::string& version, bool offersEncryption = false) {
  using namespace std::string_literals;
  const std::string capabilities = offersEncryption ? "\x00\xaa"s : "\x00\xa2"s;
  return packet(0, "\x0a"s + version + "\0"s + "\7\0\0\0"s + std::string(8, 's') + "\0"s +
                       capabilities + "\x2d"s + "\2\0"s + "\x08\0"s + "\x15"s +
                       std::string(10, '\0') + std::string(12, 's') + "\0"s +
                       "mysql_native_password\0"s);
}

}  // namespace mariadb_testing
