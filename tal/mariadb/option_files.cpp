#include "tal/mariadb/option_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <set>
#include <utility>

#include "tal/credentials.h"
#include "tal/sql/message.h"

namespace tal::mariadb {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBlanks = " \t\r\f\v";
constexpr std::string_view kInclude = "!include ";
constexpr std::string_view kIncludeFolder = "!includedir ";
constexpr std::string_view kPassword = "password";

constexpr off_t kLargestFile = 1024L * 1024;
constexpr int kDeepestInclude = 10;

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(trimmed(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

// A comment begins at a "#" outside quotes, wherever that stands in the line.
std::string_view withoutComment(std::string_view value) {
  char quote = '\0';
  for (std::size_t i = 0; i < value.size(); ++i) {
    const char character = value[i];
    if (character == '\\' && quote != '\0') {
      ++i;
    } else if (character == quote) {
      quote = '\0';
    } else if (quote == '\0' && (character == '"' || character == '\'')) {
      quote = character;
    } else if (quote == '\0' && character == '#') {
      return trimmed(value.substr(0, i));
    }
  }
  return value;
}

std::string_view withoutQuotes(std::string_view value) {
  const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                      (value.front() == '"' || value.front() == '\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

// The character that "\" and this character stand for, if any.
std::optional<char> escaped(char character) {
  constexpr std::string_view kWritten = "btnrs\\\"'";
  constexpr std::string_view kMeant = "\b\t\n\r \\\"'";
  const std::size_t found = kWritten.find(character);
  if (found == std::string_view::npos) return std::nullopt;
  return kMeant[found];
}

std::string withoutEscapes(std::string_view value) {
  std::string result;
  result.reserve(
      value.size());  // a text that grows leaves copies behind, and this may be a password
  for (std::size_t i = 0; i < value.size(); ++i) {
    const auto meant =
        value[i] == '\\' && i + 1 < value.size() ? escaped(value[i + 1]) : std::optional<char>{};
    result += meant.value_or(value[i]);
    if (meant) ++i;
  }
  return result;
}

struct Option {
  std::string name;
  std::string value;
};

Option optionIn(std::string_view line) {
  const std::size_t equals = std::min(line.find('='), line.size());
  std::string name(trimmed(withoutComment(line.substr(0, equals))));
  std::ranges::replace(name, '_', '-');
  const std::string_view value = trimmed(line.substr(std::min(equals + 1, line.size())));
  return {std::move(name), withoutEscapes(withoutQuotes(withoutComment(value)))};
}

// The group that a line with "[" at its start opens; "" if it opens none.
std::string_view groupOpenedBy(std::string_view line) {
  const std::size_t close = line.find(']');
  if (close == std::string_view::npos) return {};
  return trimmed(line.substr(1, close - 1));
}

// How far a file can be trusted: not at all if somebody else owns it or may write it.
struct File {
  std::string text;
  bool isReadByOthers = false;
};

bool isTrusted(const struct stat& status) {
  const bool isOwn = status.st_uid == 0 || status.st_uid == ::geteuid();
  return S_ISREG(status.st_mode) && isOwn && (status.st_mode & S_IWOTH) == 0 &&
         status.st_size <= kLargestFile;
}

std::optional<File> trustedFile(const fs::path& path) {
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;  // safe for any kind of file
  const int descriptor = ::open(path.c_str(), kFlags);
  struct stat status {};
  if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !isTrusted(status)) {
    if (descriptor >= 0) ::close(descriptor);
    return std::nullopt;
  }
  File file{.text = std::string(static_cast<std::size_t>(status.st_size), '\0'),
            .isReadByOthers = (status.st_mode & S_IROTH) != 0};
  const ssize_t size = ::read(descriptor, file.text.data(), file.text.size());
  ::close(descriptor);
  file.text.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  return file;
}

std::vector<fs::path> optionFilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() == ".cnf") files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<fs::path> includedBy(std::string_view line) {
  if (line.starts_with(kIncludeFolder)) {
    return optionFilesIn(trimmed(line.substr(kIncludeFolder.size())));
  }
  if (line.starts_with(kInclude)) return {trimmed(line.substr(kInclude.size()))};
  return {};
}

// Takes the lines of one file, and remembers whether they are in the wanted group.
class LineReader {
 public:
  LineReader(std::string_view group, Options& options, bool isReadByOthers)
      : group_(group), options_(options), isReadByOthers_(isReadByOthers) {}

  // False for a password that is not used because everybody can read it.
  bool take(std::string_view line) {
    if (line.empty() || line.front() == '#' || line.front() == ';') return true;
    if (line.front() == '[') {
      inGroup_ = groupOpenedBy(line) == group_;
      return true;
    }
    return !inGroup_ || add(optionIn(line));
  }

 private:
  bool add(Option option) {
    if (option.name == kPassword && isReadByOthers_) return false;
    options_[std::move(option.name)] = std::move(option.value);
    return true;
  }

  std::string_view group_;
  Options& options_;
  bool isReadByOthers_;
  bool inGroup_ = false;
};

// Reads a file and the files that it includes.
class FileReader {
 public:
  FileReader(std::string_view group, Options& options) : group_(group), options_(options) {}

  void read(const fs::path& path, int depth = 0) {
    std::error_code error;
    // Each file is read once: includes may be cyclic.
    if (!read_.insert(fs::canonical(path, error)).second || error) return;
    auto file = trustedFile(path);
    if (!file) return;

    LineReader reader(group_, options_, file->isReadByOthers);
    for (const std::string_view line : linesOf(file->text)) {
      if (!line.starts_with('!') && !reader.take(line)) {
        sql::tell(path.string() + ": " + sql::message("PASSWORD_READABLE"));
      }
      if (depth == kDeepestInclude) continue;
      for (const fs::path& included : includedBy(line)) read(included, depth + 1);
    }
    wipe(file->text);  // it may hold a password
  }

 private:
  std::string_view group_;
  Options& options_;
  std::set<fs::path> read_;
};

}  // namespace

std::vector<fs::path> standardOptionFiles() {
  std::vector<fs::path> files{"/etc/my.cnf", "/etc/mysql/my.cnf"};
  if (const char* const home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    files.push_back(fs::path(home) / ".my.cnf");
  }
  return files;
}

Options readOptions(std::string_view group, const std::vector<fs::path>& files) {
  Options options;
  for (const fs::path& file : files) FileReader(group, options).read(file);
  return options;
}

}  // namespace tal::mariadb
