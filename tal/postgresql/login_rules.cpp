#include "tal/postgresql/login_rules.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "tal/sql/address.h"

namespace tal::postgresql {
namespace {

constexpr off_t kLargestFile = 65536;

bool isTrusted(int file) {
  struct stat facts {};
  if (::fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_size > kLargestFile) {
    return false;
  }
  const bool isOurs = facts.st_uid == 0 || facts.st_uid == ::geteuid();
  return isOurs && (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

std::string textOf(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return {};
  std::string text(isTrusted(file) ? kLargestFile : 0, '\0');
  const ssize_t count = ::read(file, text.data(), text.size());
  ::close(file);
  text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return text;
}

bool isMeant(const std::string& server, const Location& location) {
  return server == location.host || server == location.host + ':' + std::to_string(location.port);
}

LoginRules wordsOf(std::istream& words) {
  LoginRules rules;
  for (std::string word; words >> word;) {
    if (word == "weak-password") rules.weakPassword = true;
    if (word == "unencrypted") rules.unencrypted = true;
  }
  return rules;
}

}  // namespace

Encryption LoginRules::encryption() const {
  const bool isVerified = isElsewhere && hasRootCertificate();
  return encryptionWished(isVerified ? Encryption::kName : Encryption::kUnverified);
}

bool LoginRules::mayGoWithout() const {
  return (!isElsewhere || unencrypted) && encryptionWished(Encryption::kNone) == Encryption::kNone;
}

LoginRules rulesIn(const std::string& text, const Location& location) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string server;
    if (words >> server && isMeant(server, location)) return wordsOf(words);
  }
  return {};
}

LoginRules rulesFor(const Location& location, const std::vector<std::string>& addresses) {
  const char* const home = ::getenv("HOME");
  const std::string own =
      home != nullptr ? textOf(home + std::string("/.postgresql/zelk.conf")) : "";
  LoginRules rules = rulesIn(own + '\n' + textOf("/etc/zelk/postgresql.conf"), location);
  rules.isElsewhere = !std::ranges::all_of(addresses, &sql::isLoopback);
  return rules;
}

}  // namespace tal::postgresql
