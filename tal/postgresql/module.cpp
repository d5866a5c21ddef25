#include "tal/module.h"

#include "tal/postgresql/postgresql.h"

tal::OpenEngine* talModule(const char* abiTag) noexcept {
  return tal::unlessForeign(abiTag, tal::postgresql::open);
}
