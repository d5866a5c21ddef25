#include "tal/module.h"

#include "tal/mariadb/mariadb.h"

tal::OpenEngine* talModule(const char* interface) noexcept {
  return tal::unlessForeign(interface, tal::mariadb::open);
}
