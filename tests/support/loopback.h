// Ports of this machine: free ones, and ones with an unexpected listener.
#pragma once

#include <cstdint>
#include <string>
#include <thread>

#include "tests/support/file_descriptor.h"

namespace testing_support {

// A port of 127.0.0.1 on which nobody listens. While the object exists, no other ReservedPort on
// this machine has the port, and the system does not choose it for a program that requests any free
// port.
class ReservedPort {
 public:
  // Throws std::runtime_error if all ports are taken.
  ReservedPort();

  [[nodiscard]] std::uint16_t number() const { return number_; }

 private:
  FileDescriptor claim_;
  std::uint16_t number_ = 0;
};

// Listens on a port of this machine, a free one unless it is named. Accepts connections and never
// sends anything on them.
class SilentListener {
 public:
  explicit SilentListener(const char* host = "127.0.0.1", std::uint16_t port = 0);

  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] int socket() const { return listener_.number(); }

 private:
  FileDescriptor listener_;
  std::uint16_t port_ = 0;
};

// Sends one text to its first visitor, and reads until the visitor hangs up.
class ForeignListener : public SilentListener {
 public:
  explicit ForeignListener(std::string sentence);
  ForeignListener(const ForeignListener&) = delete;
  ForeignListener& operator=(const ForeignListener&) = delete;
  ~ForeignListener();

  // The bytes that the visitor has sent. Waits until it has hung up.
  const std::string& heard();

 private:
  void serve(const std::string& sentence);

  std::string heard_;
  std::thread thread_;
};

}  // namespace testing_support
