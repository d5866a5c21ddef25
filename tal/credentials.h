// Who logs in to a server.
#pragma once

#include <string>

namespace tal {

// Either text may be empty.
struct Credentials {
  std::string user;
  std::string password;
};

}  // namespace tal
