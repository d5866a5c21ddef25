#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "messages/MessageFormat.h"
#include "orv/i18n/StringBundle.h"
#include "tests/support/temporary_folder.h"

namespace {

using Keys = std::set<std::string>;

const MessageArgument kText = "text";
const MessageArgument kInteger = 5;

const std::filesystem::path kRoot = ZELK_SOURCE_DIR;
const std::vector<std::string> kLanguages = {"", "_de"};

// A longer text is cut before it is formatted.
constexpr std::size_t kLongestText = 1023;

// What each key of the program is called with.
const std::map<std::string, std::vector<MessageArgument>> kArguments = {
    {"NAME",                     {kText}                 },
    {"COPYRIGHT",                {}                      },
    {"USAGE",                    {}                      },
    {"FATAL_ERROR",              {kInteger}              },
    {"FILE_NOT_FOUND_ERROR",     {}                      },
    {"ACCESS_ERROR",             {}                      },
    {"ERR_READ_FILE",            {kText, kText, kInteger}},
    {"ERR_CREATE_FILE",          {kText, kText, kInteger}},
    {"ERR_WRITE_FILE",           {kText, kText}          },
    {"STANDARD_OUTPUT",          {}                      },
    {"STANDARD_ERROR",           {}                      },
    {"ERR_MISSING_TAG",          {kText}                 },
    {"ERR_MISSING_TAG_VALUE",    {kText}                 },
    {"ERR_LINE_TOO_LONG",        {}                      },
    {"ERR_FILE_TOO_LARGE",       {}                      },
    {"ERR_CREDENTIALS_TOO_LONG", {}                      },
    {"WARN_PASSWORD_EXPOSED",    {kText}                 },
    {"HDR_USR_CONFIG",           {}                      },
    {"HDR_END_CFG",              {}                      },
    {"MSG_EXIT",                 {}                      },
    {"ERR_INTERACTIVE_INPUT",    {}                      },
    {"THREAD_FATAL_ERROR",       {kInteger}              },
    {"INFO_EXIT",                {}                      },
    {"INFO_EXIT_W_LIMIT",        {}                      },
    {"INFO_EXIT_REFRESH",        {}                      },
};

// The keys that a logger without a bundle of its own asks for.
const Keys kLoggerKeys = {"ACCESS_ERROR", "ERR_CREATE_FILE", "FILE_NOT_FOUND_ERROR"};

// The error numbers of a MariaDB server that become statuses as they are, by their names there.
const std::map<std::string, std::string> kServerErrors = {
    {"ER_DISK_FULL",         "1021"},
    {"ER_OUTOFMEMORY",       "1037"},
    {"ER_OUT_OF_RESOURCES",  "1041"},
    {"ER_HOST_IS_BLOCKED",   "1129"},
    {"ER_QUERY_INTERRUPTED", "1317"},
};

// The first group of every match, in the text's order.
std::vector<std::string> matches(const std::string& text, const std::regex& pattern) {
  std::vector<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    found.push_back((*match)[1]);
  }
  return found;
}

Keys withPrefix(const std::string& prefix, const Keys& keys) {
  Keys result;
  std::ranges::transform(keys, std::inserter(result, result.end()),
                         [&](const std::string& key) { return prefix + key; });
  return result;
}

std::filesystem::path bundleFile(const std::string& bundle, const std::string& language) {
  return kRoot / "messages" / (bundle + language + ".properties");
}

// The keys of a file as they stand in it; a key that stands there twice is reported.
Keys keysInFile(const std::filesystem::path& file) {
  static const std::regex kKey("(?:^|\n)[ \t]*([^#!\\s=]+)[ \t]*=");
  Keys keys;
  for (const std::string& key : matches(testing_support::readFile(file), kKey)) {
    EXPECT_TRUE(keys.insert(key).second) << key << " stands twice in " << file;
  }
  return keys;
}

// The first argument of a call, from behind its opening parenthesis.
std::string firstArgument(const std::string& source, std::size_t begin) {
  int depth = 0;
  std::size_t at = begin;
  for (; at < source.size(); ++at) {
    if (source[at] == '(') ++depth;
    if (source[at] == ')' && depth-- == 0) break;
    if (source[at] == ',' && depth == 0) break;
  }
  return source.substr(begin, at - begin);
}

// Every key that a source names in a call of getResStr, or in a choice between keys within it.
void collectKeys(const std::string& source, Keys& keys) {
  static const std::regex kLiteral("\"([^\"]*)\"");
  static const std::string kCall = "getResStr(";
  for (std::size_t at = source.find(kCall); at != std::string::npos; at = source.find(kCall, at)) {
    at += kCall.size();
    const auto literals = matches(firstArgument(source, at), kLiteral);
    keys.insert(literals.begin(), literals.end());
  }
}

