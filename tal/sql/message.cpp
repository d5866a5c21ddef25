#include "tal/sql/message.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

#include "tal/text.h"

namespace tal::sql {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "ORV_MSG_P_N_";
constexpr std::size_t kLongestLine = 1000;
constexpr char kHere = 0;

fs::path messagesFolder() {
  Dl_info own{};
  if (dladdr(&kHere, &own) == 0) return {};
  return fs::path(own.dli_fname).parent_path() / "../../share/zelk/messages";
}

// The languages of LANGUAGE, separated by colons, or the language of the locale. The locale C means
// the original English texts.
std::string userLanguages() {
  const std::string locale = std::setlocale(LC_MESSAGES, nullptr);
  const char* const list = std::getenv("LANGUAGE");
  const bool isPlain = locale == "C" || locale == "POSIX";
  return isPlain || list == nullptr || *list == '\0' ? locale : list;
}

// Only characters that a language name can have: a locale comes from outside and becomes part of a
// file name.
std::string languageOf(std::string_view locale) {
  std::string name(locale.substr(0, locale.find_first_of(".@")));
  const bool isName = std::ranges::all_of(
      name, [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; });
  return isName ? name : std::string();
}

// Where the last part of "de_AT" begins.
std::size_t lastPart(const std::string& name) {
  const std::size_t cut = name.rfind('_');
  return cut == std::string::npos ? 0 : cut;
}

// "TALMSG_de_AT", "TALMSG_de" and "TALMSG" for de_AT; the file without a language is the English
// one.
std::vector<std::string> bundlesFor(std::string_view languages) {
  std::vector<std::string> bundles;
  while (!languages.empty()) {
    const std::size_t end = std::min(languages.find(':'), languages.size());
    std::string language = languageOf(languages.substr(0, end));
    if (language == "en" || language.starts_with("en_")) break;
    for (; !language.empty(); language.resize(lastPart(language))) {
      bundles.push_back("TALMSG_" + language);
    }
    languages.remove_prefix(std::min(end + 1, languages.size()));
  }
  bundles.emplace_back("TALMSG");
  return bundles;
}

std::optional<std::string> textIn(const fs::path& file, const std::string& key) {
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(key + "=")) return line.substr(key.size() + 1);
  }
  return std::nullopt;
}

// The report may be a JSON document, which the line would break.
bool goesIntoTheReport() {
  struct stat output {};
  struct stat error {};
  if (::fstat(STDOUT_FILENO, &output) != 0 || ::fstat(STDERR_FILENO, &error) != 0) return false;
  const bool isSame = output.st_dev == error.st_dev && output.st_ino == error.st_ino;
  return isSame && ::isatty(STDERR_FILENO) == 0;
}

}  // namespace

std::string message(std::string_view name) {
  const fs::path folder = messagesFolder();
  const std::string key = std::string(kPrefix) + std::string(name);
  for (const std::string& bundle : bundlesFor(userLanguages())) {
    if (const auto text = textIn(folder / (bundle + ".properties"), key)) return *text;
  }
  return std::string(name);
}

void tell(std::string line) {
  if (goesIntoTheReport()) return;
  fitText(line, kLongestLine);
  std::fprintf(stderr, "libtal: %s\n", line.c_str());
}

}  // namespace tal::sql
