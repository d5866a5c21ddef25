#include "tal/connect.h"

#include <array>

#include "tal/module.h"
#include "tal/sim/sim.h"

namespace tal {
namespace {

std::unique_ptr<Engine> openPostgresql(std::string_view location, const Credentials& credentials) {
  return moduleOf("tal-postgresql.so")(location, credentials);
}

std::unique_ptr<Engine> openMariadb(std::string_view location, const Credentials& credentials) {
  return moduleOf("tal-mariadb.so")(location, credentials);
}

struct Scheme {
  std::string_view prefix;
  OpenEngine* open;
};

constexpr std::array kSchemes = {
    Scheme{"sim:",          sim::open     },
    Scheme{"postgresql://", openPostgresql},
    Scheme{"mariadb://",    openMariadb   },
};

}  // namespace

std::unique_ptr<Engine> openEngine(std::string_view server, const Credentials& credentials) {
  for (const Scheme& scheme : kSchemes) {
    if (server.starts_with(scheme.prefix)) {
      return scheme.open(server.substr(scheme.prefix.size()), credentials);
    }
  }
  throw Failure(Status::kUnknownScheme);
}

std::unique_ptr<Engine> openLocalEngine() { return sim::openDemo(); }

}  // namespace tal
