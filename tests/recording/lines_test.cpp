#include "tal/recording/lines.h"

#include <gtest/gtest.h>
#include <zstd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tal/recording/writer.h"
#include "tests/support/temporary_folder.h"

namespace recording_tests {
namespace {

using namespace tal::recording;

std::string lineAt(std::int64_t seconds, std::uint64_t sequence) {
  Moment moment;
  moment.heading.sequence = sequence;
  moment.heading.time = seconds * 1'000'000;
  moment.engine.emplace();
  std::string line;
  appendLine(line, moment);
  return line;
}

std::string frameOf(const std::string& text) {
  std::string frame(ZSTD_compressBound(text.size()), '\0');
  frame.resize(ZSTD_compress(frame.data(), frame.size(), text.data(), text.size(), 3));
  return frame;
}

std::vector<std::string> s_complaints;

void note(const std::string& complaint) { s_complaints.push_back(complaint); }

class RecordingFiles : public testing::Test {
 protected:
  RecordingFiles() { s_complaints.clear(); }

  std::string file(const std::string& bytes, const std::string& name = "r.ndjson") {
    testing_support::writeFile(folder_ / name, bytes);
    return (folder_ / name).string();
  }

  // The sequence numbers of the moments.
  static std::string sequences(RecordingReader& reader) {
    std::string found;
    for (Moment moment; reader.next(moment);) {
      found += std::to_string(moment.heading.sequence) + " ";
    }
    return found;
  }
  static std::string sequences(const std::string& path) {
    RecordingReader reader(path, note);
    return sequences(reader);
  }

  testing_support::TemporaryFolder folder_;
};

TEST_F(RecordingFiles, AreReadPastEveryDamage) {
  const std::string one = lineAt(1, 1);
  const std::string two = lineAt(2, 2);
  const std::string nul(5000, '\0');
  const std::string noMoment = std::string(3'000'000, 'x') + "\n";
  const std::string longLine = "{" + std::string(3'000'000, ' ') + "\n";
  const std::string part = two.substr(0, 50);
  const std::string noEnd = two.substr(0, two.size() - 1);
  struct Case {
    std::string bytes;
    const char* found;
    std::size_t complaints;
  };
  const std::vector<Case> cases = {
      {"",                      "",     0},
      {one + two,               "1 2 ", 0},
      {one + part,              "1 ",   0},
      {one + noEnd,             "1 ",   0},
      {one + part + "\n" + two, "1 2 ", 1},
      {one + nul + "\n" + two,  "1 2 ", 1},
      {one + nul,               "1 ",   0},
      {one + nul + two + one,   "1 1 ", 1},
      {"\n\n" + two,            "2 ",   2},
      {"text\n" + two,          "2 ",   1},
      {one + noMoment + two,    "1 2 ", 1},
      {longLine + two,          "2 ",   1},
  };
  for (const Case& each : cases) {
    s_complaints.clear();
    EXPECT_EQ(sequences(file(each.bytes)), each.found) << each.bytes.substr(0, 300);
    EXPECT_EQ(s_complaints.size(), each.complaints) << each.bytes.substr(0, 300);
  }
}

TEST_F(RecordingFiles, SayWhereTheDamageIs) {
  const std::string one = lineAt(1, 1);
  const std::string path = file(one + std::string(3'000'000, '\0') + "\n" + one + "{}\n");

  sequences(path);

  const std::size_t damaged = one.size();
  const std::size_t empty = 2 * one.size() + 3'000'001;
  EXPECT_EQ(s_complaints,
            (std::vector<std::string>{path + ":2 (byte " + std::to_string(damaged) +
                                          "): damaged: the line does not begin with \"{\"",
                                      path + ":4 (byte " + std::to_string(empty) +
                                          "): damaged: the key \"zelk_recording\" is missing"}));
}

TEST_F(RecordingFiles, MayGrowWhileTheyAreRead) {
  const std::string path = file(lineAt(1, 1) + lineAt(2, 2).substr(0, 80));
  RecordingReader reader(path, note);

  EXPECT_EQ(sequences(reader), "1 ");
  file(lineAt(1, 1) + lineAt(2, 2));
  EXPECT_EQ(sequences(reader), "2 ");
}

TEST_F(RecordingFiles, AreFoundByTime) {
  const std::string path = file(lineAt(10, 1) + lineAt(30, 2) + "{\n" + lineAt(20, 3));
  struct Case {
    std::int64_t from;
    std::uint64_t sequence;  // 0: none
  };
  const std::vector<Case> cases = {
      {0,  1},
      {10, 1},
      {11, 2},
      {30, 2},
      {31, 0},
  };
  for (const Case& each : cases) {
    RecordingReader reader(path, note);
    Moment moment;
    const bool isThere = reader.nextFrom(each.from * 1'000'000, moment);
    EXPECT_EQ(isThere ? moment.heading.sequence : 0, each.sequence) << each.from;
  }
}

TEST_F(RecordingFiles, MayBeCompressed) {
  const std::string one = frameOf(lineAt(1, 1));
  const std::string two = frameOf(lineAt(2, 2));
  const std::string three = frameOf(lineAt(3, 3));
  std::string broken = two;
  broken[broken.size() / 2] = static_cast<char>(broken[broken.size() / 2] ^ 0x55);
  const auto found = [&](const std::string& bytes) { return sequences(file(bytes, "r.zst")); };

  EXPECT_EQ(found(one + two + three), "1 2 3 ");
  EXPECT_EQ(found(one + two.substr(0, two.size() - 3)), "1 ");
  EXPECT_TRUE(s_complaints.empty());
  EXPECT_EQ(found(one + std::string(500'000, '\0') + three), "1 3 ");
  EXPECT_EQ(s_complaints.size(), 1U);
  EXPECT_EQ(found(one + "no frame" + three), "1 3 ");
  EXPECT_EQ(found(one + broken + three).substr(0, 2), "1 ");
  EXPECT_TRUE(found(one + broken + three).ends_with("3 "));
}

// Recordings outlive the version that made them.
TEST_F(RecordingFiles, OfEveryReleaseAreReadForGood) {
  for (const auto& entry : std::filesystem::directory_iterator(RELEASED_RECORDINGS)) {
    std::string again;
    RecordingReader reader(entry.path().string(), note);
    for (Moment moment; reader.next(moment);) appendLine(again, moment);

    EXPECT_EQ(again, testing_support::readFile(entry.path())) << entry.path();
  }
  EXPECT_TRUE(s_complaints.empty());
}

TEST_F(RecordingFiles, MustBeRegular) {
  for (const std::string& path : {(folder_ / "none").string(), folder_.path().string(),
                                  std::string("/dev/zero"), std::string()}) {
    EXPECT_THROW(RecordingLines{path}, tal::FileError) << path;
  }
}

}  // namespace
}  // namespace recording_tests
