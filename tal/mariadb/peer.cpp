#include "tal/mariadb/peer.h"

#include <algorithm>

#include "tal/engine.h"
#include "tal/sql/resolve.h"

namespace tal::mariadb {
namespace {

constexpr std::string_view kSocket = "Socket";
constexpr std::string_view kMappedPrefix = "::ffff:";  // an IPv4 address as IPv6 sockets have it

bool isThisMachine(std::string_view address) {
  if (address.starts_with(kMappedPrefix)) address.remove_prefix(kMappedPrefix.size());
  return address == "localhost" || sql::isLoopback(std::string(address));
}

}  // namespace

std::string_view hostOf(std::string_view hostAndPort) {
  const std::size_t colon = hostAndPort.rfind(':');
  if (colon == std::string_view::npos) return hostAndPort;
  const std::string_view port = hostAndPort.substr(colon + 1);
  const bool isPort = !port.empty() && port.find_first_not_of("0123456789") == port.npos;
  return isPort ? hostAndPort.substr(0, colon) : hostAndPort;
}

std::string Peer::address() const {
  if (!ip) return std::string(hostOf(hostAndPort));
  return ip->empty() ? std::string(kSocket) : *ip;
}

std::int32_t Peer::site() const {
  const std::string_view host = ip ? std::string_view(*ip) : hostOf(hostAndPort);
  const bool bySocket = ip ? ip->empty() : host.size() == hostAndPort.size();
  return bySocket || isThisMachine(host) ? site::kLocal : site::kRemote;
}

}  // namespace tal::mariadb
