#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace {

using testing_support::readFile;
using testing_support::sameText;

const std::filesystem::path kRoot = ZELK_SOURCE_DIR;

// A block of a page that shows an expected output, or lines of it.
struct Sample {
  std::string golden;  // below tests/program/golden
  std::string text;
  bool isPart;
};

// The blocks behind comments "<!-- golden: FILE -->" and "<!-- part of golden: FILE -->".
std::vector<Sample> samplesOf(const std::string& page) {
  static const std::regex kSample("<!-- (part of )?golden: (\\S+) -->\n```text\n([^`]*)```\n");
  std::vector<Sample> samples;
  for (std::sregex_iterator match(page.begin(), page.end(), kSample), end; match != end; ++match) {
    samples.push_back({(*match)[2], (*match)[3], (*match)[1].matched});
  }
  return samples;
}

std::ptrdiff_t commentsIn(const std::string& page) {
  static const std::regex kComment("<!--[^>]*golden");
  return std::distance(std::sregex_iterator(page.begin(), page.end(), kComment), {});
}

TEST(OutputSamples, AreTheGoldenFiles) {
  const std::string page = readFile(kRoot / "docs/output.md");

  const std::vector<Sample> samples = samplesOf(page);

  ASSERT_FALSE(samples.empty());
  EXPECT_EQ(std::ssize(samples), commentsIn(page)) << "a comment without its block";
  for (const Sample& sample : samples) {
    SCOPED_TRACE(sample.golden);
    const std::string golden = readFile(kRoot / "tests/program/golden" / sample.golden);
    const bool isFound = sample.isPart && golden.find("\n" + sample.text) != std::string::npos;
    EXPECT_PRED_FORMAT2(sameText, isFound ? sample.text : golden, sample.text);
  }
}

}  // namespace
