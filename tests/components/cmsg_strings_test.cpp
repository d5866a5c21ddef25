#include "messages/CMSGStrings.h"

#include "tests/components/component_test.h"

namespace component_tests {
namespace {

constexpr const char* kNotInstalled = "The resource bundle is not installed";

class CMSGStringsTest : public ComponentTest {
 protected:
  CMSGStringsTest() {
    messages_.add("TALMSG.properties", R"(
PRE_KEY=by prefix and key
PRE_12=by prefix and number
PRE_N12=by prefix and negative number
ORV_MSG_KEY=by key
ORV_MSG_12=by number
ORV_MSG_N12=by negative number
ORV_MSG_TITLE=a title with %s in it
)");
  }

  orv::String text_ = "before";
};

TEST_F(CMSGStringsTest, MakeResourceStringFetchesOneTextUnformatted) {
  CMSGStrings::MakeResourceString("TALMSG", "ORV_MSG_TITLE", text_);

  EXPECT_EQ(text_, "a title with %s in it");
}

TEST_F(CMSGStringsTest, MakeResourceStringSaysThatTheBundleIsNotInstalled) {
  CMSGStrings::MakeResourceString("NOWHERE", "ORV_MSG_TITLE", text_);

  EXPECT_EQ(text_, kNotInstalled);
}

TEST_F(CMSGStringsTest, MakeResourceStringSaysTheSameOfAMissingKey) {
  CMSGStrings::MakeResourceString("TALMSG", "NO_SUCH_KEY", text_);

  EXPECT_EQ(text_, kNotInstalled);
}

TEST_F(CMSGStringsTest, MakeResStringTrimsTheKeyAndReadsAHyphenAsN) {
  for (const char* key : {"KEY", " KEY", "KEY \t\r\n", "\n\t KEY\r"}) {
    CMSGStrings::MakeResString(orv::String("PRE_"), key, text_);
    EXPECT_EQ(text_, "by prefix and key") << key;
  }

  CMSGStrings::MakeResString(orv::String("PRE_"), " -12 ", text_);
  EXPECT_EQ(text_, "by prefix and negative number");
}

TEST_F(CMSGStringsTest, MakeResStringLeavesThePrefixAsItIs) {
  CMSGStrings::MakeResString(orv::String(" PRE_"), "KEY", text_);

  EXPECT_EQ(text_, kNotInstalled);
}

TEST_F(CMSGStringsTest, MakeResStringWithoutAPrefixHasItsOwn) {
  CMSGStrings::MakeResString("KEY", text_);

  EXPECT_EQ(text_, "by key");
}

TEST_F(CMSGStringsTest, MakeResStringTakesANumberAsTheKey) {
  CMSGStrings::MakeResString(12, text_);
  EXPECT_EQ(text_, "by number");

  CMSGStrings::MakeResString(-12, text_);
  EXPECT_EQ(text_, "by negative number");
}

TEST_F(CMSGStringsTest, MakeResStringTakesAPrefixAndANumber) {
  CMSGStrings::MakeResString(orv::String("PRE_"), 12, text_);
  EXPECT_EQ(text_, "by prefix and number");

  CMSGStrings::MakeResString(orv::String("PRE_"), -12, text_);
  EXPECT_EQ(text_, "by prefix and negative number");
}

TEST_F(CMSGStringsTest, PrepareDialogFetchesAMessageAndATitle) {
  orv::String title;

  CMSGStrings::PrepareDialog("KEY", "TITLE", text_, title);
  EXPECT_EQ(text_, "by key");
  EXPECT_EQ(title, "a title with %s in it");

  CMSGStrings::PrepareDialog(-12, "KEY", text_, title);
  EXPECT_EQ(text_, "by negative number");
  EXPECT_EQ(title, "by key");
}

TEST_F(CMSGStringsTest, PrepareDialogWithoutTheBundleNamesIt) {
  const testing_support::MessageFolder empty;
  orv::String title;

  CMSGStrings::PrepareDialog("KEY", "TITLE", text_, title);

  EXPECT_EQ(text_, "The TALMSG resource bundle is not installed");
  EXPECT_EQ(title, "TALMSG Resource Bundle Loading Error");
}

}  // namespace
}  // namespace component_tests
