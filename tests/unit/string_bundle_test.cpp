#include "orv/i18n/StringBundle.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "orv/Exception.h"
#include "tests/unit/message_folder.h"
#include "tests/unit/printing.h"

namespace {

using orv::String;
using orv::i18n::StringBundle;
using testing_support::MessageFolder;
using namespace std::string_view_literals;

// What the key "k" stands for in a file with these bytes.
String textIn(std::string_view bytes) {
  const MessageFolder folder;
  folder.add("B.properties", bytes);
  try {
    return StringBundle::getBundle("B", "C")->getString("k");
  } catch (const orv::ResultException&) {
    return "(no text)";
  }
}

TEST(StringBundle, ReadsKeysAndTexts) {
  struct Case {
    std::string_view file;
    std::string_view text;
  };
  constexpr Case kCases[] = {
      {"k=text\n"sv,                       "text"sv                    },
      {"k=text"sv,                         "text"sv                    },
      {"k=text\r\n"sv,                     "text"sv                    },
      {"\xEF\xBB\xBFk=text\n"sv,           "text"sv                    },
      {" \t k \t = \t two words  \n"sv,    "two words  "sv             }, // blanks after the text are kept
      {"k=\n"sv,                           ""sv                        },
      {"k=a=b\n"sv,                        "a=b"sv                     },
      {"k=first\nk=second\n"sv,            "second"sv                  },
      {"K=other\nkk=other\n"sv,            "(no text)"sv               },
      {"# k=comment\n!k=comment\nk=t\n"sv, "t"sv                       },
      {"  # k=comment\n\n \t\r\nk=t\n"sv,  "t"sv                       },
      {"no text\nk=t\n"sv,                 "t"sv                       },
      {"k=# no comment\n"sv,               "# no comment"sv            },
      {"k=\xC3\xA4\xE2\x82\xAC\xFF\n"sv,   "\xC3\xA4\xE2\x82\xAC\xFF"sv},
      {"=text\n"sv,                        "(no text)"sv               },
      {"k\0=text\n"sv,                     "(no text)"sv               },
      {"k=a\0b\n"sv,                       "a\0b"sv                    },
      {""sv,                               "(no text)"sv               },
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(textIn(row.file).toBytes(), row.text) << ::testing::PrintToString(row.file);
  }
}

TEST(StringBundle, ReadsEscapes) {
  struct Case {
    std::string_view file;
    std::string_view text;
  };
  constexpr Case kCases[] = {
      {R"(k=a\nb)",               "a\nb"                 },
      {R"(k=a\tb)",               "a\tb"                 },
      {R"(k=a\\nb)",              "a\\nb"                },
      {R"(k=a\\)",                "a\\"                  },
      {R"(k=\ a)",                " a"                   },
      {R"(k=\"a\q\:)",            "\"aq:"                },
      {R"(k=\u0041\u00e4\u20AC)", "A\xC3\xA4\xE2\x82\xAC"},
      {R"(k=\uD83D\uDE00)",       "\xF0\x9F\x98\x80"     },
      {R"(k=\uD83D)",             "?"                    }, // half of a pair
      {R"(k=\uD83Dx)",            "?x"                   },
      {R"(k=\uDE00)",             "?"                    },
      {R"(k=\uD83D\u0041)",       "?A"                   },
      {R"(k=\uDC80)",             "?"                    }, // no way to make a byte
      {R"(k=\u12)",               "u12"                  }, // too few digits
      {R"(k=\u12g4)",             "u12g4"                },
      {R"(k=\u)",                 "u"                    },
      {R"(k=\u00/0\u00:0)",       "u00/0u00:0"           }, // beside the digits
      {R"(k=\u00@0\u00G0\u00`0)", "u00@0u00G0u00`0"      },
      {R"(k=\uE000)",             "\xEE\x80\x80"         }, // behind the surrogates
      {R"(k=\uD83D\uE000)",       "?\xEE\x80\x80"        },
      {R"(k=\U0041)",             "U0041"                },
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(textIn(row.file).toBytes(), row.text) << row.file;
  }
}

TEST(StringBundle, ContinuesLines) {
  struct Case {
    std::string_view file;
    std::string_view text;
  };
  constexpr Case kCases[] = {
      {"k=a\\\nb\n",             "ab"           },
      {"k=a\\\r\nb\r\n",         "ab"           },
      {"k=a \\\n  \t b\\\n c\n", "a bc"         },
      {"k\\\n=a\n",              "a"            },
      {"k=a\\\\\nb=c\n",         "a\\"          }, // an escaped backslash continues nothing
      {"k=a\\\\\\\nb\n",         "a\\b"         },
      {"k=a\\\n# no comment\n",  "a# no comment"},
      {"k=a\\\n\nb=c\n",         "a"            },
      {"k=a\\\n",                "a"            },
      {"k=a\\",                  "a"            },
      {"k=a\\\n\\\nb",           "ab"           },
      {"# comment \\\nk=t\n",    "t"            }, // comments are not continued
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(textIn(row.file).toBytes(), row.text) << ::testing::PrintToString(row.file);
  }
}

TEST(StringBundle, AsksTheLanguagesKeyByKey) {
  const MessageFolder folder;
  folder.add("B_de_AT.properties", "austrian=de_AT\n");
  folder.add("B_de.properties", "austrian=de\ngerman=de\n");
  folder.add("B.properties", "austrian=any\ngerman=any\nother=any\n");

  for (const char* locale : {"de_AT", "de_AT.UTF-8", "de_AT.UTF-8@euro", "de_AT@euro"}) {
    const auto bundle = StringBundle::getBundle("B", locale);
    EXPECT_EQ(bundle->getString("austrian"), "de_AT") << locale;
    EXPECT_EQ(bundle->getString("german"), "de") << locale;
    EXPECT_EQ(bundle->getString("other"), "any") << locale;
    EXPECT_THROW(static_cast<void>(bundle->getString("missing")), orv::ResultException);
  }
  EXPECT_EQ(StringBundle::getBundle("B", "de_CH")->getString("austrian"), "de");
  EXPECT_EQ(StringBundle::getBundle("B", "en_US")->getString("austrian"), "any");
  EXPECT_EQ(StringBundle::getBundle("B", "C")->getString("german"), "any");
  EXPECT_EQ(StringBundle::getBundle("B", "")->getString("german"), "any");
}

TEST(StringBundle, FollowsTheLocaleOfTheProcess) {
  const MessageFolder folder;
  folder.add("B_C.properties", "k=of the locale C\n");
  const std::string before = std::setlocale(LC_MESSAGES, nullptr);
  std::setlocale(LC_MESSAGES, "C");

  const String text = StringBundle::getBundle("B", nullptr)->getString("k");
  std::setlocale(LC_MESSAGES, before.c_str());

  EXPECT_EQ(text, "of the locale C");
}

TEST(StringBundle, AsksTheLanguagesOfAListInOrder) {
  const MessageFolder folder;
  folder.add("B_de.properties", "k=de\n");
  folder.add("B_fr.properties", "k=fr\n");
  folder.add("B.properties", "k=en\n");
  struct Case {
    const char* list;
    const char* text;
  };
  constexpr Case kCases[] = {
      {"fr:de",       "fr"},
      {"it:de_CH:fr", "de"},
      {"en:de",       "en"},
      {"en_US:de",    "en"},
      {"../x:de",     "de"},
      {"::de",        "de"},
      {"it",          "en"},
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(StringBundle::getBundle("B", row.list)->getString("k"), row.text) << row.list;
  }
}

TEST(StringBundle, FollowsTheVariableLanguageUnlessTheLocaleIsC) {
  const MessageFolder folder;
  folder.add("B_de.properties", "k=de\n");
  folder.add("B.properties", "k=en\n");
  const std::string before = std::setlocale(LC_MESSAGES, nullptr);
  setenv("LANGUAGE", "de", 1);

  std::setlocale(LC_MESSAGES, "C");
  const String plain = StringBundle::getBundle("B", nullptr)->getString("k");
  const bool isInstalled = std::setlocale(LC_MESSAGES, "C.UTF-8") != nullptr;
  const String listed = StringBundle::getBundle("B", nullptr)->getString("k");
  unsetenv("LANGUAGE");
  std::setlocale(LC_MESSAGES, before.c_str());

  EXPECT_EQ(plain, "en");
  EXPECT_EQ(listed, isInstalled ? "de" : "en");
}

TEST(StringBundle, NeedsOnlyOneFile) {
  const MessageFolder folder;
  folder.add("B_de.properties", "k=t\n");

  EXPECT_EQ(StringBundle::getBundle("B", "de_AT")->getString("k"), "t");
  EXPECT_THROW(StringBundle::getBundle("B", "en"), orv::ResultException);
  EXPECT_THROW(StringBundle::getBundle("Other", "de"), orv::ResultException);
}

TEST(StringBundle, NeverLeavesItsFolderForALanguage) {
  const MessageFolder folder;
  std::filesystem::create_directory(folder / "B_x");
  folder.add("B.properties", "k=fallback\n");
  folder.add("evil.properties", "k=evil\n");

  for (const char* locale :
       {"x/../evil", "../evil", "/etc/passwd", "x\n", "x[", "x`", "x{", "\xC3\xA4"}) {
    EXPECT_EQ(StringBundle::getBundle("B", locale)->getString("k"), "fallback") << locale;
  }
}

TEST(StringBundle, SurvivesALongLanguage) {
  const MessageFolder folder;
  folder.add("B.properties", "k=fallback\n");

  EXPECT_EQ(StringBundle::getBundle("B", std::string(5000, 'x').c_str())->getString("k"),
            "fallback");
}

TEST(StringBundle, TakesAFolderForNoFile) {
  const MessageFolder folder;
  std::filesystem::create_directory(folder / "B.properties");

  EXPECT_THROW(StringBundle::getBundle("B", "C"), orv::ResultException);
}

TEST(StringBundle, ReadsOnlyRegularFiles) {
  const MessageFolder folder;
  std::filesystem::create_symlink("/dev/zero", folder / "Device.properties");
  ASSERT_EQ(mkfifo((folder / "Pipe.properties").c_str(), 0600), 0);

  for (const char* name : {"Device", "Pipe"}) {
    EXPECT_THROW(StringBundle::getBundle(name, "C"), orv::ResultException) << name;
  }
}

TEST(StringBundle, ReadsLinesOfAnyLength) {
  const std::string longText(100000, 'x');

  EXPECT_EQ(textIn("long=" + longText + "\n# " + longText + "\nk=t\n"), "t");
  EXPECT_EQ(textIn("k=" + longText + "\\\n" + longText), String(longText + longText));
}

TEST(StringBundle, RefusesAFileOfMoreThan64MiB) {
  const MessageFolder folder;
  folder.add("B.properties", "k=t\n#");
  std::filesystem::resize_file(folder / "B.properties", (64U << 20U) + 1);

  EXPECT_THROW(static_cast<void>(StringBundle::getBundle("B", "C")), orv::ResultException);
}

TEST(StringBundle, IsReadOnceForEachLanguage) {
  const MessageFolder folder;
  folder.add("B.properties", "k=any\n");
  folder.add("B_de.properties", "k=de\n");
  const auto first = StringBundle::getBundle("B", "de_AT");
  std::filesystem::remove(folder / "B_de.properties");

  EXPECT_EQ(StringBundle::getBundle("B", "de_AT").get(), first.get());
  EXPECT_EQ(StringBundle::getBundle("B", "C")->getString("k"), "any");
}

// Takes minutes if each piece is joined by looking at all pieces before it.
TEST(StringBundle, JoinsManyPiecesInLinearTime) {
  std::string file = "k=";
  while (file.size() < (1U << 20U)) file += "\\\\\\\n";

  EXPECT_EQ(textIn(file).length(), (file.size() - 2) / 4);
}

}  // namespace
