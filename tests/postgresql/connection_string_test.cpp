#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <map>
#include <memory>
#include <string>

#include "tal/postgresql/parameters.h"
#include "tal/postgresql/statements.h"

namespace tal::postgresql {
namespace {

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
                      .requireTls = false};

  const auto values = parsed(connectionString(target));

  EXPECT_EQ(values.at("host"), "/run/" + odd);
  EXPECT_EQ(values.at("hostaddr"), "");
  EXPECT_EQ(values.at("port"), "6000");
  EXPECT_EQ(values.at("dbname"), odd);
  EXPECT_EQ(values.at("user"), odd);
  EXPECT_EQ(values.at("password"), odd);
  EXPECT_EQ(values.at("application_name"), "zelk");
  EXPECT_EQ(values.at("client_encoding"), "SQL_ASCII");
  EXPECT_EQ(values.at("sslmode"), "prefer");
  EXPECT_EQ(values.at("options"),
            "-c search_path=pg_catalog -c statement_timeout=5000 -c lock_timeout=250 "
            "-c default_transaction_read_only=on -c jit=off -c max_parallel_workers_per_gather=0");
}

TEST(ConnectionStringTest, NamesEveryParameterThatHasAVariable) {
  const auto values = parsed(connectionString({.host = "db1",
                                               .address = "192.0.2.7",
                                               .port = 5432,
                                               .database = "app1",
                                               .user = "zelk",
                                               .password = "",
                                               .requireTls = true}));

  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(PQconndefaults(),
                                                                             &PQconninfoFree);
  for (const PQconninfoOption* option = options.get(); option->keyword != nullptr; ++option) {
    const bool isPinned = option->envvar != nullptr && std::string(option->keyword) != "service";
    EXPECT_EQ(values.contains(option->keyword) || !isPinned, true) << option->keyword;
  }
  EXPECT_EQ(values.at("sslmode"), "require");
}

TEST(StatementsTest, EstimatedSizesDifferInTheSizeAlone) {
  const std::string text = openFilesWithEstimatedSizes();
  const std::string original = kOpenFiles;
  constexpr std::string_view kSize = "pg_relation_size(c.oid)";
  constexpr std::string_view kEstimate = "c.relpages * me.page";

  const std::size_t at = original.find(kSize);

  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(text,
            original.substr(0, at) + std::string(kEstimate) + original.substr(at + kSize.size()));
  EXPECT_EQ(text.find(kSize), std::string::npos);
}

}  // namespace
}  // namespace tal::postgresql
