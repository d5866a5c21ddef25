// The first bytes of a server, whatever they are.
#include "tal/mariadb/greeting.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/mariadb/greetings.h"

namespace tal::mariadb {
namespace {

using mariadb_testing::greetingOf;
using mariadb_testing::packet;

TEST(GreetingTest, OffersEncryptionOrNot) {
  const std::string plain = greetingOf("10.11.9-MariaDB");
  const std::string encrypted = greetingOf("10.11.9-MariaDB", true);

  EXPECT_EQ(greetingIn(plain), Greeting::kPlain);
  EXPECT_EQ(greetingIn(encrypted), Greeting::kOffersEncryption);
  EXPECT_EQ(greetingIn(plain + encrypted), Greeting::kPlain);
  EXPECT_EQ(greetingIn(packet(0, "\xff\x10\x04Too many")), Greeting::kRefusal);
}

TEST(GreetingTest, IsAwaitedToItsEnd) {
  const std::string greeting = greetingOf("10.11.9-MariaDB", true);
  for (std::size_t size = 0; size < greeting.size(); ++size) {
    EXPECT_EQ(greetingIn(greeting.substr(0, size)), Greeting::kIncomplete) << size;
  }
}

TEST(GreetingTest, OtherProtocolsAreForeign) {
  const std::string foreign[] = {"SSH-2.0-OpenSSH_9.2p1 Debian-2\r\n",
                                 "HTTP/1.1 400 Bad Request\r\n",
                                 packet(0, std::string(60, '\x09')),
                                 packet(0, "\x0a" + std::string(60, 'v')),
                                 packet(0, "\x0a" + std::string("v\0short", 7)),
                                 std::string("\xff\xff\xff\0\x0a", 5)};
  for (const std::string& bytes : foreign)
    EXPECT_EQ(greetingIn(bytes), Greeting::kForeign) << bytes;
}

}  // namespace
}  // namespace tal::mariadb
