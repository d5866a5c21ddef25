// Logins that fail, each with the reason.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tal/postgresql/postgresql.h"
#include "tal/status.h"
#include "tests/postgresql/fake_server.h"
#include "tests/postgresql/server_test.h"
#include "tests/sql/fake_host.h"
#include "tests/support/proxy.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/variable.h"
#include "tests/support/wait_until.h"

namespace testing_support {
namespace {

using tal::Status;
namespace fs = std::filesystem;

tal::Credentials user(const std::string& name) { return {name, PrivateServer::kPassword}; }

class LoginTest : public ServerTest {
 protected:
  [[nodiscard]] std::string address(const std::string& database = "app") const {
    return "127.0.0.1:" + std::to_string(server_.port()) + '/' + database;
  }

  [[nodiscard]] std::string socket() const {
    return server_.folder().string() + ':' + std::to_string(server_.port());
  }

  static Status login(const std::string& location, const tal::Credentials& credentials) {
    return statusOf([&] { tal::postgresql::open(location, credentials); });
  }
};

TEST_F(LoginTest, SucceedsByEachForm) {
  const std::string port = std::to_string(server_.port());

  EXPECT_EQ(login("127.0.0.1:" + port, user("zelk")), Status::kSuccess);
  EXPECT_EQ(login("127.0.0.1:" + port + "/app", user("zelk")), Status::kSuccess);
  EXPECT_EQ(login("localhost:" + port + "/app", user("zelk")), Status::kSuccess);
  EXPECT_EQ(login(socket(), user("zelk")), Status::kSuccess);
  EXPECT_EQ(login(socket() + "/app", user("zelk")), Status::kSuccess);
}

TEST_F(LoginTest, LongestSocketPath) {
  const TemporaryFolder folder;
  const std::string port = std::to_string(server_.port());
  const std::string start = folder.path().string() + '/';
  const std::size_t size = 107 - start.size() - ("/.s.PGSQL." + port).size();
  const std::string longest = start + std::string(size, 's');
  for (const std::string& path : {longest, longest + 's'}) {
    fs::create_directory_symlink(server_.folder(), path);
  }

  EXPECT_EQ(login(longest + ':' + port, user("zelk")), Status::kSuccess);
  EXPECT_EQ(login(longest + "s:" + port, user("zelk")), Status::kCannotReach);
}

TEST_F(LoginTest, FailsWithTheServersReason) {
  admin_.run("DROP DATABASE IF EXISTS closed");
  admin_.run("CREATE DATABASE closed");
  admin_.run("REVOKE CONNECT ON DATABASE closed FROM PUBLIC");

  EXPECT_EQ(login(address(), {"zelk", "wrong"}), Status::kLoginRefused);
  EXPECT_EQ(login(address(), {"stranger", "secret"}), Status::kLoginRefused);
  EXPECT_EQ(login(address(), user("sleeper")), Status::kLoginRefused);
  EXPECT_EQ(login(address("nowhere"), user("zelk")), Status::kUnknownDatabase);
  EXPECT_EQ(login(address("closed"), user("zelk")), Status::kPrivilegeMissing);
  EXPECT_EQ(login(address(), user("guest")), Status::kPrivilegeMissing);
  EXPECT_EQ(login(address(), user("limited")), Status::kNoConnectionSlot);
}

TEST_F(LoginTest, ASuperuserHasThePrivilege) {
  EXPECT_EQ(login(address(), user("postgres")), Status::kSuccess);
}

TEST_F(LoginTest, ExpiredPasswordIsRefused) {
  admin_.run("ALTER ROLE zelk VALID UNTIL '2001-01-01'");

  const Status status = login(address(), user("zelk"));

  admin_.run("ALTER ROLE zelk VALID UNTIL 'infinity'");
  EXPECT_EQ(status, Status::kLoginRefused);
}

TEST_F(LoginTest, OddPasswordsArriveWhole) {
  const std::string password = R"(it's \ "odd" = 1 )";
  admin_.run("ALTER ROLE zelk PASSWORD 'it''s \\ \"odd\" = 1 '");

  const Status status = login(address(), {"zelk", password});

  admin_.run("ALTER ROLE zelk PASSWORD 'secret'");
  EXPECT_EQ(status, Status::kSuccess);
}

TEST_F(LoginTest, FailsWhereNobodyListens) {
  std::uint16_t closedPort = 0;
  {
    const FakeServer gone({}, FakeServer::AtEnd::kClose);
    closedPort = gone.port();
  }

  EXPECT_EQ(login("127.0.0.1:" + std::to_string(closedPort), user("zelk")), Status::kCannotReach);
  EXPECT_EQ(login("/nowhere", user("zelk")), Status::kCannotReach);
  // Too long for a label: known to be no host without asking anybody.
  EXPECT_EQ(login(std::string(64, 'x') + ".invalid", user("zelk")), Status::kCannotReach);
  EXPECT_EQ(login("", user("zelk")), Status::kBadServerName);
}

TEST_F(LoginTest, TriesEachAddressOfAHost) {
  const sql_testing::FakeHost host("shop", {"127.0.0.2", "127.0.0.3", "127.0.0.1"});
  const sql_testing::FakeHost gone("gone", {"127.0.0.2", "127.0.0.3"});
  const std::string rest = ':' + std::to_string(server_.port()) + "/app";

  EXPECT_EQ(login("shop" + rest, user("zelk")), Status::kSuccess);
  EXPECT_EQ(login("gone" + rest, user("zelk")), Status::kCannotReach);
}

TEST_F(LoginTest, TakesTheReasonOfTheFirstAddressThatAnswers) {
  const sql_testing::FakeHost host("shop", {"127.0.0.1", "127.0.0.2"});

  EXPECT_EQ(login("shop:" + std::to_string(server_.port()) + "/app", {"zelk", "wrong"}),
            Status::kLoginRefused);
}

TEST_F(LoginTest, EnvironmentIsKeptOut) {
  const Variable host("PGHOST", "nowhere.invalid");
  const Variable address("PGHOSTADDR", "127.0.0.2");
  const Variable port("PGPORT", "1");
  const Variable database("PGDATABASE", "nowhere");
  const Variable name("PGUSER", "stranger");
  const Variable options("PGOPTIONS", "-c default_transaction_read_only=off");
  const Variable application("PGAPPNAME", "somebody");
  const Variable tls("PGSSLMODE", "disable");
  const Variable attributes("PGTARGETSESSIONATTRS", "standby");
  const Variable binding("PGCHANNELBINDING", "disable");
  const Variable encoding("PGCLIENTENCODING", "nonsense");

  const auto engine = openEngine(server_);

  EXPECT_EQ(login(socket(), user("zelk")), Status::kSuccess);
  EXPECT_EQ(admin_.value("SELECT count(*) FROM pg_stat_activity WHERE application_name = 'zelk'"
                         " AND usename = 'zelk' AND datname = 'app'"),
            "1");
}

TEST_F(LoginTest, WishesForMoreSecurityAreHonoured) {
  struct Row {
    const char* name;
    const char* value;
    Status network;
    Status socket;
  };
  const Row rows[] = {
      {"PGSSLMODE",        "require", Status::kTlsFailed,   Status::kSuccess       },
      {"PGCHANNELBINDING", "require", Status::kUnsafeLogin, Status::kUnsafeLogin   },
      {"PGREQUIREPEER",    "nobody",  Status::kSuccess,     Status::kConnectionLost},
  };

  for (const Row& row : rows) {
    const Variable wish(row.name, row.value);
    EXPECT_EQ(login(address(), user("zelk")), row.network) << row.name;
    EXPECT_EQ(login(socket(), user("zelk")), row.socket) << row.name;
  }
}

// The user's file of exceptions lets such servers have it.
TEST_F(LoginTest, PasswordIsNotGivenAwayUnlessAllowed) {
  const TemporaryFolder home;
  const Variable folder("HOME", home.path().string());
  fs::create_directory(home / ".postgresql");
  for (const bool isAllowed : {false, true}) {
    const Status expected = isAllowed ? Status::kSuccess : Status::kUnsafeLogin;
    for (const char* const name : {"clear", "hashed"}) {
      EXPECT_EQ(login(address(), user(name)), expected) << name;
      EXPECT_EQ(login(socket() + "/app", user(name)), expected) << name;
    }
    writeFile(home / ".postgresql/zelk.conf",
              "127.0.0.1 weak-password\n" + socket() + " weak-password\n");
  }
}

TEST_F(LoginTest, FileOfExceptionsThatOthersMayWriteIsNotRead) {
  const TemporaryFolder home;
  const Variable folder("HOME", home.path().string());
  fs::create_directory(home / ".postgresql");
  writeFile(home / ".postgresql/zelk.conf", "127.0.0.1 weak-password\n");
  fs::permissions(home / ".postgresql/zelk.conf", fs::perms(0666));

  EXPECT_EQ(login(address(), user("clear")), Status::kUnsafeLogin);
}

// Whoever listens in the place of the server.
TEST_F(LoginTest, ImpostorsLearnNoPassword) {
  const std::string scram = protocol::authentication(10, std::string("SCRAM-SHA-256\0\0", 15));
  const std::string clear = protocol::authentication(3);
  const std::string hashed = protocol::authentication(5, "salt");
  struct Row {
    std::string first;
    std::string second;
  };
  const Row rows[] = {
      {clear,                       ""   },
      {hashed,                      ""   },
      {protocol::authentication(7), ""   },
      {protocol::authentication(9), ""   },
      {scram + clear,               ""   },
      {scram,                       clear},
  };
  for (const Row& row : rows) {
    FakeServer impostor({row.first, row.second}, FakeServer::AtEnd::kSilent);

    const Status status = login("127.0.0.1:" + std::to_string(impostor.port()), user("zelk"));

    EXPECT_EQ(status, Status::kUnsafeLogin);
    const std::string& received = impostor.received();
    EXPECT_EQ(received.find("secret"), std::string::npos);
    EXPECT_EQ(received.find("md5"), std::string::npos);
  }
}

TEST_F(LoginTest, FloodOfSettingsEnds) {
  std::string flood = protocol::authentication(0);
  for (int i = 0; i < 2000; ++i) {
    flood += protocol::setting("setting" + std::to_string(i), std::string(1000, 'x'));
  }
  const FakeServer server({flood}, FakeServer::AtEnd::kSilent);

  EXPECT_EQ(login("127.0.0.1:" + std::to_string(server.port()), user("zelk")),
            Status::kAnswerTooLarge);
}

TEST_F(LoginTest, DatabasesSettingsDoNotReachTheMonitor) {
  admin_.run(
      "ALTER DATABASE app SET default_transaction_deferrable = on;"
      "ALTER DATABASE app SET default_transaction_isolation = serializable;"
      "ALTER DATABASE app SET idle_session_timeout = 1;"
      "ALTER DATABASE app SET search_path = public");

  const Status status = login(address(), user("zelk"));

  admin_.run("ALTER DATABASE app RESET ALL");
  EXPECT_EQ(status, Status::kSuccess);
}

// The shared server with encryption, by a certificate of its own for "localhost".
class EncryptedLoginTest : public LoginTest {
 protected:
  EncryptedLoginTest() {
    admin_.run(
        "COPY (SELECT 1) TO PROGRAM 'openssl req -new -x509 -nodes -batch -days 2"
        " -subj /CN=localhost -keyout server.key -out server.crt 2>&1 && chmod 600 server.key'");
    encrypt("on");
  }
  ~EncryptedLoginTest() override { encrypt("off"); }

