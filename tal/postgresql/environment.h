// Environment variables that the client library reads whatever it is told.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace tal::postgresql {

// While it exists, the variables whose settings the client library sends to a server beside the
// parameters of a connection are absent. One exists at a time; others wait. The environment is
// touched only if one of them is set, for other threads may be reading it.
class WithoutSessionVariables {
 public:
  WithoutSessionVariables();
  WithoutSessionVariables(const WithoutSessionVariables&) = delete;
  WithoutSessionVariables& operator=(const WithoutSessionVariables&) = delete;
  ~WithoutSessionVariables();

 private:
  std::lock_guard<std::mutex> lock_;
  std::map<const char*, std::string> values_;
};

}  // namespace tal::postgresql
