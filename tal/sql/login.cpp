#include "tal/sql/login.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

#include "tal/status.h"

namespace tal::sql {

std::string systemUser() {
  std::array<char, 16384> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  ::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found);
  if (found == nullptr) throw Failure(Status::kLoginRefused);
  return found->pw_name;
}

}  // namespace tal::sql