Keys keysInSources() {
  Keys keys;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kRoot / "src")) {
    if (entry.is_regular_file()) collectKeys(testing_support::readFile(entry.path()), keys);
  }
  return keys;
}

// The statuses that have a name, success aside, and those that a server gave.
Keys statuses() {
  static const std::regex kStatus("\n  k\\w+ = ([1-9]\\d*),");
  const auto found = matches(testing_support::readFile(kRoot / "tal/status.h"), kStatus);
  Keys statuses(found.begin(), found.end());
  for (const auto& [name, number] : kServerErrors) statuses.insert(number);
  return statuses;
}

Keys serverErrorsInSources() {
  static const std::regex kPassedThrough("passedThrough\\((ER_\\w+)\\)");
  const std::string source = testing_support::readFile(kRoot / "tal/mariadb/errors.cpp");
  const auto found = matches(source, kPassedThrough);
  return {found.begin(), found.end()};
}

// What the engine library says by itself.
Keys messagesInSources() {
  static const std::regex kCall("message\\(\"([A-Z_]+)\"\\)");
  Keys keys;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kRoot / "tal")) {
    if (entry.path().extension() != ".cpp") continue;
    for (const std::string& name : matches(testing_support::readFile(entry.path()), kCall)) {
      keys.insert("ORV_MSG_P_N_" + name);
    }
  }
  return keys;
}

Keys namesOfArguments() {
  Keys names;
  for (const auto& [key, arguments] : kArguments) names.insert(key);
  return names;
}

std::string textOf(const std::filesystem::path& file, const std::string& key) {
  const auto texts = orv::i18n::readProperties(orv::String(file.string()));
  const orv::String* text = texts->get(orv::String(key));
  return text == nullptr ? "" : text->toBytes();
}

void expectConversions(const std::filesystem::path& file, const std::string& key,
                       std::span<const MessageArgument> arguments) {
  const std::string text = textOf(file, key);

  EXPECT_NE(text, "") << key;
  EXPECT_LE(text.size(), kLongestText) << key;
  EXPECT_EQ(text.find_first_of("\n\t"), std::string::npos) << key;
  EXPECT_TRUE(fillIn(text, arguments)) << key << ": " << text;
  if (!arguments.empty()) {
    EXPECT_FALSE(fillIn(text, arguments.first(arguments.size() - 1)))
        << key << " leaves an argument out: " << text;
  }
}

TEST(MessageBundles, SourcesAskForTheKeysThatAreKnownHere) {
  const Keys known = namesOfArguments();

  const Keys asked = keysInSources();

  EXPECT_EQ(asked, known);
}

TEST(MessageBundles, ServerErrorsThatArePassedThroughAreKnownHere) {
  Keys known;
  for (const auto& [name, number] : kServerErrors) known.insert(name);

  const Keys passed = serverErrorsInSources();

  EXPECT_EQ(passed, known);
}

TEST(MessageBundles, EveryFileBelongsToALanguageThatIsHeldComplete) {
  std::set<std::filesystem::path> expected;
  for (const std::string& language : kLanguages) {
    for (const char* bundle : {"ZELK", "TALMSG", "ARSK"}) {
      expected.insert(bundleFile(bundle, language));
    }
  }

  std::set<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(kRoot / "messages")) {
    if (entry.path().extension() == ".properties") found.insert(entry.path());
  }

  EXPECT_EQ(found, expected);
}

TEST(MessageBundles, EveryKeyHasATextAndEveryTextAKey) {
  for (const std::string& language : kLanguages) {
    const Keys program = keysInFile(bundleFile("ZELK", language));
    const Keys logger = keysInFile(bundleFile("ARSK", language));
    const Keys library = keysInFile(bundleFile("TALMSG", language));

    EXPECT_EQ(program, withPrefix("ZELK_", namesOfArguments())) << language;
    EXPECT_EQ(logger, withPrefix("ARSK_", kLoggerKeys)) << language;
    Keys ofLibrary = withPrefix("ORV_MSG_P_E_", statuses());
    ofLibrary.merge(messagesInSources());
    EXPECT_EQ(library, ofLibrary) << language;
  }
}

TEST(MessageBundles, TextsHaveTheConversionsOfTheirArguments) {
  for (const std::string& language : kLanguages) {
    for (const auto& [key, arguments] : kArguments) {
      expectConversions(bundleFile("ZELK", language), "ZELK_" + key, arguments);
    }
    for (const std::string& key : kLoggerKeys) {
      expectConversions(bundleFile("ARSK", language), "ARSK_" + key, kArguments.at(key));
    }
    for (const std::string& status : statuses()) {
      expectConversions(bundleFile("TALMSG", language), "ORV_MSG_P_E_" + status, {});
    }
    for (const std::string& key : messagesInSources()) {
      expectConversions(bundleFile("TALMSG", language), key, {});
    }
  }
}

}  // namespace