  // How the certificate is checked.
  Status loginWith(const std::string& host, const std::string& mode, const fs::path& root) {
    const Variable wish("PGSSLMODE", mode);
    const Variable rootCertificate("PGSSLROOTCERT", root.string());
    return login(host + ':' + std::to_string(server_.port()) + "/app", user("zelk"));
  }

 private:
  void encrypt(const std::string& value) {
    admin_.run("ALTER SYSTEM SET ssl = " + value);
    admin_.run("SELECT pg_reload_conf()");
    EXPECT_TRUE(waitUntil([&] { return session("check").value("SHOW ssl") == value; }));
  }
};

TEST_F(EncryptedLoginTest, UsesItAndBindsThePassword) {
  const auto engine = openEngine(server_);

  EXPECT_EQ(admin_.value("SELECT count(*) FROM pg_stat_ssl JOIN pg_stat_activity USING (pid)"
                         " WHERE application_name = 'zelk' AND ssl"),
            "1");
  EXPECT_EQ(login(address(), user("clear")), Status::kUnsafeLogin);
  EXPECT_EQ(login(address(), user("hashed")), Status::kUnsafeLogin);
  EXPECT_EQ(login(address(), {"zelk", "wrong"}), Status::kLoginRefused);
}

TEST_F(EncryptedLoginTest, ChecksTheCertificateAsWished) {
  const fs::path own = server_.folder() / "data/server.crt";

  EXPECT_EQ(loginWith("localhost", "verify-full", own), Status::kSuccess);
  EXPECT_EQ(loginWith("127.0.0.1", "verify-ca", own), Status::kSuccess);
  EXPECT_EQ(loginWith("127.0.0.1", "verify-full", own), Status::kTlsFailed);
  EXPECT_EQ(loginWith("localhost", "verify-full", "/nowhere"), Status::kTlsFailed);
}

// To another machine nobody needs to ask for the check: root certificates are enough.
TEST_F(EncryptedLoginTest, CertificateOfAnotherHostIsRefused) {
  const std::string elsewhere = "[::ffff:127.0.0.1]:" + std::to_string(server_.port()) + "/app";
  const TemporaryFolder home;
  const Variable folder("HOME", home.path().string());
  EXPECT_EQ(login(elsewhere, user("zelk")), Status::kSuccess);

  fs::create_directory(home / ".postgresql");
  fs::copy_file(server_.folder() / "data/server.crt", home / ".postgresql/root.crt");

  EXPECT_EQ(login(elsewhere, user("zelk")), Status::kTlsFailed);
}

// Somebody between who answers the request for encryption, in place of the server. This form of the
// address does not pass for this machine's.
TEST_F(EncryptedLoginTest, NothingIsSaidWhenTheOfferToEncryptIsTakenAway) {
  const auto throughProxy = [](const Proxy& proxy) {
    return login("[::ffff:127.0.0.1]:" + std::to_string(proxy.port()) + "/app", user("zelk"));
  };
  const Proxy honest(server_.port(), [](std::string&) {});
  Proxy stripping(server_.port(), [](std::string& answer) { answer = "N"; });

  EXPECT_EQ(throughProxy(honest), Status::kSuccess);
  EXPECT_EQ(throughProxy(stripping), Status::kTlsFailed);
  EXPECT_EQ(stripping.heard(), std::string("\0\0\0\x08\x04\xd2\x16\x2f", 8));
}

// As servers need it that pass the password on, to a directory for instance.
TEST_F(EncryptedLoginTest, ClearPasswordGoesToAVerifiedServerWhereAllowed) {
  const TemporaryFolder home;
  const Variable folder("HOME", home.path().string());
  fs::create_directory(home / ".postgresql");
  fs::copy_file(server_.folder() / "data/server.crt", home / ".postgresql/root.crt");
  const Variable wish("PGSSLMODE", "verify-full");
  const std::string port = std::to_string(server_.port());

  EXPECT_EQ(login("localhost:" + port + "/app", user("clear")), Status::kUnsafeLogin);
  writeFile(home / ".postgresql/zelk.conf", "localhost weak-password\n");
  EXPECT_EQ(login("localhost:" + port + "/app", user("clear")), Status::kSuccess);
  EXPECT_EQ(login("127.0.0.1:" + port + "/app", user("clear")), Status::kTlsFailed);
}

TEST_F(LoginTest, EmptyPasswordIsNotTakenFromTheEnvironment) {
  const TemporaryFolder home;
  const Variable folder("HOME", home.path().string());
  const Variable password("PGPASSWORD", PrivateServer::kPassword);

  EXPECT_EQ(login(address(), {"zelk", ""}), Status::kPasswordMissing);
}

TEST_F(LoginTest, EmptyPasswordComesFromThePasswordFile) {
  const TemporaryFolder home;
  const std::string port = std::to_string(server_.port());
  writeFile(home / ".pgpass", "127.0.0.1:" + port + ":app:zelk:secret\n" + "localhost:" + port +
                                  ":app:zelk:secret\n" + server_.folder().string() + ":" + port +
                                  ":app:zelk:secret\n");
  ::chmod((home / ".pgpass").c_str(), 0600);
  const Variable folder("HOME", home.path().string());

  EXPECT_EQ(login(address(), {"zelk", ""}), Status::kSuccess);
  EXPECT_EQ(login("localhost:" + port + "/app", {"zelk", ""}), Status::kSuccess);
  EXPECT_EQ(login(socket() + "/app", {"zelk", ""}), Status::kSuccess);
  EXPECT_EQ(login(address(), {"zelk", "wrong"}), Status::kLoginRefused);
  EXPECT_EQ(login(address("postgres"), {"zelk", ""}), Status::kPasswordMissing);
}

// What a real server answers only at times that a test cannot choose.
TEST_F(LoginTest, FailsWithAFakeServersReason) {
  struct Row {
    std::string answer;
    FakeServer::AtEnd atEnd;
    Status status;
  };
  const std::string tooShort("R\0\0\0\1", 5);
  const Row rows[] = {
      {protocol::error("57P03"),       FakeServer::AtEnd::kClose,  Status::kServerNotReady     },
      {protocol::error("53300"),       FakeServer::AtEnd::kClose,  Status::kNoConnectionSlot   },
      {protocol::error("XX000"),       FakeServer::AtEnd::kClose,  Status::kServerError        },
      {protocol::welcome("13.22"),     FakeServer::AtEnd::kSilent, Status::kVersionNotSupported},
      {protocol::welcome("nonsense"),  FakeServer::AtEnd::kSilent, Status::kVersionNotSupported},
      {"",                             FakeServer::AtEnd::kClose,  Status::kConnectionLost     },
      {"HTTP/1.1 400 Bad Request\r\n", FakeServer::AtEnd::kClose,  Status::kOtherProtocol      },
      {tooShort,                       FakeServer::AtEnd::kSilent, Status::kOtherProtocol      },
  };

  for (const Row& row : rows) {
    const FakeServer fake({row.answer}, row.atEnd);
    EXPECT_EQ(login("127.0.0.1:" + std::to_string(fake.port()), user("zelk")), row.status)
        << row.answer;
  }
}

TEST_F(LoginTest, OtherProtocolsAreToldBeforeEncryption) {
  for (const char* const answer : {"HTTP/1.1 400 Bad Request\r\n", "_", "220 mail ready\r\n",
                                   "SSH-2.0-OpenSSH_9.2p1 Debian-2\r\n"}) {
    const FakeServer fake({""}, FakeServer::AtEnd::kSilent, answer);
    EXPECT_EQ(login("127.0.0.1:" + std::to_string(fake.port()), user("zelk")),
              Status::kOtherProtocol)
        << answer;
  }
}

TEST_F(LoginTest, KeepsNoticesFromTheTerminal) {
  const FakeServer server(
      {
          protocol::welcome("15.6"), protocol::notice() + protocol::prepared(),
          protocol::rows({{"t", "pg_catalog", "5s", "250ms", "0", "on", "off", "read committed"}}
          )
  },
      FakeServer::AtEnd::kSilent);
  ::testing::internal::CaptureStderr();

  const Status status = login("127.0.0.1:" + std::to_string(server.port()), user("zelk"));

  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(status, Status::kSuccess);
}

}  // namespace
}  // namespace testing_support
