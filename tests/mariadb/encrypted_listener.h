// A server of the tests' own making that encrypts.
#pragma once

#include <string>
#include <thread>

#include "tests/support/loopback.h"

namespace mariadb_testing {

// Greets its first visitor, encrypts, and answers the login by asking for another way to log in.
// Whatever the visitor answers is a wrong password.
class EncryptedListener : public testing_support::SilentListener {
 public:
  // The certificate and its key are files in PEM.
  EncryptedListener(std::string certificate, std::string key, std::string way);
  EncryptedListener(const EncryptedListener&) = delete;
  EncryptedListener& operator=(const EncryptedListener&) = delete;
  ~EncryptedListener();

  // What the visitor has sent before encryption began, and what it has sent through it, in clear.
  // Waits until it has hung up.
  const std::string& heard();

 private:
  void serve();

  std::string certificate_;
  std::string key_;
  std::string way_;
  std::string heard_;
  std::thread thread_;
};

}  // namespace mariadb_testing
