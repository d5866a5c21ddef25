#include "tal/module.h"

#include "tal/postgresql/postgresql.h"

tal::OpenEngine* talModule(const char* interface) noexcept {
  return tal::unlessForeign(interface, tal::postgresql::open);
}
