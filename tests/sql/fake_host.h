// Hosts of the tests' own: getaddrinfo() of a program that this is linked into knows them, and
// everything else as before.
#pragma once

#include <string>
#include <vector>

namespace sql_testing {

// A host with these addresses while it lives, tried in this order.
class FakeHost {
 public:
  FakeHost(std::string name, std::vector<std::string> addresses);
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;
  ~FakeHost();

 private:
  std::string name_;
};

// A host about which nobody answers while it lives. At its end, who still asks is told that the
// look-up failed, and has gone.
class SilentHost {
 public:
  explicit SilentHost(std::string name);
  SilentHost(const SilentHost&) = delete;
  SilentHost& operator=(const SilentHost&) = delete;
  ~SilentHost();

 private:
  std::string name_;
};

}  // namespace sql_testing
