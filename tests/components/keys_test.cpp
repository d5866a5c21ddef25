#include "monitor/Keys.h"

#include <gtest/gtest.h>

namespace {

constexpr int kEndOfInput = -1;

TEST(Keys, ALetterIsRecognisedInBothCasesAndNothingElseIs) {
  for (int byte = kEndOfInput; byte <= 255; ++byte) {
    EXPECT_EQ(isKey(byte, 'Q'), byte == 'q' || byte == 'Q') << byte;
    EXPECT_EQ(isKey(byte, 'R'), byte == 'r' || byte == 'R') << byte;
  }
}

TEST(Keys, BytesFrom1To127AreTyped) {
  for (int byte = kEndOfInput; byte <= 255; ++byte) {
    EXPECT_EQ(isTyped(byte), byte >= 1 && byte <= 127) << byte;
  }
}

}  // namespace
