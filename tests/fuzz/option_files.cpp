// The option files of MariaDB's client programs.
#include "tal/mariadb/option_files.h"

#include <string>

#include "tal/mariadb/login_options.h"
#include "tal/status.h"
#include "tests/fuzz/target.h"
#include "tests/support/temporary_folder.h"

namespace fuzzing {
namespace {

using tal::mariadb::Options;

// Reads the bytes as the option file of a user.
Options optionsIn(std::string_view bytes) {
  static const testing_support::TemporaryFolder folder;
  const auto file = folder / ".my.cnf";
  testing_support::writeFile(file, bytes);
  std::filesystem::permissions(file, std::filesystem::perms(0600));  // others would see a password
  return tal::mariadb::readOptions("client", {file});
}

void readEncryption(const Options& options) {
  try {
    const tal::mariadb::Encryption encryption = tal::mariadb::encryptionOf(options);
    require(encryption.wanted || !encryption.verified, "what is verified is wanted");
    require(encryption.settings.size() <= options.size(), "a setting stands in the file");
    require(encryption.wanted || encryption.settings.empty() || encryption.refused,
            "only a refusal makes settings of no use");
  } catch (const tal::Failure& failure) {
    require(failure.status() == tal::Status::kTlsFailed, "what is not understood is refused");
  }
}

}  // namespace

void run(std::string_view input) {
  const Options options = optionsIn(input);
  for (const auto& [name, value] : options) {
    require(name.find('_') == std::string::npos, "names are written with hyphens");
    require(value.size() <= input.size(), "a value stands in the file");
  }
  readEncryption(options);
  require(
      optionsIn(std::string(input) + "\n[client]\npassword=\"a # b\"\n").at("password") == "a # b",
      "the last line of an option holds");
}

}  // namespace fuzzing
