#include "tal/postgresql/exceptions.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

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

Exceptions wordsOf(std::istream& words) {
  Exceptions exceptions;
  for (std::string word; words >> word;) {
    if (word == "weak-password") exceptions.weakPassword = true;
    if (word == "unencrypted") exceptions.unencrypted = true;
  }
  return exceptions;
}

}  // namespace

Exceptions exceptionsIn(const std::string& text, const Location& location) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string server;
    if (words >> server && isMeant(server, location)) return wordsOf(words);
  }
  return {};
}

Exceptions exceptionsFor(const Location& location) {
  const char* const home = ::getenv("HOME");
  const std::string own =
      home != nullptr ? textOf(home + std::string("/.postgresql/zelk.conf")) : "";
  return exceptionsIn(own + '\n' + textOf("/etc/zelk/postgresql.conf"), location);
}

}  // namespace tal::postgresql
