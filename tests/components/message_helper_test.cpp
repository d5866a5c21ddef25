#include "messages/MessageHelper.h"

#include <string>
#include <string_view>

#include "tests/components/component_test.h"

namespace component_tests {
namespace {

constexpr const char* kNotInstalled = "The resource bundle is not installed";

class MessageHelperTest : public ComponentTest {
 protected:
  // What a message says whose text stands so in the bundle.
  template <class... Arguments>
  std::string said(const std::string& text, Arguments... arguments) {
    messages_.add("PART.properties", "PART_TEXT=" + text + "\n");
    return MessageHelper("PART", "PART_").getResStr("TEXT", arguments...).toBytes();
  }
};

std::string repeated(std::size_t count, std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

TEST_F(MessageHelperTest, LooksUpThePrefixAndTheKeyWithNothingBetween) {
  const MessageHelper helper("ZELK", "ZELK_");

  EXPECT_EQ(helper.getResStr("NAME", "15.21.016.000"), "product 15.21.016.000");
  EXPECT_EQ(helper.getResStr("ZELK_NAME", "1"), kNotInstalled);
  EXPECT_EQ(MessageHelper("ZELK", "").getResStr("ZELK_COPYRIGHT"), "(c) somebody");
}

TEST_F(MessageHelperTest, WithoutTheBundleEveryKeySaysSo) {
  const MessageHelper helper("NOWHERE", "ZELK_");

  EXPECT_EQ(helper.getResStr("NAME", "15.21.016.000"), kNotInstalled);
  EXPECT_EQ(helper.getResStr("COPYRIGHT"), kNotInstalled);
}

TEST_F(MessageHelperTest, AMissingKeyReadsLikeAMissingBundle) {
  EXPECT_EQ(MessageHelper("ZELK", "ZELK_").getResStr("NO_SUCH_KEY", "text", 5), kNotInstalled);
}

TEST_F(MessageHelperTest, FillsInTheArgumentsInOrder) {
  EXPECT_EQ(said("cannot create \"%s\": %s (0x%08X)", "/log", "not allowed", -2147024891),
            "cannot create \"/log\": not allowed (0x80070005)");
  EXPECT_EQ(said("%d of %d, 100%%", -3, 10), "-3 of 10, 100%");
}

TEST_F(MessageHelperTest, ATextWithoutConversionsLeavesArgumentsAlone) {
  EXPECT_EQ(said("nothing to fill in", "text", 5), "nothing to fill in");
}

TEST_F(MessageHelperTest, ATextThatDoesNotFitItsArgumentsIsShownAsItStands) {
  for (const std::string text : {"%n", "%ls", "%*d", "%3$s", "%2$s", "%s%s%s", "%d", "100%", "%"}) {
    EXPECT_EQ(said(text, "text", 5), text);
  }
}

TEST_F(MessageHelperTest, ATextIsCutTo1023Bytes) {
  EXPECT_EQ(said(repeated(1023, "x")), repeated(1023, "x"));
  EXPECT_EQ(said(repeated(1024, "x")), repeated(1023, "x"));
  EXPECT_EQ(said(repeated(5000, "x")), repeated(1023, "x"));
}

TEST_F(MessageHelperTest, ATextIsNotCutWithinACharacter) {
  EXPECT_EQ(said(repeated(1022, "x") + "äx"), repeated(1022, "x"));
  EXPECT_EQ(said(repeated(1021, "x") + "äx"), repeated(1021, "x") + "ä");
  EXPECT_EQ(said(repeated(1020, "x") + "😀x"), repeated(1020, "x"));
}

TEST_F(MessageHelperTest, AConversionThatIsCutInTwoIsNone) {
  EXPECT_EQ(said(repeated(1022, "x") + "%s", "text"), repeated(1022, "x") + "%");
}

TEST_F(MessageHelperTest, AResultIsCutTo2047Bytes) {
  EXPECT_EQ(said("%s", repeated(2047, "y").c_str()), repeated(2047, "y"));
  EXPECT_EQ(said("%s", repeated(2048, "y").c_str()), repeated(2047, "y"));
  EXPECT_EQ(said("%s!", repeated(9000, "y").c_str()), repeated(2047, "y"));
}

TEST_F(MessageHelperTest, AWiderFieldIsFilledAndCut) {
  EXPECT_EQ(said("%3000s", "text"), repeated(2047, " "));
  EXPECT_EQ(said("%-3000s|", "text"), "text" + repeated(2043, " "));
  EXPECT_EQ(said("%.3000s", "text"), "text");
}

TEST_F(MessageHelperTest, AResultIsNotCutWithinACharacter) {
  EXPECT_EQ(said("%sä", repeated(2046, "y").c_str()), repeated(2046, "y"));
  EXPECT_EQ(said("%s", repeated(1000, "€").c_str()), repeated(682, "€"));
}

TEST_F(MessageHelperTest, BytesThatAreNoTextGoThroughUnchanged) {
  EXPECT_EQ(said("\xFF %s", "\xC3("), "\xFF \xC3(");
}

}  // namespace
}  // namespace component_tests
