#include "tal/module.h"

#include <dlfcn.h>

#include <cstdio>
#include <string>

#include "tal/text.h"

namespace tal {
namespace {

constexpr std::size_t kReasonLimit = 1000;
constexpr char kHere = 0;

// The status says only that the module cannot be used; the name of a library that is missing has no
// other way out.
[[noreturn]] void failMissing(std::string reason) {
  fitText(reason, kReasonLimit);
  std::fprintf(stderr, "libtal: %s\n", reason.c_str());
  throw Failure(Status::kModuleMissing);
}

// With a "/" at its end. Loaded by a relative name, this library is in no folder that stays the
// same when the process changes its own.
std::string ownFolder() {
  Dl_info own{};
  if (dladdr(&kHere, &own) == 0) failMissing("the library's own folder is not known");
  const std::string_view path = own.dli_fname;
  if (!path.starts_with('/')) failMissing(std::string(path) + ": not an absolute path");
  return std::string(path.substr(0, path.rfind('/') + 1));
}

}  // namespace

OpenEngine& moduleOf(const std::string& fileName) {
  const std::string path = ownFolder() + fileName;
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (module == nullptr) failMissing(dlerror());
  auto* const entry = reinterpret_cast<ModuleEntry*>(dlsym(module, kModuleEntryName));
  if (entry == nullptr) failMissing(dlerror());
  OpenEngine* const open = entry(kModuleInterface);
  if (open == nullptr) throw Failure(Status::kModuleForeign);
  return *open;
}

}  // namespace tal
