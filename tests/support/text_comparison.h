// Compares whole texts byte for byte and shows where they differ.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace testing_support {

// The lines that only one text has ("-" expected, "+" actual) between lines of context. Tabs are
// shown as "»", ends of line as "¶", other control characters and invalid bytes as "\xNN".
std::string differences(const std::string& expected, const std::string& actual);

// For EXPECT_PRED_FORMAT2(sameText, expected, actual).
::testing::AssertionResult sameText(const char* expectedExpression, const char* actualExpression,
                                    const std::string& expected, const std::string& actual);

// Compares with the contents of a file; if there is no file, the text must be empty. With
// ZELK_UPDATE_GOLDENS=1 in the environment the file is rewritten instead; an empty text makes no
// new file.
::testing::AssertionResult sameAsFile(const std::filesystem::path& expected,
                                      const std::string& actual);

}  // namespace testing_support
