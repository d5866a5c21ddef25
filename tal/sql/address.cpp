#include "tal/sql/address.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <future>
#include <memory>
#include <thread>

#include "tal/sql/message.h"
#include "tal/sql/worker.h"
#include "tal/status.h"

namespace tal::sql {
namespace {

// The client libraries give some characters a meaning of their own: a comma separates hosts, and an
// "@" at the start names an abstract socket.
bool isHostCharacter(char character) {
  return character > ' ' && character < '\x7f' &&
         std::string_view(",@/[]").find(character) == std::string_view::npos;
}

std::string checkedHost(std::string_view host) {
  if (host.empty() || !std::all_of(host.begin(), host.end(), isHostCharacter)) {
    throw Failure(Status::kBadServerName);
  }
  return std::string(host);
}

Address parseBracketed(std::string_view text, std::uint16_t defaultPort) {
  const std::size_t close = text.find(']');
  if (close == std::string_view::npos) throw Failure(Status::kBadServerName);

  const std::string_view rest = text.substr(close + 1);
  if (!rest.empty() && rest.front() != ':') throw Failure(Status::kBadServerName);
  return {checkedHost(text.substr(1, close - 1)),
          parsePort(rest.empty() ? rest : rest.substr(1), defaultPort)};
}

using Addresses = std::vector<std::string>;

std::string numericText(const addrinfo& entry) {
  char text[NI_MAXHOST] = "";
  ::getnameinfo(entry.ai_addr, entry.ai_addrlen, text, sizeof text, nullptr, 0, NI_NUMERICHOST);
  return text;
}

struct Found {
  Addresses addresses;
  int error = 0;  // of getaddrinfo(), if there is no address
};

Found lookUp(const std::string& host, int flags) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = flags;
  addrinfo* list = nullptr;
  const int error = ::getaddrinfo(host.c_str(), nullptr, &hints, &list);
  if (error != 0) return {{}, error};

  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, &::freeaddrinfo);
  Addresses addresses;
  for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next) {
    std::string address = numericText(*entry);
    if (std::ranges::find(addresses, address) == addresses.end()) {
      addresses.push_back(std::move(address));
    }
  }
  return {addresses, addresses.empty() ? EAI_NONAME : 0};
}

// The thread cannot be stopped: after the deadline it is left behind and ends by itself. So it owns
// everything that it uses.
std::future<Found> startLookUp(const std::string& host) {
  std::packaged_task<Found()> task([host] { return lookUp(host, 0); });
  std::future<Found> result = task.get_future();
  const SignalsBlocked blocked;
  std::thread(std::move(task)).detach();
  return result;
}

}  // namespace

std::uint16_t parsePort(std::string_view text, std::uint16_t defaultPort) {
  if (text.empty()) return defaultPort;

  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc{} || end != text.data() + text.size() || port == 0) {
    throw Failure(Status::kBadServerName);
  }
  return port;
}

Address parseAddress(std::string_view text, std::uint16_t defaultPort) {
  if (text.starts_with('[')) return parseBracketed(text, defaultPort);

  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return {checkedHost(text), defaultPort};
  return {checkedHost(text.substr(0, colon)), parsePort(text.substr(colon + 1), defaultPort)};
}

std::vector<std::string> resolveHost(const std::string& host, const Deadline& deadline) {
  if (Found numeric = lookUp(host, AI_NUMERICHOST); numeric.error == 0) return numeric.addresses;

  std::future<Found> result = startLookUp(host);
  if (result.wait_for(deadline.remaining()) != std::future_status::ready) {
    throw Failure(Status::kNoAnswer);
  }
  Found found = result.get();
  if (found.addresses.empty()) {
    throw ExplainedFailure(Status::kCannotReach, host + ": " + ::gai_strerror(found.error));
  }
  return found.addresses;
}

bool isLoopback(const std::string& address) {
  in_addr v4{};
  if (::inet_pton(AF_INET, address.c_str(), &v4) == 1) return (ntohl(v4.s_addr) >> 24U) == 127;

  in6_addr v6{};
  return ::inet_pton(AF_INET6, address.c_str(), &v6) == 1 && IN6_IS_ADDR_LOOPBACK(&v6);
}

}  // namespace tal::sql
