#include "tal/connect.h"

#include <array>

#include "tal/mariadb/mariadb.h"
#include "tal/postgresql/postgresql.h"
#include "tal/sim/sim.h"

namespace tal {
namespace {

struct Scheme {
  std::string_view prefix;
  std::unique_ptr<Engine> (*open)(std::string_view location, const Credentials& credentials);
};

constexpr std::array kSchemes = {
    Scheme{"sim:",          sim::open       },
    Scheme{"postgresql://", postgresql::open},
    Scheme{"mariadb://",    mariadb::open   },
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
