#include <fcntl.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <string>

#include "tal/postgresql/login_options.h"
#include "tal/postgresql/login_rules.h"
#include "tal/postgresql/statements.h"
#include "tests/support/file_descriptor.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/variable.h"

namespace tal::postgresql {
namespace {

using testing_support::Variable;

// What the client library makes of a connection string.
std::map<std::string, std::string> parsed(const std::string& connectionString) {
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(
      PQconninfoParse(connectionString.c_str(), nullptr), &PQconninfoFree);
  std::map<std::string, std::string> values;
  for (const PQconninfoOption* option = options.get();
       option != nullptr && option->keyword != nullptr; ++option) {
    if (option->val != nullptr) values[option->keyword] = option->val;
  }
  return values;
}

TEST(ConnectionStringTest, CarriesEachValueUnchanged) {
  const std::string odd = R"( it's \ "odd" = \' )";
  const Target target{.host = "/run/" + odd,
                      .address = "",
                      .port = 6000,
                      .database = odd,
                      .user = odd,
                      .password = odd,
                      .encryption = Encryption::kUnverified,
                      .bindsPassword = true};

  const auto values = parsed(connectionString(target));

  EXPECT_EQ(values.at("host"), "/run/" + odd);
  EXPECT_EQ(values.at("hostaddr"), "");
  EXPECT_EQ(values.at("port"), "6000");
  EXPECT_EQ(values.at("dbname"), odd);
  EXPECT_EQ(values.at("user"), odd);
  EXPECT_FALSE(values.contains("password"));  // it goes a way of its own
  EXPECT_EQ(values.at("application_name"), "zelk");
  EXPECT_EQ(values.at("client_encoding"), "SQL_ASCII");
  EXPECT_EQ(values.at("sslmode"), "require");
  EXPECT_EQ(values.at("channel_binding"), "require");
  EXPECT_EQ(values.at("options"),
            "-c search_path=pg_catalog -c statement_timeout=5000 -c lock_timeout=250 "
            "-c idle_session_timeout=0 -c default_transaction_read_only=on "
            "-c default_transaction_deferrable=off "
            "-c default_transaction_isolation=read\\ committed "
            "-c jit=off -c max_parallel_workers_per_gather=0");
}

// A library of any version has its own variables. Those that can only ask for more are used.
TEST(ConnectionStringTest, NamesEveryParameterWhoseVariableIsSet) {
  const std::set<std::string> honoured = {"requirepeer", "require_auth",
                                          "sslrootcert", "sslcrl",
                                          "sslcrldir",   "ssl_min_protocol_version"};
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(PQconndefaults(),
                                                                             &PQconninfoFree);
  for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
    const std::string keyword = option->keyword;
    if (option->envvar == nullptr || keyword == "service") continue;
    const Variable wish(option->envvar, "wished");

    const auto values = parsed(connectionString(Target()));

    ASSERT_TRUE(values.contains(keyword)) << keyword;
    EXPECT_EQ(values.at(keyword) == "wished", honoured.contains(keyword)) << keyword;
  }
}

// Only libraries from version 16 on can be told so. Of others the requests are looked at one by
// one.
TEST(ConnectionStringTest, LibraryThatCanRefusesOtherWaysToUseThePassword) {
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> known(PQconndefaults(),
                                                                           &PQconninfoFree);
  bool isKnown = false;
  for (const PQconninfoOption* option = known.get(); option->keyword != nullptr; ++option) {
    isKnown = isKnown || std::string(option->keyword) == "require_auth";
  }
  Target target;
  target.password = "secret";
  target.scramOnly = true;

  const auto safely = parsed(connectionString(target));
  target.scramOnly = false;
  const auto anyhow = parsed(connectionString(target));
  const Variable wish("PGREQUIREAUTH", "scram-sha-256");
  const auto asWished = parsed(connectionString(target));

  EXPECT_EQ(safely.contains("require_auth"), isKnown);
  if (!isKnown) return;
  EXPECT_EQ(safely.at("require_auth"), "scram-sha-256,none");
  EXPECT_FALSE(anyhow.contains("require_auth"));
  EXPECT_EQ(asWished.at("require_auth"), "scram-sha-256");
}

// The order is that of the columns from the second on.
TEST(StatementsTest, AccountAsksForEachSetting) {
  std::string_view rest = kAccount;
  for (const Setting& setting : kSettings) {
    const std::string column = "pg_catalog.current_setting('" + std::string(setting.name) + "')";
    const std::size_t at = rest.find(column);
    ASSERT_NE(at, std::string_view::npos) << setting.name;
    rest.remove_prefix(at);
  }
  EXPECT_EQ(accountStatement().columns, kSettings.size() + 1);
}

// A user's function could otherwise take the place of one of the system's. Keywords are in
// capitals.
TEST(StatementsTest, FunctionsAreNamedWithTheirSchema) {
  const std::set<std::string> syntax = {"coalesce", "extract", "greatest"};
  const std::regex call("([a-z_.]+)\\(");
  for (const Statement& statement :
       {filesStatement(), clientsStatement(), usageStatement(), communicationStatement(),
        sqlConnectionsStatement(), accountStatement()}) {
    const std::string& text = statement.text;
    for (std::sregex_iterator at(text.begin(), text.end(), call), end; at != end; ++at) {
      const std::string name = (*at)[1];
      EXPECT_TRUE(name.starts_with("pg_catalog.") || syntax.contains(name))
          << statement.name << ": " << name;
    }
  }
}

TEST(StatementsTest, EstimatedSizesDifferInTheSizeAlone) {
  const std::string text = filesStatement().text;
  const std::string size = "ELSE pg_catalog.pg_relation_size(c.oid) END";
  const std::size_t at = text.find(size);
  ASSERT_NE(at, std::string::npos);

  EXPECT_EQ(filesWithEstimatedSizesStatement().text,
            std::string(text).replace(at, size.size(), "ELSE c.relpages::bigint * here.page END"));
}

TEST(LoginRulesTest, TheFirstLineForAServerCounts) {
  struct Row {
    std::string text;
    bool weakPassword;
    bool unencrypted;
  };
  const Row rows[] = {
      {"",                                                  false, false},
      {"db1 weak-password",                                 true,  false},
      {"db1:6000 unencrypted weak-password\n",              true,  true },
      {"db1:6001 weak-password\ndb1 unencrypted",           false, true },
      {"\n # db1 weak-password\n\tdb1   unencrypted # why", false, true },
      {"#db1 weak-password\ndb11 weak-password",            false, false},
      {"db1\ndb1 weak-password",                            false, false},
      {"db1 Weak-Password weak_password",                   false, false},
  };

  for (const Row& row : rows) {
    const LoginRules rules = rulesIn(row.text, {"db1", 6000, "app"});
    EXPECT_EQ(rules.weakPassword, row.weakPassword) << row.text;
    EXPECT_EQ(rules.unencrypted, row.unencrypted) << row.text;
  }
}

// With and without root certificates, on this machine and on another.
TEST(LoginRulesTest, EncryptionByPlaceAndCertificates) {
  struct Row {
    const char* address;
    bool hasCertificates;
    bool isException;
    Encryption encryption;
    bool mayGoWithout;
  };
  constexpr Row kRows[] = {
      {"127.0.0.1", false, false, Encryption::kUnverified, true },
      {"127.0.0.1", true,  false, Encryption::kUnverified, true },
      {"192.0.2.7", false, false, Encryption::kUnverified, false},
      {"192.0.2.7", true,  false, Encryption::kName,       false},
      {"192.0.2.7", false, true,  Encryption::kUnverified, true },
      {"192.0.2.7", true,  true,  Encryption::kName,       true },
  };
  const Variable noWish("PGSSLMODE", "");

  for (const Row& row : kRows) {
    const testing_support::TemporaryFolder home;
    const Variable folder("HOME", home.path().string());
    std::filesystem::create_directory(home / ".postgresql");
    if (row.hasCertificates) testing_support::writeFile(home / ".postgresql/root.crt", "");
    if (row.isException)
      testing_support::writeFile(home / ".postgresql/zelk.conf", "db1 unencrypted");

    const LoginRules rules = rulesFor({"db1", 5432, "app"}, {"127.0.0.1", row.address});

    EXPECT_EQ(rules.encryption(), row.encryption) << row.address << row.hasCertificates;
    EXPECT_EQ(rules.mayGoWithout(), row.mayGoWithout) << row.address << row.isException;
  }
}

// A file that others could have written, or that is no short text, makes no exception.
TEST(LoginRulesTest, FilesThatAreRead) {
  struct Row {
    const char* kind;
    unsigned int mode;
    std::uintmax_t size;
    bool isRead;
  };
  constexpr Row kRows[] = {
      {"regular", 0600, 16,    true },
      {"regular", 0644, 65536, true },
      {"regular", 0600, 65537, false},
      {"regular", 0620, 16,    false},
      {"regular", 0602, 16,    false},
      {"pipe",    0600, 16,    false},
  };

  for (const Row& row : kRows) {
    const testing_support::TemporaryFolder home;
    const Variable folder("HOME", home.path().string());
    const std::filesystem::path file = home / ".postgresql/zelk.conf";
    std::filesystem::create_directory(file.parent_path());
    testing_support::FileDescriptor pipe(-1);
    if (row.kind == std::string("pipe")) {
      ASSERT_EQ(::mkfifo(file.c_str(), row.mode), 0);
      pipe = testing_support::FileDescriptor(::open(file.c_str(), O_RDWR | O_CLOEXEC));
      ASSERT_EQ(::write(pipe.number(), "db1 unencrypted\n", 16), 16);
    } else {
      testing_support::writeFile(file, "db1 unencrypted\n");
      std::filesystem::resize_file(file, row.size);
      std::filesystem::permissions(file, std::filesystem::perms{row.mode});
    }

    const LoginRules rules = rulesFor({"db1", 5432, "app"}, {"192.0.2.7"});

    EXPECT_EQ(rules.unencrypted, row.isRead) << row.kind << " " << row.mode << " " << row.size;
  }
}

}  // namespace
}  // namespace tal::postgresql
