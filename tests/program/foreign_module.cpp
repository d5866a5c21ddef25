// A module of a build whose interface is another than the library's.
#include "tal/module.h"

namespace {

std::unique_ptr<tal::Engine> open(std::string_view /*location*/,
                                  const tal::Credentials& /*credentials*/) {
  return nullptr;
}

}  // namespace

tal::OpenEngine* talModule(const char* interface) noexcept {
  return tal::unlessForeign(interface, open);
}
