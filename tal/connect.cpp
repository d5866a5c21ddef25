#include "tal/connect.h"

#include <array>

#include "tal/module.h"
#include "tal/sim/sim.h"

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
