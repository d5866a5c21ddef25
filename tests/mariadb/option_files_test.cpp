#include "tal/mariadb/option_files.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tal/mariadb/login_options.h"
#include "tal/status.h"
#include "tests/support/temporary_folder.h"

namespace tal::mariadb {
namespace {

using testing_support::writeFile;
namespace fs = std::filesystem;

class OptionFilesTest : public testing::Test {
 protected:
  // The options of the group "zelk" in one file with this text.
  Options optionsOf(const std::string& text) {
    writeFile(folder_ / "my.cnf", text);
    fs::permissions(folder_ / "my.cnf", fs::perms(0600));
    return readOptions("zelk", {folder_ / "my.cnf"});
  }

  testing_support::TemporaryFolder folder_;
};

struct Line {
  const char* line;
  const char* value;  // of "password"
};

constexpr Line kLines[] = {
    {"password=secret",               "secret"            },
    {"  password = secret  ",         "secret"            },
    {"password=secret\r",             "secret"            },
    {"password",                      ""                  },
    {"password=",                     ""                  },
    {"password=a=b",                  "a=b"               },
    {"password=a#b",                  "a"                 },
    {"password=\"a#b\"",              "a#b"               },
    {"password='a\"b'",               "a\"b"              },
    {"password=\"a\\\"#b\" # note",   "a\"#b"             },
    {"password=a\\sb\\\\c\\td",       "a b\\c\td"         },
    {"password=a\\qb",                "a\\qb"             },
    {"password=ends\\",               "ends\\"            },
    {"password=\"",                   "\""                },
    {"password=aba",                  "aba"               },
    {"password=gr\xc3\xbc\xc3\x9f",   "gr\xc3\xbc\xc3\x9f"},
    {"password=first\npassword=last", "last"              },
};

TEST_F(OptionFilesTest, Values) {
  for (const Line& row : kLines) {
    const Options options = optionsOf(std::string("[zelk]\n") + row.line + "\n");
    ASSERT_EQ(options.size(), 1U) << row.line;
    EXPECT_EQ(options.begin()->first, "password") << row.line;
    EXPECT_EQ(options.begin()->second, row.value) << row.line;
  }
}

TEST_F(OptionFilesTest, OnlyTheGroupIsRead) {
  const Options options = optionsOf(
      "password=before\n[client]\npassword=clients\n; note\n# note\n[ zelk ]\nssl_ca=ca.pem\n"
      "[zelks]\nuser=other\n[zelk\nhost=other\n[zelk]\nssl\n");

  EXPECT_EQ(options, (Options{
                         {"ssl-ca", "ca.pem"},
                         {"ssl",    ""      }
  }));
}

TEST_F(OptionFilesTest, LaterFilesWin) {
  writeFile(folder_ / "one.cnf", "[zelk]\nssl-key=one\nssl=1\n");
  writeFile(folder_ / "two.cnf", "[zelk]\nssl-key=two\n");

  const Options options = readOptions(
      "zelk", {folder_ / "missing.cnf", folder_ / "one.cnf", folder_ / "two.cnf", folder_.path()});

  EXPECT_EQ(options, (Options{
                         {"ssl",     "1"  },
                         {"ssl-key", "two"}
  }));
}

TEST_F(OptionFilesTest, IncludesAreReadWhereTheyStand) {
  fs::create_directory(folder_ / "conf.d");
  writeFile(folder_ / "conf.d/b.cnf", "[zelk]\nssl-crl=b\nssl-cert=b\n");
  writeFile(folder_ / "conf.d/a.cnf", "[zelk]\nssl-crl=a\n");
  writeFile(folder_ / "conf.d/not.txt", "[zelk]\nssl-crl=not\n");
  writeFile(folder_ / "self.cnf",
            "!include " + (folder_ / "self.cnf").string() + "\n[zelk]\nssl\n");

  const Options options =
      optionsOf("[zelk]\nssl-cert=early\n!includedir " + (folder_ / "conf.d").string() +
                "\n!include " + (folder_ / "self.cnf").string() + "\nssl-key=late\n");

  EXPECT_EQ(options, (Options{
                         {"ssl",      ""    },
                         {"ssl-cert", "b"   },
                         {"ssl-crl",  "b"   },
                         {"ssl-key",  "late"}
  }));
}

TEST_F(OptionFilesTest, RepeatedIncludesAreReadOnce) {
  std::string includes;
  for (const char* const name : {"a.cnf", "b.cnf", "c.cnf"}) {
    includes += "!include " + (folder_ / name).string() + "\n";
  }
  includes += includes + includes + includes + "!includedir " + folder_.path().string() + "\n";
  for (const char* const name : {"a.cnf", "b.cnf", "c.cnf"}) {
    writeFile(folder_ / name, includes + "[zelk]\n" + name[0] + "=1\n");
  }

  EXPECT_EQ(optionsOf(includes), (Options{
                                     {"a", "1"},
                                     {"b", "1"},
                                     {"c", "1"}
  }));
}

TEST_F(OptionFilesTest, FilesThatEveryoneMayWriteAreSkipped) {
  writeFile(folder_ / "my.cnf", "[zelk]\nssl-ca=planted\n");
  fs::permissions(folder_ / "my.cnf", fs::perms(0666));

  EXPECT_EQ(readOptions("zelk", {folder_ / "my.cnf"}), Options{});
}

TEST_F(OptionFilesTest, FilesOfOthersAreSkipped) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  writeFile(folder_ / "my.cnf", "[zelk]\nssl-ca=planted\n");
  ASSERT_EQ(::chown((folder_ / "my.cnf").c_str(), 65534, 65534), 0);

