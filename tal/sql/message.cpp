#include "tal/sql/message.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>

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

// Only characters that a language name can have: a locale comes from outside and becomes part of a
// file name.
std::string language() {
  const std::string_view locale = std::setlocale(LC_MESSAGES, nullptr);
  std::string name(locale.substr(0, locale.find_first_of(".@")));
  const bool isName = std::ranges::all_of(
      name, [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; });
  return isName ? name : std::string();
}

// Where the last part of "TALMSG_de_AT" begins.
std::size_t lastPart(const std::string& name) {
  const std::size_t cut = name.rfind('_');
  return cut == std::string::npos ? 0 : cut;
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
  for (std::string file = "TALMSG_" + language(); !file.empty(); file.resize(lastPart(file))) {
    if (const auto text = textIn(folder / (file + ".properties"), key)) return *text;
  }
  return std::string(name);
}

void tell(std::string line) {
  if (goesIntoTheReport()) return;
  fitText(line, kLongestLine);
  std::fprintf(stderr, "libtal: %s\n", line.c_str());
}

}  // namespace tal::sql
