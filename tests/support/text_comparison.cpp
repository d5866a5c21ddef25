#include "tests/support/text_comparison.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace testing_support {
namespace {

using Lines = std::vector<std::string_view>;

// Lines with their line feeds; the last may lack it.
Lines linesOf(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const auto size = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, size));
    text.remove_prefix(size);
  }
  return lines;
}

std::string visible(std::string_view line) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result;
  for (const char character : line) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\t') {
      result += "»";
    } else if (character == '\n') {
      result += "¶";
    } else if (byte >= 32 && byte < 127) {
      result += character;
    } else {
      result += {'\\', 'x', kDigits[byte / 16U], kDigits[byte % 16U]};
    }
  }
  return result;
}

// lengths[i][j]: the longest common subsequence of the lines from i and from j on.
std::vector<std::vector<int>> commonLengths(const Lines& expected, const Lines& actual) {
  std::vector<std::vector<int>> lengths(expected.size() + 1,
                                        std::vector<int>(actual.size() + 1, 0));
  for (std::size_t i = expected.size(); i-- > 0;) {
    for (std::size_t j = actual.size(); j-- > 0;) {
      lengths[i][j] = expected[i] == actual[j] ? lengths[i + 1][j + 1] + 1
                                               : std::max(lengths[i + 1][j], lengths[i][j + 1]);
    }
  }
  return lengths;
}

// Leaves the differing middle with a few lines around it.
void dropCommonEnds(Lines& expected, Lines& actual) {
  constexpr std::ptrdiff_t kContext = 3;
  const auto start = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto dropped = std::max<std::ptrdiff_t>(0, start.first - expected.begin() - kContext);
  expected.erase(expected.begin(), expected.begin() + dropped);
  actual.erase(actual.begin(), actual.begin() + dropped);
  const auto end =
      std::mismatch(expected.rbegin(), expected.rend(), actual.rbegin(), actual.rend());
  const auto kept = std::max<std::ptrdiff_t>(0, end.first - expected.rbegin() - kContext);
  expected.erase(expected.end() - kept, expected.end());
  actual.erase(actual.end() - kept, actual.end());
}

}  // namespace

std::string differences(const std::string& expectedText, const std::string& actualText) {
  Lines expected = linesOf(expectedText);
  Lines actual = linesOf(actualText);
  dropCommonEnds(expected, actual);
  constexpr std::size_t kMost = 2000;
  expected.resize(std::min(expected.size(), kMost));
  actual.resize(std::min(actual.size(), kMost));
  const auto lengths = commonLengths(expected, actual);
  std::string result;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < expected.size() || j < actual.size()) {
    if (i < expected.size() && j < actual.size() && expected[i] == actual[j]) {
      result += "  " + visible(expected[i++]) + "\n";
      ++j;
    } else if (j == actual.size() ||
               (i < expected.size() && lengths[i + 1][j] >= lengths[i][j + 1])) {
      result += "- " + visible(expected[i++]) + "\n";
    } else {
      result += "+ " + visible(actual[j++]) + "\n";
    }
  }
  return result;
}

::testing::AssertionResult sameText(const char* expectedExpression, const char* actualExpression,
                                    const std::string& expected, const std::string& actual) {
  if (expected == actual) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure()
         << expectedExpression << " (-) and " << actualExpression << " (+) differ:\n"
         << differences(expected, actual);
}

::testing::AssertionResult sameAsFile(const std::filesystem::path& expected,
                                      const std::string& actual) {
  const bool exists = std::filesystem::exists(expected);
  const char* const update = std::getenv("ZELK_UPDATE_GOLDENS");
  if (update != nullptr && std::string_view(update) == "1") {
    if (exists || !actual.empty()) {
      writeFile(expected, actual);
    }
    return ::testing::AssertionSuccess();
  }
  return sameText(expected.c_str(), "the output", exists ? readFile(expected) : "", actual);
}

}  // namespace testing_support
