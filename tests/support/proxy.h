// Somebody between a client and a server.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <thread>

#include "tests/support/loopback.h"

namespace testing_support {

// Serves one visitor at a time: connects it to the server on a port of this machine, and passes on
// what both say. `change` may change what the server says first. Before the object ends, the
// visitors must have left.
class Proxy : public SilentListener {
 public:
  using Change = std::function<void(std::string& said)>;

  Proxy(std::uint16_t serverPort, Change change);
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;
  ~Proxy();

  // Ends the proxy; then all that its visitors have said.
  const std::string& heard();

 private:
  void serve();
  void pass(int visitor, int server);

  std::uint16_t serverPort_;
  Change change_;
  std::string heard_;
  std::thread thread_;
};

}  // namespace testing_support
