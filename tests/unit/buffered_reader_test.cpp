#include "orv/io/Readers.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "orv/Exception.h"
#include "orv/io/InputStreams.h"
#include "tests/unit/memory_streams.h"
#include "tests/unit/printing.h"

namespace {

using orv::makeReference;
using orv::String;
using orv::io::BufferedReader;
using orv::io::InputStreamReader;
using testing_support::MemoryInputStream;
using Lines = std::vector<String>;

constexpr std::size_t kMaximum = BufferedReader::kMaximumLineLength;

orv::Reference<BufferedReader> readerFor(std::string_view bytes, std::size_t bufferSize = 2048) {
  return makeReference<BufferedReader>(makeReference<InputStreamReader>(
      makeReference<MemoryInputStream>(bytes, bytes.size() + 1), bufferSize));
}

Lines linesOf(BufferedReader& reader) {
  Lines lines;
  String line;
  while (reader.readLine(line)) lines.push_back(line);
  return lines;
}

TEST(BufferedReader, EndsLinesAtLineFeedsAlone) {
  struct Case {
    std::string_view text;
    Lines lines;
  };
  using namespace std::string_view_literals;
  const std::vector<Case> cases = {
      {""sv,           {}                              },
      {"\n"sv,         {""}                            },
      {"\n\n"sv,       {"", ""}                        },
      {"a"sv,          {"a"}                           },
      {"a\n"sv,        {"a"}                           },
      {"a\nb"sv,       {"a", "b"}                      },
      {"a\n\nb\n"sv,   {"a", "", "b"}                  },
      {"a\r\nb\r"sv,   {"a\r", "b\r"}                  },
      {"\xEF\xBB\xBF"
       "a\n"sv, {"a"}                           },
      {"\0\n\0"sv,     {String("\0"sv), String("\0"sv)}},
  };

  for (const Case& row : cases) {
    for (const std::size_t bufferSize : {4U, 5U, 2048U}) {
      EXPECT_EQ(linesOf(*readerFor(row.text, bufferSize)), row.lines)
          << ::testing::PrintToString(row.text);
    }
  }
}

TEST(BufferedReader, JoinsWhatItsBufferCuts) {
  const std::string first(5000, 'x');
  const std::string second = "\xE2\x82\xAC" + std::string(5000, 'y');

  const Lines lines = linesOf(*readerFor(first + "\n" + second, 16));

  EXPECT_EQ(lines, (Lines{String(first), String(second)}));
}

TEST(BufferedReader, KeepsTheLongestLineWhole) {
  const std::string longest(kMaximum, 'x');

  for (const std::string& text : {longest, longest + "\n", longest + "\nz"}) {
    const auto reader = readerFor(text);
    String line;
    ASSERT_TRUE(reader->readLine(line));
    EXPECT_EQ(line.length(), kMaximum);
    EXPECT_FALSE(reader->isLineCut());
    EXPECT_EQ(linesOf(*reader), text.ends_with('z') ? Lines{"z"} : Lines{});
  }
}

TEST(BufferedReader, CutsALongerLineAndGoesOnBehindIt) {
  const auto reader =
      readerFor(std::string(kMaximum, 'x') + std::string(3 * kMaximum, 'y') + "\nz");
  String line;

  ASSERT_TRUE(reader->readLine(line));
  EXPECT_TRUE(reader->isLineCut());
  EXPECT_EQ(line, String(std::string(kMaximum, 'x')));

  ASSERT_TRUE(reader->readLine(line));
  EXPECT_FALSE(reader->isLineCut());
  EXPECT_EQ(line, "z");
  EXPECT_FALSE(reader->readLine(line));
}

TEST(BufferedReader, EndsAfterACutLineWithoutAnEnd) {
  const auto reader = readerFor(std::string(kMaximum + 1, 'x'));
  String line;

  ASSERT_TRUE(reader->readLine(line));
  EXPECT_TRUE(reader->isLineCut());

  EXPECT_FALSE(reader->readLine(line));
  EXPECT_FALSE(reader->isLineCut());
}

TEST(BufferedReader, TellsWhatTheRestOfACutLineHas) {
  struct Case {
    std::string rest;
    bool hasIt;
  };
  const std::vector<Case> cases = {
      {"=",              true        },
      {std::string(9000, 'y') + "=",   true},
      {"y",                false                         },
      {std::string(9000,                'y'),false},
      {std::string(9000,           'y') + "\n=",                                    false},
      {"y\n=",false},
  };

  for (const Case& row : cases) {
    const auto reader = readerFor(std::string(kMaximum, 'x') + row.rest + "\nz=\n");
    String line;
    ASSERT_TRUE(reader->readLine(line));
    ASSERT_TRUE(reader->isLineCut());
    EXPECT_EQ(reader->restOfLineHas(L'='), row.hasIt);
    const Lines later = linesOf(*reader);
    ASSERT_FALSE(later.empty());
    EXPECT_EQ(later.back(), "z=");
    EXPECT_EQ(later.size(), row.rest.find('\n') == std::string::npos ? 1U : 2U);
  }
}

TEST(BufferedReader, FindsNothingInTheRestOfAWholeLine) {
  const auto reader = readerFor("a\n=\n");
  String line;
  ASSERT_TRUE(reader->readLine(line));

  EXPECT_FALSE(reader->restOfLineHas(L'='));

  EXPECT_EQ(linesOf(*reader), Lines{"="});
}

TEST(BufferedReader, FindsNothingBehindTheEndOfTheInput) {
  const auto reader = readerFor(std::string(kMaximum + 5000, 'x'));
  String line;
  ASSERT_TRUE(reader->readLine(line));

  EXPECT_FALSE(reader->restOfLineHas(L'='));

  EXPECT_FALSE(reader->isLineCut());
  EXPECT_EQ(linesOf(*reader), Lines{});
}

TEST(BufferedReader, KeepsLongerLinesIfItIsToldTo) {
  BufferedReader reader(
      makeReference<InputStreamReader>(
          makeReference<MemoryInputStream>(std::string(2 * kMaximum, 'x'), 4096U), 2048U),
      3 * kMaximum);
  String line;

  ASSERT_TRUE(reader.readLine(line));

  EXPECT_EQ(line.length(), 2 * kMaximum);
  EXPECT_FALSE(reader.isLineCut());
}

TEST(BufferedReader, GivesUpALineThatNeverEnds) {
  BufferedReader reader(makeReference<InputStreamReader>(
      makeReference<orv::io::FileInputStream>("/dev/zero"), 2048U));
  String line;

  ASSERT_TRUE(reader.readLine(line));

  EXPECT_TRUE(reader.isLineCut());
  EXPECT_EQ(line.length(), kMaximum);
  EXPECT_THROW(reader.readLine(line), orv::ResultException);
}

}  // namespace