  EXPECT_EQ(readOptions("zelk", {folder_ / "my.cnf"}), Options{});
}

TEST_F(OptionFilesTest, PasswordThatEverybodyCanReadIsNotTaken) {
  writeFile(folder_ / "my.cnf", "[zelk]\npassword=secret\nssl\n");
  fs::permissions(folder_ / "my.cnf", fs::perms(0604));
  testing::internal::CaptureStderr();

  const Options options = readOptions("zelk", {folder_ / "my.cnf"});

  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "libtal: " + (folder_ / "my.cnf").string() + ": PASSWORD_READABLE\n");
  EXPECT_EQ(options, (Options{
                         {"ssl", ""}
  }));
}

TEST_F(OptionFilesTest, HugeFilesAreSkipped) {
  writeFile(folder_ / "my.cnf", "[zelk]\nssl\n");
  fs::resize_file(folder_ / "my.cnf", 1024 * 1024);
  EXPECT_TRUE(readOptions("zelk", {folder_ / "my.cnf"}).contains("ssl"));

  fs::resize_file(folder_ / "my.cnf", 3ULL << 30);
  EXPECT_EQ(readOptions("zelk", {folder_ / "my.cnf"}), Options{});
}

TEST_F(OptionFilesTest, IncludesEndAtTheTenth) {
  const auto file = [this](int number) { return folder_ / (std::to_string(number) + ".cnf"); };
  for (int number = 0; number < 100; ++number) {
    const std::string ssl = "[zelk]\nssl-key=" + std::to_string(number) + "\n";
    writeFile(file(number), ssl + "!include " + file(number + 1).string() + "\n");
  }

  EXPECT_EQ(readOptions("zelk", {file(0)}).at("ssl-key"), "10");
}

TEST_F(OptionFilesTest, PipesAreNotAwaited) {
  ASSERT_EQ(::mkfifo((folder_ / "my.cnf").c_str(), 0600), 0);

  EXPECT_EQ(readOptions("zelk", {folder_ / "my.cnf"}), Options{});
}

TEST(StandardOptionFilesTest, AreTheMachinesAndTheUsers) {
  const char* const home = ::getenv("HOME");
  const std::string before = home == nullptr ? "" : home;
  const std::vector<fs::path> machines{"/etc/my.cnf", "/etc/mysql/my.cnf"};

  ::setenv("HOME", "/home/anna", 1);
  std::vector<fs::path> files = standardOptionFiles();
  ::setenv("HOME", "", 1);
  const std::vector<fs::path> filesOfNobody = standardOptionFiles();
  ::unsetenv("HOME");
  const std::vector<fs::path> filesWithoutHome = standardOptionFiles();
  ::setenv("HOME", before.c_str(), 1);

  EXPECT_EQ(files.back(), "/home/anna/.my.cnf");
  files.pop_back();
  EXPECT_EQ(files, machines);
  EXPECT_EQ(filesOfNobody, machines);
  EXPECT_EQ(filesWithoutHome, machines);
}

struct EncryptionRow {
  Options options;
  bool wanted;
  bool verified;
  std::size_t settings;
};

TEST(EncryptionTest, IsWantedWhenAskedFor) {
  const EncryptionRow rows[] = {
      {{{"password", "p"}, {"user", "u"}},                          false, false, 0},
      {{{"ssl", ""}},                                               true,  false, 0},
      {{{"ssl", "TRUE"}},                                           true,  false, 0},
      {{{"ssl", "0"}},                                              false, false, 0},
      {{{"ssl", "off"}},                                            false, false, 0},
      {{{"ssl-ca", "f"}},                                           true,  true,  1},
      {{{"ssl-capath", "f"}},                                       true,  true,  1},
      {{{"ssl-ca", "f"}, {"ssl-verify-server-cert", "0"}},          true,  false, 1},
      {{{"skip-ssl", ""}},                                          false, false, 0},
      {{{"ssl-ca", "f"}, {"ssl", "FALSE"}},                         false, false, 1},
      {{{"ssl", "0"}, {"ssl-enforce", "1"}},                        true,  false, 0},
      {{{"ssl-verify-server-cert", "1"}},                           true,  true,  0},
      {{{"ssl-verify-server-cert", "0"}},                           false, false, 0},
      {{{"ssl-cert", "f"}, {"ssl-key", "f"}, {"tls-version", "v"}}, true,  false, 3},
  };
  for (const EncryptionRow& row : rows) {
    const Encryption encryption = encryptionOf(row.options);
    const std::size_t index = static_cast<std::size_t>(&row - rows);
    EXPECT_EQ(encryption.wanted, row.wanted) << index;
    EXPECT_EQ(encryption.verified, row.verified) << index;
    EXPECT_EQ(encryption.settings.size(), row.settings) << index;
    EXPECT_EQ(encryption.forNetwork().wanted, !encryption.refused) << index;
    EXPECT_TRUE(!encryption.refused || !encryption.wanted) << index;
  }
}

TEST(EncryptionTest, UnknownSettingsAreRefused) {
  for (const char* const name : {"ssl-mode", "ssl-", "tlsx", "ssl-fp"}) {
    EXPECT_THROW(encryptionOf({
                     {name, "1"}
    }),
                 Failure)
        << name;
  }
}

}  // namespace
}  // namespace tal::mariadb
