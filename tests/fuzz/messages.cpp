// Message bundles and the filling in of arguments. The first line is the locale, the rest the file.
#include <array>
#include <span>
#include <string>

#include "messages/MessageHelper.h"
#include "orv/Exception.h"
#include "orv/String.h"
#include "orv/i18n/StringBundle.h"
#include "tests/fuzz/lines.h"
#include "tests/fuzz/target.h"
#include "tests/support/temporary_folder.h"

namespace fuzzing {
namespace {

using orv::i18n::StringBundle;

constexpr std::size_t kLongestText = 1023;
constexpr std::size_t kLongestResult = 2047;

class Folder {
 public:
  Folder() { StringBundle::setFolder(orv::String(folder_.path().string())); }

  void put(std::string_view bundle) const {
    testing_support::writeFile(folder_ / "ZELK.properties", bundle);
    StringBundle::setFolder(orv::String(folder_.path().string()));  // is read again
  }

 private:
  testing_support::TemporaryFolder folder_;
};

// The text that a message has in the file, as far as it is formatted; empty where there is none.
std::string unformatted(const StringBundle& bundle, const char* key) {
  try {
    char text[kLongestText + 1];
    orv::ORVUnicodeToAnsi(bundle.getString(orv::String("ZELK_") + key), text, sizeof text);
    return text;
  } catch (const orv::ResultException&) {
    return {};
  }
}

void requireFormatted(const std::string& text, const orv::String& result,
                      std::span<const MessageArgument> values) {
  const std::string bytes = result.toBytes();
  require(bytes.size() <= kLongestResult, "a message has its limit");
  const bool isPlain = text.find('%') == std::string::npos || !fillIn(text, values);
  require(text.empty() || !isPlain || bytes == text, "what cannot be formatted is shown as it is");
}

template <class... Arguments>
void format(const StringBundle& bundle, const char* key, Arguments... arguments) {
  const std::array<MessageArgument, sizeof...(Arguments)> values{arguments...};
  const MessageHelper messages("ZELK", "ZELK_");
  requireFormatted(unformatted(bundle, key), messages.getResStr(key, arguments...), values);
}

}  // namespace

void run(std::string_view input) {
  static const Folder folder;
  const std::string locale(takeLine(input));
  folder.put(input);
  const auto bundle = StringBundle::getBundle("ZELK", locale.c_str());

  constexpr const char* kWord = "a word \xff\xe2\x82";
  format(*bundle, "NAME", kWord);
  format(*bundle, "FATAL_ERROR", -7);
  format(*bundle, "ERR_READ_FILE", kWord, "", 7);
  format(*bundle, "MSG_EXIT");
  // Texts that were translated for another place.
  format(*bundle, "NAME");
  format(*bundle, "ERR_READ_FILE", 1, 2, 3);
  format(*bundle, "FATAL_ERROR", kWord, kWord, -1, kWord, 0);
}

}  // namespace fuzzing
