// Ports of this machine: free ones, and ones on which somebody unexpected listens.
#pragma once

#include <cstdint>
#include <string>
#include <thread>

#include "tests/support/file_descriptor.h"

namespace testing_support {

// A port of 127.0.0.1 on which nobody listens. As long as the object lives, no other ReservedPort
// on this machine is the same, and the system gives the port to nobody who asks for any free port.
class ReservedPort {
 public:
  // Throws std::runtime_error when all are taken.
  ReservedPort();

  [[nodiscard]] std::uint16_t number() const { return number_; }

 private:
  FileDescriptor claim_;
  std::uint16_t number_ = 0;
};

// Listens on a port of this machine, a free one unless it is named. Connections are made, and
// nothing is ever said on them.
class SilentListener {
 public:
  explicit SilentListener(const char* host = "127.0.0.1", std::uint16_t port = 0);

  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] int socket() const { return listener_.number(); }

 private:
  FileDescriptor listener_;
  std::uint16_t port_ = 0;
};

// Says one sentence to its first visitor, and listens until that hangs up.
class ForeignListener : public SilentListener {
 public:
  explicit ForeignListener(std::string sentence);
  ForeignListener(const ForeignListener&) = delete;
  ForeignListener& operator=(const ForeignListener&) = delete;
  ~ForeignListener();

  // What the visitor has said. Waits until it has hung up.
  const std::string& heard();

 private:
  void serve(const std::string& sentence);

  std::string heard_;
  std::thread thread_;
};

}  // namespace testing_support
