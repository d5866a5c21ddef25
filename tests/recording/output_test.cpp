#include "companions/record/output.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace companions::record {
namespace {

constexpr std::int64_t kDay = 86'400'000'000;  // microseconds

class RecordingOutput : public testing::Test {
 protected:
  // An output to such a name in the folder.
  [[nodiscard]] Options options(const std::string& name, std::uint64_t keep = 0) const {
    Options options;
    options.output = (folder_ / name).string();
    options.utc = true;
    options.keep = keep;
    return options;
  }

  static void write(Output& output, std::int64_t time) {
    tal::recording::Moment moment;
    moment.heading.time = time;
    moment.heading.server = "sim:demo";
    moment.engine.emplace();
    EXPECT_TRUE(output.write(moment));
  }

  // The files with their lines.
  [[nodiscard]] std::string files() const {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      const std::string text = testing_support::readFile(entry.path());
      found.push_back(entry.path().filename().string() + ":" +
                      std::to_string(std::count(text.begin(), text.end(), '\n')));
    }
    std::ranges::sort(found);
    std::string all;
    for (const std::string& each : found) all += each + " ";
    return all;
  }

  testing_support::TemporaryFolder folder_;
};

TEST_F(RecordingOutput, BeginsANewFileWithANewName) {
  Output output(options("day-%F"), "sim:demo", true);

  write(output, 0);
  write(output, kDay - 1);
  write(output, kDay);
  // Somebody set the clock back, and forward again.
  write(output, 5);
  write(output, 3 * kDay);

  EXPECT_EQ(files(), "day-1970-01-01:3 day-1970-01-02:1 day-1970-01-04:1 ");
}

TEST_F(RecordingOutput, KeepsTheNewestOfItsOwnFiles) {
  for (const char* const other :
       {"day-1969-01-01.txt", "day-", "day-1969-1-1", "day-1969-13-01", "other", "day-%F"}) {
    testing_support::writeFile(folder_ / other, "");
  }
  std::filesystem::create_directory(folder_ / "day-1969-01-02");
  std::filesystem::remove(folder_ / "day-1969-01-02");
  const std::string others = files();
  testing_support::writeFile(folder_ / "day-1969-01-01", "");
  Output output(options("day-%F", 2), "sim:demo", false);

  for (int day = 0; day < 4; ++day) write(output, day * kDay);

  const std::string now = files();
  EXPECT_EQ(now.find("1969-01-01:"), std::string::npos) << now;
  EXPECT_NE(now.find("day-1970-01-03:1 day-1970-01-04:1 "), std::string::npos) << now;
  EXPECT_EQ(now.size(), others.size() + std::string("day-1970-01-03:1 day-1970-01-04:1 ").size());
}

}  // namespace
}  // namespace companions::record
