#include "orv/i18n/StringBundle.h"

#include <clocale>
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

using NameAndLanguage = std::pair<std::string, std::string>;

// What this thread has read: each thread keeps its own, so that none needs a lock.
std::map<NameAndLanguage, Reference<StringBundle>>& readBundles() {
  thread_local std::map<NameAndLanguage, Reference<StringBundle>> s_bundles;
  return s_bundles;
}

// Only what can be part of a language's name: a locale comes from outside and becomes a file name.
std::string languageOf(const char* locale) {
  const std::string_view name(locale != nullptr ? locale : std::setlocale(LC_MESSAGES, nullptr));
  std::string language;
  for (const char character : name.substr(0, name.find_first_of(".@"))) {
    const bool isLetter =
        (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    if (!isLetter && character != '_') return {};
    language.push_back(character);
  }
  return language;
}

// "_de_AT", "_de" and "" for de_AT.
std::vector<std::string> suffixesFor(std::string language) {
  std::vector<std::string> suffixes;
  while (!language.empty()) {
    suffixes.push_back("_" + language);
    const std::size_t cut = language.rfind('_');
    language.resize(cut == std::string::npos ? 0 : cut);
  }
  suffixes.emplace_back();
  return suffixes;
}

}  // namespace

Reference<StringBundle> StringBundle::getBundle(const String& name, const char* locale) {
  const std::string language = languageOf(locale);
  Reference<StringBundle>& kept = readBundles()[{name.toBytes(), language}];
  if (!kept) kept = read(name, language);
  return kept;
}

Reference<StringBundle> StringBundle::read(const String& name, const std::string& language) {
  auto bundle = makeReference<StringBundle>();
  for (const std::string& suffix : suffixesFor(language)) {
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
