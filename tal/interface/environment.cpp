#include "tal/interface/environment.h"

#include <stdlib.h>

namespace tal::interface {
namespace {

constexpr const char* kNames[] = {
    "LIBMYSQL_ENABLE_CLEARTEXT_PLUGIN",
    "LIBMYSQL_PLUGINS",
    "MARIADB_PLUGIN_DIR",
    "PGDATESTYLE",
    "PGGEQO",
    "PGTZ",
};

}  // namespace

void removeClientVariables() noexcept {
  for (const char* const name : kNames) ::unsetenv(name);
}

}  // namespace tal::interface
