#include "tal/connect.h"

#include <dlfcn.h>

#include <array>
#include <climits>
#include <cstdio>
#include <string>

#include "tal/module.h"
#include "tal/sim/sim.h"
#include "tal/text.h"

namespace tal {
namespace {

// An engine is either built in, or in the module with this file name.
struct Scheme {
  std::string_view prefix;
  OpenEngine* builtIn;
  const char* module;
};

constexpr std::array kSchemes = {
    Scheme{"sim:",          sim::open, nullptr            },
    Scheme{"postgresql://", nullptr,   "tal-postgresql.so"},
    Scheme{"mariadb://",    nullptr,   "tal-mariadb.so"   },
    Scheme{"replay:",       nullptr,   "tal-replay.so"    },
};

constexpr std::size_t kReasonLimit = 1000;
constexpr char kHere = 0;

// The status says only that the module cannot be used. Only this line names a library that is
// missing.
[[noreturn]] void failMissing(std::string reason) {
  fitText(reason, kReasonLimit);
  std::fprintf(stderr, "libtal: %s\n", reason.c_str());
  throw Failure(Status::kModuleMissing);
}

// Where this library was loaded from, with a "/" at its end; absolute, so that it stays the same
// when the process changes its working folder.
std::string ownFolder() {
  Dl_info own{};
  void* object = nullptr;
  // The loader would take a relative name as relative to the working folder.
  std::array<char, 2UL * PATH_MAX> folder{};
  if (dladdr1(&kHere, &own, &object, RTLD_DL_LINKMAP) == 0 ||
      dlinfo(object, RTLD_DI_ORIGIN, folder.data()) != 0) {
    failMissing("the library's own folder is not known");
  }
  return std::string(folder.data()) + "/";
}

// Loads the module of that file name from the folder of this library and from nowhere else. It
// stays loaded until the process ends.
OpenEngine& moduleOf(const std::string& fileName) {
  const std::string path = ownFolder() + fileName;
  // Our modules are linked to bind all their calls at once. The two dozen libraries behind a client
  // library are not, and most of their calls never happen.
  void* const module = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
  if (module == nullptr) failMissing(dlerror());
  auto* const entry = reinterpret_cast<ModuleEntry*>(dlsym(module, kModuleEntryName));
  if (entry == nullptr) failMissing(dlerror());
  OpenEngine* const open = entry(kAbiTag);
  if (open == nullptr) throw Failure(Status::kModuleForeign);
  return *open;
}

}  // namespace

std::unique_ptr<Engine> openEngine(std::string_view server, const Credentials& credentials) {
  for (const auto& [prefix, builtIn, module] : kSchemes) {
    if (!server.starts_with(prefix)) continue;
    OpenEngine& open = builtIn != nullptr ? *builtIn : moduleOf(module);
    return open(server.substr(prefix.size()), credentials);
  }
  throw Failure(Status::kUnknownScheme);
}

std::unique_ptr<Engine> openLocalEngine() { return sim::openDemo(); }

}  // namespace tal
