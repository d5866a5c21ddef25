#include "tal/mariadb/option_files.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>

namespace tal::mariadb {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBlanks = " \t\r\f\v";
constexpr std::string_view kInclude = "!include ";
constexpr std::string_view kIncludeFolder = "!includedir ";

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

// What "\" and this character stand for, if they stand for another one.
std::optional<char> escaped(char character) {
  constexpr std::string_view kWritten = "btnrs\\\"'";
  constexpr std::string_view kMeant = "\b\t\n\r \\\"'";
  const std::size_t found = kWritten.find(character);
  if (found == std::string_view::npos) return std::nullopt;
  return kMeant[found];
}

std::string withoutEscapes(std::string_view value) {
  std::string result;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const auto meant =
        value[i] == '\\' && i + 1 < value.size() ? escaped(value[i + 1]) : std::optional<char>{};
    result += meant.value_or(value[i]);
    if (meant) ++i;
  }
  return result;
}

void addOption(std::string_view line, Options& options) {
  const std::size_t equals = std::min(line.find('='), line.size());
  std::string name(trimmed(withoutComment(line.substr(0, equals))));
  std::replace(name.begin(), name.end(), '_', '-');
  const std::string_view value = trimmed(line.substr(std::min(equals + 1, line.size())));
  options[name] = withoutEscapes(withoutQuotes(withoutComment(value)));
}

// Of a line that begins with "["; "" when it opens no group.
std::string_view groupOpenedBy(std::string_view line) {
  const std::size_t close = line.find(']');
  if (close == std::string_view::npos) return {};
  return trimmed(line.substr(1, close - 1));
}

std::optional<std::string> textOf(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (error || !fs::is_regular_file(status)) return std::nullopt;
  if ((status.permissions() & fs::perms::others_write) != fs::perms::none) return std::nullopt;

  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(stream), {});
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

// Takes the lines of one file, and keeps whether they are in the group asked for.
class LineReader {
 public:
  LineReader(std::string_view group, Options& options) : group_(group), options_(options) {}

  void take(std::string_view line) {
    if (line.empty() || line.front() == '#' || line.front() == ';') return;
    if (line.front() == '[') {
      inGroup_ = groupOpenedBy(line) == group_;
    } else if (inGroup_) {
      addOption(line, options_);
    }
  }

 private:
  std::string_view group_;
  Options& options_;
  bool inGroup_ = false;
};

// Reads a file with what it includes. Each file is read once, for files that include one another
// would never end, or only after all ways through them.
class FileReader {
 public:
  FileReader(std::string_view group, Options& options) : group_(group), options_(options) {}

  void read(const fs::path& file) {
    std::error_code error;
    if (!read_.insert(fs::canonical(file, error)).second || error) return;
    const auto text = textOf(file);
    if (!text) return;

    LineReader reader(group_, options_);
    for (const std::string_view line : linesOf(*text)) {
      if (!line.starts_with('!')) reader.take(line);
      for (const fs::path& included : includedBy(line)) read(included);
    }
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
