// Ports of this machine that are no server's, or a wrong one's.
#pragma once

#include <cstdint>
#include <string>
#include <thread>

#include "tests/support/file_descriptor.h"

namespace mariadb_testing {

// A port of 127.0.0.1 on which nobody listens.
std::uint16_t freePort();

// Listens on a port of this machine, a free one unless it is named. Connections are made, and
// nothing is ever said on them.
class SilentListener {
 public:
  explicit SilentListener(const char* host = "127.0.0.1", std::uint16_t port = 0);

  [[nodiscard]] std::uint16_t port() const { return port_; }

 protected:
  testing_support::FileDescriptor listener_;

 private:
  std::uint16_t port_ = 0;
};

// Says one sentence to its first visitor, and listens until that hangs up.
class ForeignListener : public SilentListener {
 public:
  explicit ForeignListener(std::string sentence);
  ForeignListener(const ForeignListener&) = delete;
  ForeignListener& operator=(const ForeignListener&) = delete;
  ~ForeignListener();

  // What the visitor has said; waits until it has hung up.
  const std::string& heard();

 private:
  void serve(const std::string& sentence);

  std::string heard_;
  std::thread thread_;
};

}  // namespace mariadb_testing
