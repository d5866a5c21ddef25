// The first words of a server, read before the client library answers them. The library answers
// every greeting, and sends the user name even if the server lacks the encryption that the library
// was told to use.
#pragma once

#include <cstdint>
#include <string_view>

#include "tal/sql/deadline.h"

namespace tal::mariadb {

enum class Greeting : std::uint8_t {
  kIncomplete,
  kForeign,  // of another protocol
  kRefusal,  // the server refuses the connection and gives a reason
  kPlain,    // offers no encryption
  kOffersEncryption,
};

// Classifies the bytes that a server has sent so far.
Greeting greetingIn(std::string_view bytes) noexcept;

// Waits for the greeting on a connected socket and leaves it there to be read. A peer that hangs up
// is kIncomplete. Throws Failure(kNoAnswer) when `deadline` passes.
Greeting awaitGreeting(int socket, const sql::Deadline& deadline);

}  // namespace tal::mariadb
