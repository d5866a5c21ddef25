#include "orv/i18n/StringBundle.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "orv/Exception.h"
#include "orv/Files.h"

namespace orv::i18n {
namespace {

String& folder() {
  static String s_folder = util::FilePath::getProgramDir() + "/../share/zelk/messages";
  return s_folder;
}

using NameAndLanguages = std::pair<std::string, std::string>;

// The bundles that this thread has read. Each thread keeps its own, so that no lock is needed.
std::map<NameAndLanguages, Reference<StringBundle>>& readBundles() {
  thread_local std::map<NameAndLanguages, Reference<StringBundle>> s_bundles;
  return s_bundles;
}

// What the user asks for: the languages of LANGUAGE, separated by colons, or the language of the
// locale. The locale C means the original English texts.
std::string userLanguages() {
  const std::string locale = std::setlocale(LC_MESSAGES, nullptr);
  const char* const list = std::getenv("LANGUAGE");
  const bool isPlain = locale == "C" || locale == "POSIX";
  return isPlain || list == nullptr || *list == '\0' ? locale : list;
}

// Only characters that a language name can have: a locale comes from outside and becomes part of a
// file name.
std::string languageOf(std::string_view locale) {
  std::string language;
  for (const char character : locale.substr(0, locale.find_first_of(".@"))) {
    const bool isLetter =
        (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    if (!isLetter && character != '_') return {};
    language.push_back(character);
  }
  return language;
}

// "_de_AT", "_de" for de_AT.
void addSuffixes(std::string language, std::vector<std::string>& suffixes) {
  while (!language.empty()) {
    suffixes.push_back("_" + language);
    const std::size_t cut = language.rfind('_');
    language.resize(cut == std::string::npos ? 0 : cut);
  }
}

// "_de_AT", "_de" and "" for de_AT; the file without a language is the English one.
std::vector<std::string> suffixesFor(std::string_view languages) {
  std::vector<std::string> suffixes;
  while (!languages.empty()) {
    const std::size_t end = std::min(languages.find(':'), languages.size());
    const std::string language = languageOf(languages.substr(0, end));
    if (language == "en" || language.starts_with("en_")) break;
    addSuffixes(language, suffixes);
    languages.remove_prefix(std::min(end + 1, languages.size()));
  }
  suffixes.emplace_back();
  return suffixes;
}

}  // namespace

Reference<StringBundle> StringBundle::getBundle(const String& name, const char* locale) {
  const std::string languages = locale != nullptr ? locale : userLanguages();
  Reference<StringBundle>& kept = readBundles()[{name.toBytes(), languages}];
  if (!kept) kept = read(name, languages);
  return kept;
}

Reference<StringBundle> StringBundle::read(const String& name, const std::string& languages) {
  auto bundle = makeReference<StringBundle>();
  for (const std::string& suffix : suffixesFor(languages)) {
    try {
      const String path = folder() + "/" + name + suffix.c_str() + ".properties";
      bundle->files_.push_back(readProperties(path));
    } catch (const ResultException&) {
      continue;
    }
  }
  if (bundle->files_.empty()) throw ResultException(kFileNotFound);
  return bundle;
}

String StringBundle::getString(const String& key) const {
  for (const auto& file : files_) {
    if (const String* text = file->get(key)) return *text;
  }
  throw ResultException(kFileNotFound);
}

void StringBundle::setFolder(String newFolder) {
  folder() = std::move(newFolder);
  readBundles().clear();
}

}  // namespace orv::i18n
