#include "tal/module.h"

#include "tal/mariadb/mariadb.h"

tal::OpenEngine* talModule(const char* abiTag) noexcept {
  return tal::unlessForeign(abiTag, tal::mariadb::open);
}
