// Environment variables that the client library always reads.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace tal::postgresql {

// Besides the parameters of a connection, the client library sends the settings of some variables
// to a server. While this object exists, these variables are absent. One object exists at a time;
// others wait. The environment is changed only if one of the variables is set, because other
// threads may be reading it.
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
