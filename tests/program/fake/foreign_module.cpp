// A module of a build that has another ABI tag than the library.
#include "tal/module.h"

namespace {

std::unique_ptr<tal::Engine> open(std::string_view /*location*/,
                                  const tal::Credentials& /*credentials*/) {
  return nullptr;
}

}  // namespace

tal::OpenEngine* talModule(const char* abiTag) noexcept { return tal::unlessForeign(abiTag, open); }
