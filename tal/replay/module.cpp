#include "tal/module.h"

#include "tal/replay/replay.h"

tal::OpenEngine* talModule(const char* abiTag) noexcept {
  return tal::unlessForeign(abiTag, tal::replay::open);
}
