// Logging in: who is let in, and what an administrator reads otherwise.
#include <stdlib.h>

#include <optional>

#include "tal/sql/login.h"
#include "tests/mariadb/encrypted_listener.h"
#include "tests/mariadb/greetings.h"
#include "tests/mariadb/server_test.h"
#include "tests/sql/fake_host.h"
#include "tests/support/frozen.h"
#include "tests/support/loopback.h"
#include "tests/support/proxy.h"
#include "tests/support/temporary_folder.h"

namespace mariadb_testing {
namespace {

using tal::Status;
using testing_support::ForeignListener;
using testing_support::ReservedPort;
using testing_support::SilentListener;

// A home folder of the test's own, so that the user's option file is the test's as well.
class LoginTest : public PlainServerTest {
 protected:
  LoginTest() { ::setenv("HOME", home_.path().c_str(), 1); }
  ~LoginTest() override {
    if (before_) {
      ::setenv("HOME", before_->c_str(), 1);
    } else {
      ::unsetenv("HOME");
    }
  }

  void writeOptions(const std::string& text) {
    testing_support::writeFile(home_ / ".my.cnf", text);
    std::filesystem::permissions(home_ / ".my.cnf", std::filesystem::perms(0600));
  }

  // Changes the account "zelk" for a while.
  Status statusWith(const std::string& change, const std::string& undo) {
    admin_.execute(change);
    const Status status = statusOfLogin(locationOf(server_), "zelk");
    admin_.execute(undo);
    return status;
  }

 private:
  static std::optional<std::string> present() {
    const char* const home = ::getenv("HOME");
    return home == nullptr ? std::nullopt : std::optional<std::string>(home);
  }

