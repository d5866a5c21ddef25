#include "tal/sql/address.h"

#include <algorithm>
#include <charconv>

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

}  // namespace tal::sql
