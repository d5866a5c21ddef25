#include "tal/mariadb/greeting.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <thread>

#include "tal/sql/deadline.h"

namespace tal::mariadb {
namespace {

// A packet has its length in three bytes, its number, and its content.
constexpr std::size_t kHeader = 4;
constexpr std::size_t kLongest = 1024;

constexpr std::uint8_t kProtocol = 10;
constexpr std::uint8_t kError = 255;

// Between the version and the capabilities: its NUL, the connection's number, a salt and a NUL.
constexpr std::size_t kToCapabilities = 1 + 4 + 8 + 1;
constexpr unsigned kEncryptionCapability = 0x0800;

std::uint8_t byteAt(std::string_view bytes, std::size_t index) {
  return static_cast<std::uint8_t>(bytes[index]);
}

Greeting greetingOf(std::string_view packet) {
  const std::size_t capabilities = packet.find('\0', 1) + kToCapabilities;
  if (packet.find('\0', 1) == packet.npos || packet.size() < capabilities + 2) {
    return Greeting::kForeign;
  }
  const unsigned offered = byteAt(packet, capabilities) | unsigned{byteAt(packet, capabilities + 1)}
                                                              << 8U;
  return (offered & kEncryptionCapability) != 0 ? Greeting::kOffersEncryption : Greeting::kPlain;
}

}  // namespace

Greeting greetingIn(std::string_view bytes) noexcept {
  if (bytes.size() <= kHeader) return Greeting::kIncomplete;
  const std::size_t length =
      byteAt(bytes, 0) | std::size_t{byteAt(bytes, 1)} << 8U | std::size_t{byteAt(bytes, 2)} << 16U;
  const std::uint8_t kind = byteAt(bytes, kHeader);
  if (length > kLongest - kHeader || (kind != kProtocol && kind != kError)) {
    return Greeting::kForeign;
  }
  if (bytes.size() < kHeader + length) return Greeting::kIncomplete;
  return kind == kError ? Greeting::kRefusal : greetingOf(bytes.substr(kHeader, length));
}

Greeting awaitGreeting(int socket, const sql::Deadline& deadline) {
  constexpr std::chrono::milliseconds kPause{5};  // unread bytes end every poll() at once
  std::array<char, kLongest> bytes{};
  for (;;) {
    const short ready = sql::waitForSocket(socket, POLLIN | POLLRDHUP, deadline);
    const ssize_t size = ::recv(socket, bytes.data(), bytes.size(), MSG_PEEK | MSG_DONTWAIT);
    if (size <= 0) return Greeting::kIncomplete;
    const Greeting greeting = greetingIn({bytes.data(), static_cast<std::size_t>(size)});
    const bool hungUp = (ready & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
    if (greeting != Greeting::kIncomplete || hungUp) return greeting;
    std::this_thread::sleep_for(kPause);
  }
}

}  // namespace tal::mariadb