  testing_support::TemporaryFolder home_;
  std::optional<std::string> before_ = present();
};

TEST_F(LoginTest, Accounts) {
  EXPECT_EQ(statusOfLogin(locationOf(server_), "zelk"), Status::kSuccess);
  EXPECT_EQ(statusOfLogin(server_.socketPath(), "root", ""), Status::kSuccess);
  EXPECT_EQ(statusOfLogin(locationOf(server_), "zelk", "wrong"), Status::kLoginRefused);
  EXPECT_EQ(statusOfLogin(locationOf(server_), "nobody"), Status::kLoginRefused);
  EXPECT_EQ(statusOfLogin(locationOf(server_), "zelk", ""), Status::kPasswordMissing);
  EXPECT_EQ(statusOfLogin(locationOf(server_), "noproc"), Status::kPrivilegeMissing);
  EXPECT_EQ(statusOfLogin(locationOf(server_), "nops"), Status::kPrivilegeMissing);
}

TEST_F(LoginTest, StateOfTheAccount) {
  engine_.reset();
  EXPECT_EQ(statusWith("ALTER USER zelk@'127.0.0.1' ACCOUNT LOCK",
                       "ALTER USER zelk@'127.0.0.1' ACCOUNT UNLOCK"),
            Status::kAccountLocked);
  EXPECT_EQ(statusWith("ALTER USER zelk@'127.0.0.1' PASSWORD EXPIRE",
                       "ALTER USER zelk@'127.0.0.1' IDENTIFIED BY 'secret'"),
            Status::kPasswordExpired);
  EXPECT_EQ(statusWith("SET GLOBAL disconnect_on_expired_password = ON", "DO 0"), Status::kSuccess);
  EXPECT_EQ(statusWith("ALTER USER zelk@'127.0.0.1' PASSWORD EXPIRE",
                       "ALTER USER zelk@'127.0.0.1' IDENTIFIED BY 'secret'"),
            Status::kPasswordExpired);
  admin_.execute("SET GLOBAL disconnect_on_expired_password = OFF");
}

TEST_F(LoginTest, NoFreeConnection) {
  admin_.execute("ALTER USER zelk@'127.0.0.1' WITH MAX_USER_CONNECTIONS 1");
  const auto first = openEngine(server_);

  EXPECT_EQ(statusOfLogin(locationOf(server_), "zelk"), Status::kNoConnectionSlot);
  admin_.execute("ALTER USER zelk@'127.0.0.1' WITH MAX_USER_CONNECTIONS 0");
}

TEST_F(LoginTest, NobodyThere) {
  const ReservedPort closed;
  EXPECT_EQ(statusOfLogin("127.0.0.1:" + std::to_string(closed.number()), "zelk"),
            Status::kCannotReach);
  EXPECT_EQ(statusOfLogin("/nonexistent/mysqld.sock", "zelk"), Status::kCannotReach);
  EXPECT_EQ(statusOfLogin("no-such-host.invalid", "zelk"), Status::kCannotReach);
}

TEST_F(LoginTest, LongestSocketPath) {
  const testing_support::TemporaryFolder folder;
  const std::string start = folder.path().string() + '/';
  const std::string longest = start + std::string(107 - start.size(), 's');
  for (const std::string& path : {longest, longest + 's'}) {
    std::filesystem::create_symlink(server_.socketPath(), path);
  }

  EXPECT_EQ(statusOfLogin(longest, "root", ""), Status::kSuccess);
  EXPECT_EQ(statusOfLogin(longest + 's', "root", ""), Status::kBadServerName);
}

TEST_F(LoginTest, EachAddressOfAHostIsTried) {
  const sql_testing::FakeHost host("shop", {"127.0.0.2", "127.0.0.3", "127.0.0.1"});
  const sql_testing::FakeHost gone("gone", {"127.0.0.2", "127.0.0.3"});
  const std::string port = locationOf(server_).substr(std::string("127.0.0.1").size());

  EXPECT_EQ(statusOfLogin("shop" + port, "zelk"), Status::kSuccess);
  EXPECT_EQ(statusOfLogin("gone" + port, "zelk"), Status::kCannotReach);
}

TEST_F(LoginTest, SilentAddressDoesNotHideTheOthers) {
  const std::string port = locationOf(server_).substr(std::string("127.0.0.1:").size());
  const SilentListener silent("127.0.0.2", static_cast<std::uint16_t>(std::stoi(port)));
  const sql_testing::FakeHost host("shop", {"127.0.0.2", "127.0.0.1"});

  EXPECT_EQ(statusOfLogin("shop:" + port, "zelk"), Status::kSuccess);
}

TEST_F(LoginTest, TheFirstAddressThatAnswersDecides) {
  const sql_testing::FakeHost host("shop", {"127.0.0.1", "127.0.0.2"});
  const std::string port = locationOf(server_).substr(std::string("127.0.0.1").size());

  EXPECT_EQ(statusOfLogin("shop" + port, "zelk", "wrong"), Status::kLoginRefused);
}

TEST_F(LoginTest, SomethingElseThere) {
  const ForeignListener foreign("SSH-2.0-OpenSSH_9.2p1 Debian-2\r\n");

  EXPECT_EQ(statusOfLogin("127.0.0.1:" + std::to_string(foreign.port()), "zelk"),
            Status::kOtherProtocol);
}

// The words of a server that asks at once for another way to log in.
std::string greetingThatAsksFor(const std::string& way) {
  using namespace std::string_literals;
  return greetingOf("5.5.5-10.11.9-MariaDB") + packet(2, "\xfe"s + way + "\0"s);
}

TEST_F(LoginTest, OtherServersAreNotAsked) {
  const std::string welcome = packet(2, std::string("\0\0\0\2\0\0\0", 7));
  for (const char* const version : {"5.5.5-10.5.27-MariaDB", "8.0.36"}) {
    const ForeignListener server(greetingOf(version) + welcome);

    EXPECT_EQ(statusOfLogin("127.0.0.1:" + std::to_string(server.port()), "zelk"),
              Status::kVersionNotSupported)
        << version;
  }
}

TEST_F(LoginTest, PasswordIsGivenToNobodyWhoAsksForIt) {
  for (const char* const way : {"mysql_clear_password", "dialog", "caching_sha2_password",
                                "sha256_password", "mysql_old_password"}) {
    ForeignListener server(greetingThatAsksFor(way));

    EXPECT_EQ(statusOfLogin("127.0.0.1:" + std::to_string(server.port()), "zelk"),
              Status::kUnsafeLogin)
        << way;
    const std::string& heard = server.heard();
    EXPECT_NE(heard.find("zelk"), std::string::npos) << way;
    EXPECT_EQ(heard.find("secret"), std::string::npos) << way;
  }
}

// Accounts whose password something else checks need it in clear, PAM for instance. The certificate
// is made out to "localhost".
TEST_F(LoginTest, ClearPasswordGoesToAVerifiedServerOnly) {
  struct Row {
    std::string options;
    const char* host;
    const char* way;
    Status status;
    bool isNamed;  // the user
    bool isGiven;  // the password
  };
  const std::string authority = "ssl-ca=" + server_.certificate() + "\n";
  const std::string unverified = authority + "ssl-verify-server-cert=0\n";
  const std::string anothers = "ssl-verify-server-cert\n";  // of the system
  const char* const clear = "mysql_clear_password";
  const Row rows[] = {
      {authority,  "localhost", clear,    Status::kLoginRefused, true,  true },
      {authority,  "localhost", "dialog", Status::kUnsafeLogin,  true,  false},
      {authority,  "127.0.0.1", clear,    Status::kTlsFailed,    false, false},
      {anothers,   "localhost", clear,    Status::kTlsFailed,    false, false},
      {unverified, "localhost", clear,    Status::kUnsafeLogin,  true,  false},
      {"ssl\n",    "localhost", clear,    Status::kUnsafeLogin,  true,  false},
  };

  for (const Row& row : rows) {
    SCOPED_TRACE(row.options + row.host + " " + row.way);
    writeOptions("[zelk]\n" + row.options);
    EncryptedListener server(server_.certificate(), server_.certificateKey(), row.way);

    EXPECT_EQ(statusOfLogin(row.host + (":" + std::to_string(server.port())), "zelk"), row.status);
    const std::string& heard = server.heard();
    EXPECT_EQ(heard.find("zelk") != std::string::npos, row.isNamed);
    EXPECT_EQ(heard.ends_with(packet(4, std::string("secret\0", 7))), row.isGiven);
    EXPECT_EQ(heard.find("secret") != std::string::npos, row.isGiven);
  }
}

TEST_F(LoginTest, NothingIsSaidToAServerThatDoesNotProveItself) {
  writeOptions("[zelk]\nssl-verify-server-cert\n");
  ForeignListener server(greetingThatAsksFor("mysql_clear_password"));

  EXPECT_EQ(statusOfLogin("127.0.0.1:" + std::to_string(server.port()), "zelk"),
            Status::kTlsFailed);
  EXPECT_EQ(server.heard().find("secret"), std::string::npos);
  EXPECT_EQ(server.heard().find("zelk"), std::string::npos);
}

// What somebody in between makes of the greeting of a server that offers encryption.
TEST_F(LoginTest, NothingIsSaidWhenTheOfferToEncryptIsTakenAway) {
  for (const char* const options : {"ssl", "ssl-enforce", "ssl-ca=/etc/ssl/cert.pem"}) {
    writeOptions(std::string("[zelk]\n") + options + "\n");
    ForeignListener stripped(greetingOf("5.5.5-10.11.9-MariaDB") + packet(2, "\0\0\0\2\0\0\0"));

    EXPECT_EQ(statusOfLogin("127.0.0.1:" + std::to_string(stripped.port()), "zelk"),
              Status::kTlsFailed)
        << options;
    EXPECT_EQ(stripped.heard(), "") << options;
  }
}

// In front of a server that does encrypt. Its greeting has its version, ended by a NUL, between the
// first 5 bytes and 13 others; then come two bytes of capabilities, the lower one first.
TEST_F(LoginTest, NothingIsSaidToAProxyThatTakesTheOfferAway) {
  const auto takeTheOfferAway = [](std::string& greeting) {
    char& capabilities = greeting.at(greeting.find('\0', 5) + 15);
    capabilities = static_cast<char>(capabilities & ~0x08);
  };
  testing_support::Proxy stripping(server_.port(), takeTheOfferAway);
  const std::string location = "127.0.0.1:" + std::to_string(stripping.port());

  EXPECT_EQ(statusOfLogin(location, "zelk"), Status::kSuccess);  // not wanted on this machine
  testing_support::Proxy again(server_.port(), takeTheOfferAway);
  writeOptions("[zelk]\nssl\n");
  EXPECT_EQ(statusOfLogin("127.0.0.1:" + std::to_string(again.port()), "zelk"), Status::kTlsFailed);
  EXPECT_EQ(again.heard(), "");
}

// This form of its address does not pass for this machine's.
TEST_F(LoginTest, ToAnotherMachineTheSessionIsEncryptedOrRefused) {
  const auto elsewhere = [](const PrivateServer& server) {
    return "[::ffff:127.0.0.1]:" + std::to_string(server.port());
  };
  admin_.execute("ALTER USER zelk@'127.0.0.1' REQUIRE SSL");
  EXPECT_EQ(statusOfLogin(elsewhere(server_), "zelk"), Status::kSuccess);
  admin_.execute("ALTER USER zelk@'127.0.0.1' REQUIRE NONE");

  EXPECT_EQ(statusOfLogin(elsewhere(instrumentedServer()), "zelk"), Status::kTlsFailed);
  writeOptions("[zelk]\nskip-ssl\n");
  EXPECT_EQ(statusOfLogin(elsewhere(instrumentedServer()), "zelk"), Status::kSuccess);
}

TEST_F(LoginTest, NoUserIsTheOneWhoRunsTheProgram) {
  ForeignListener server(greetingThatAsksFor("dialog"));

  statusOfLogin("127.0.0.1:" + std::to_string(server.port()), "");

  EXPECT_NE(server.heard().find(tal::sql::systemUser()), std::string::npos);
}

TEST_F(LoginTest, PasswordFromTheOptionFile) {
  writeOptions("[client]\npassword=wrong\nuser=nobody\n[zelk]\npassword=\"secret\"\n");

  EXPECT_EQ(statusOfLogin(locationOf(server_), "zelk", ""), Status::kSuccess);
  EXPECT_EQ(statusOfLogin(locationOf(server_), "zelk", "other"), Status::kLoginRefused);
}

TEST_F(LoginTest, OtherGroupsOfTheOptionFileAreNotRead) {
  writeOptions("[client]\npassword=secret\n[client-mariadb]\npassword=secret\n");

  EXPECT_EQ(statusOfLogin(locationOf(server_), "zelk", ""), Status::kPasswordMissing);
}

TEST_F(LoginTest, EncryptionByTheOptionFile) {
  admin_.execute("ALTER USER zelk@'127.0.0.1' REQUIRE SSL");
  const std::string port = ":" + std::to_string(server_.port());
  const std::string authority = "ssl-ca=" + server_.certificate() + "\n";

  EXPECT_EQ(statusOfLogin("127.0.0.1" + port, "zelk"), Status::kLoginRefused);
  writeOptions("[zelk]\nssl\n");
  EXPECT_EQ(statusOfLogin("127.0.0.1" + port, "zelk"), Status::kSuccess);
  writeOptions("[zelk]\n" + authority + "ssl-verify-server-cert\n");
  EXPECT_EQ(statusOfLogin("localhost" + port, "zelk"), Status::kSuccess);
  EXPECT_EQ(statusOfLogin("127.0.0.1" + port, "zelk"), Status::kTlsFailed);
  writeOptions("[zelk]\n" + authority);
  EXPECT_EQ(statusOfLogin("localhost" + port, "zelk"), Status::kSuccess);
  EXPECT_EQ(statusOfLogin("127.0.0.1" + port, "zelk"), Status::kTlsFailed);
  writeOptions("[zelk]\nssl-ca=/nonexistent/ca.pem\n");
  EXPECT_EQ(statusOfLogin("127.0.0.1" + port, "zelk"), Status::kTlsFailed);
  admin_.execute("ALTER USER zelk@'127.0.0.1' REQUIRE NONE");
}

TEST_F(LoginTest, EncryptionIsNotGivenUp) {
  const std::string location = locationOf(instrumentedServer());

  for (const char* const options : {"ssl", "ssl-enforce=1", "ssl-verify-server-cert",
                                    "ssl_cipher=AES", "ssl-colour=blue", "tls-version=TLSv1.3"}) {
    writeOptions(std::string("[zelk]\n") + options + "\n");
    EXPECT_EQ(statusOfLogin(location, "zelk"), Status::kTlsFailed) << options;
  }
  writeOptions("[zelk]\nssl=0\n");
  EXPECT_EQ(statusOfLogin(location, "zelk"), Status::kSuccess);
}

TEST_F(LoginTest, EncryptedSessionIsNotAwaitedForEver) {
  writeOptions("[zelk]\nssl\n");
  const auto engine = openEngine(server_);
  const testing_support::Frozen server(server_.process());

  const Status ofSession = statusOf([&] { engine->clients(); });
  const Status ofLogin = statusOfLogin(locationOf(server_), "zelk");

  EXPECT_EQ(ofSession, Status::kNoAnswer);
  EXPECT_EQ(ofLogin, Status::kNoAnswer);
}

}  // namespace
}  // namespace mariadb_testing
