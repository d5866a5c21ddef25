#include "orv/Encoding.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "orv/String.h"

namespace {

using orv::String;
using namespace std::string_view_literals;

// As the carrier of a byte that does not decode.
constexpr wchar_t carried(int byte) { return static_cast<wchar_t>(0xDC00 + byte); }

std::wstring carriedAll(std::string_view bytes) {
  std::wstring text;
  for (const char byte : bytes) text.push_back(carried(static_cast<unsigned char>(byte)));
  return text;
}

std::string encoded(wchar_t character) {
  char bytes[orv::kMaximumBytesPerCharacter];
  return {bytes, orv::encodeUtf8(character, bytes)};
}

TEST(Encoding, DecodesTheEdgesOfEachLength) {
  struct Case {
    std::string_view bytes;
    wchar_t character;
  };
  constexpr Case kCases[] = {
      {"\0"sv,               0       },
      {"\x7F"sv,             0x7F    },
      {"\xC2\x80"sv,         0x80    },
      {"\xDF\xBF"sv,         0x7FF   },
      {"\xE0\xA0\x80"sv,     0x800   },
      {"\xED\x9F\xBF"sv,     0xD7FF  },
      {"\xEE\x80\x80"sv,     0xE000  },
      {"\xEF\xBF\xBF"sv,     0xFFFF  },
      {"\xF0\x90\x80\x80"sv, 0x10000 },
      {"\xF4\x8F\xBF\xBF"sv, 0x10FFFF},
  };

  for (const Case& edge : kCases) {
    EXPECT_EQ(String(edge.bytes).wide(), std::wstring(1, edge.character));
    EXPECT_EQ(encoded(edge.character), edge.bytes);
  }
}

TEST(Encoding, CarriesEachByteThatIsNoCharacter) {
  constexpr std::string_view kInvalid[] = {
      "\x80",              // a continuation alone
      "\xC0\xAF",          // overlong forms
      "\xC1\xBF",          //
      "\xE0\x9F\xBF",      //
      "\xF0\x8F\xBF\xBF",  //
      "\xED\xA0\x80",      // surrogates
      "\xED\xB2\x80",      //
      "\xED\xBF\xBF",      //
      "\xF4\x90\x80\x80",  // above U+10FFFF
      "\xF5\x80\x80\x80",  //
      "\xFE\xFF",          // bytes of no sequence
      "\xC3",              // cut off at the end
      "\xE2\x82",          //
      "\xF0\x9F\x98",      //
  };

  for (const std::string_view bytes : kInvalid) {
    const String text(bytes);

    EXPECT_EQ(text.wide(), carriedAll(bytes)) << ::testing::PrintToString(bytes);
    EXPECT_EQ(text.toBytes(), bytes);
  }
}

TEST(Encoding, GoesOnAfterWhatIsNoCharacter) {
  const String text("\xC3(\xE2\x82\xC3\xA4\xFFz"sv);

  const std::wstring expected = {carried(0xC3), L'(',          carried(0xE2), carried(0x82),
                                 L'\u00E4',     carried(0xFF), L'z'};
  EXPECT_EQ(text.wide(), expected);
}

TEST(Encoding, WritesAQuestionMarkForWhatIsNoCharacter) {
  for (const int character : {0xD800, 0xDBFF, 0xDC00, 0xDC7F, 0xDD00, 0xDFFF, 0x110000, -1}) {
    EXPECT_EQ(encoded(static_cast<wchar_t>(character)), "?") << character;
  }
}

TEST(Encoding, LosesNoByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    EXPECT_EQ(String(bytes).toBytes(), bytes) << byte;
  }
}

TEST(Encoding, LosesNoByteOfAnyText) {
  std::mt19937 random(20160229);
  // Lead and continuation bytes are more likely than among bytes of equal chance.
  std::discrete_distribution<int> kind({1, 3, 3});
  std::uniform_int_distribution<int> low(0x00, 0x7F);
  std::uniform_int_distribution<int> middle(0x80, 0xBF);
  std::uniform_int_distribution<int> high(0xC0, 0xFF);

  for (int round = 0; round < 5000; ++round) {
    std::string bytes;
    for (int i = 0; i < round % 64; ++i) {
      const int which = kind(random);
      bytes.push_back(static_cast<char>(which == 0   ? low(random)
                                        : which == 1 ? middle(random)
                                                     : high(random)));
    }
    ASSERT_EQ(String(bytes).toBytes(), bytes);
  }
}

TEST(Encoding, LeavesWhatLaterBytesMayComplete) {
  struct Case {
    std::string_view bytes;
    std::size_t decoded;
  };
  constexpr Case kCases[] = {
      {"a\xC3",         1},
      {"a\xE2\x82",     1},
      {"a\xF0\x9F\x98", 1},
      {"a\xE2(",        3}, // nothing can complete it
      {"a\xED\xA0",     3},
      {"a\xFF",         2},
      {"",              0},
  };

  for (const Case& piece : kCases) {
    std::wstring text;
    EXPECT_EQ(orv::decodeUtf8(piece.bytes, false, text), piece.decoded)
        << ::testing::PrintToString(piece.bytes);
  }
}

TEST(Encoding, CountsAndFindsCharacters) {
  struct Case {
    std::string_view bytes;
    std::vector<std::size_t> offsets;  // of each character, and the end
  };
  const std::vector<Case> cases = {
      {"",                                       {0}                                                       },
      {"ab",                                     {0, 1, 2}                                                 },
      {"a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z", {0, 1, 3, 6, 10, 11}                                      },
      {"\xC3\xFF\xE2\x82",                       {0, 1, 2, 3, 4}                                           },
      {"0123456789abcde\xC3\xA4",                {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17}},
  };

  for (const Case& row : cases) {
    EXPECT_EQ(orv::countCharacters(row.bytes), row.offsets.size() - 1);
    for (std::size_t index = 0; index < row.offsets.size(); ++index) {
      EXPECT_EQ(orv::offsetOfCharacter(row.bytes, index), row.offsets[index]);
    }
    EXPECT_EQ(orv::offsetOfCharacter(row.bytes, 99), row.bytes.size());
  }
}

TEST(Encoding, KnowsWhereWholeCharactersEnd) {
  struct Case {
    std::string_view bytes;
    std::size_t length;
  };
  constexpr Case kCases[] = {
      {"",                  0},
      {"ab",                2},
      {"a\xC3",             1},
      {"a\xC3\xA4",         3},
      {"a\xE2\x82",         1},
      {"a\xE2\x82\xAC",     4},
      {"a\xF0\x9F\x98",     1},
      {"a\xF0\x9F\x98\x80", 5},
      {"\x80\x80\x80\x80",  4}, // not cut off: never was a character
      {"a\xFF",             2},
      {"a\xE0\x80",         3},
  };

  for (const Case& cut : kCases) {
    EXPECT_EQ(orv::lengthOfWholeCharacters(cut.bytes), cut.length)
        << ::testing::PrintToString(cut.bytes);
  }
}

}  // namespace
