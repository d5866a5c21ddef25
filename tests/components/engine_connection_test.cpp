// VXAMonitorHelper: the connection and what is asked of the engine as a whole.
#include <string>

#include "tests/components/engine_test.h"

namespace component_tests {
namespace {

class EngineConnection : public ComponentTest {
 protected:
  VXAMonitorHelper helper_;
};

std::string repeated(std::size_t count, const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

TEST_F(EngineConnection, ThreeEmptyTextsStandForTheLocalEngine) {
  helper_.connect("", "", "");
  EXPECT_EQ(engine().calls, (Calls{"TalStart(null)"}));

  helper_.disconnect();
  EXPECT_EQ(engine().calls, (Calls{"TalStart(null)", "TalDisconnect(-1)", "TalStop(null)"}));
}

TEST_F(EngineConnection, OneTextThatIsNotEmptyConnectsToAServer) {
  const Calls expected = {
      "TalConnectServer(server, , )",
      "TalConnectServer(, user, )",
      "TalConnectServer(, , password)",
  };

  VXAMonitorHelper().connect("server", "", "");
  VXAMonitorHelper().connect("", "user", "");
  VXAMonitorHelper().connect("", "", "password");

  std::erase(engine().calls, "TalStart(null)");
  EXPECT_EQ(engine().calls, expected);
}

TEST_F(EngineConnection, UsesTheHandleThatTheServerGave) {
  engine().handle = 4711;

  helper_.connect("server", "user", "password");
  helper_.getEngineType();
  helper_.disconnect();

  EXPECT_EQ(engine().calls,
            (Calls{"TalStart(null)", "TalConnectServer(server, user, password)",
                   "TalGetEngineInformation(4711)", "TalDisconnect(4711)", "TalStop(null)"}));
}

TEST_F(EngineConnection, ASecondDisconnectDoesNothing) {
  helper_.connect("server", "user", "password");
  helper_.disconnect();
  engine().calls.clear();

  helper_.disconnect();

  EXPECT_EQ(engine().calls, Calls{});
}

TEST_F(EngineConnection, DisconnectingWithoutAConnectionOnlyStops) {
  helper_.disconnect();

  EXPECT_EQ(engine().calls, (Calls{"TalStop(null)"}));
}

TEST_F(EngineConnection, AFailedConnectStopsOnceAndIsNotStoppedAgain) {
  engine().statuses["TalConnectServer"] = 7103;

  try {
    helper_.connect("server", "user", "password");
    FAIL() << "connected";
  } catch (const VXAException& failure) {
    EXPECT_EQ(failure.getErrorCode(), 7103);
    EXPECT_EQ(failure.getDescription(), "7103: login refused");
  }
  const Calls expected = {"TalStart(null)", "TalConnectServer(server, user, password)",
                          "TalStop(null)"};
  EXPECT_EQ(engine().calls, expected);

  helper_.disconnect();
  EXPECT_EQ(engine().calls, expected);
}

TEST_F(EngineConnection, TheDestructorDoesNotDisconnect) {
  {
    VXAMonitorHelper helper;
    helper.connect("server", "user", "password");
  }

  EXPECT_EQ(engine().calls.back(), "TalConnectServer(server, user, password)");
}

TEST_F(EngineConnection, PassesCredentialsOf255BytesWhole) {
  const std::string longest = repeated(255, "x");
  const std::string umlauts = repeated(127, "ä") + "x";

  helper_.connect(orv::String(longest), orv::String(longest), orv::String(umlauts));

  EXPECT_EQ(engine().calls.back(),
            "TalConnectServer(" + longest + ", " + longest + ", " + umlauts + ")");
}

// Cut, they would be wrong passwords, and lock accounts.
TEST_F(EngineConnection, RefusesCredentialsOf256BytesWithoutConnecting) {
  const orv::String tooLong(repeated(256, "x"));
  const orv::String tooManyBytes(repeated(128, "ä"));
  const orv::String texts[][3] = {
      {tooLong,  "user",  "password"  },
      {"server", tooLong, "password"  },
      {"server", "user",  tooLong     },
      {"",       "",      tooManyBytes},
  };

  for (const auto& [server, user, password] : texts) {
    engine().calls.clear();
    VXAMonitorHelper helper;
    try {
      helper.connect(server, user, password);
      ADD_FAILURE() << "connected";
    } catch (const orv::Exception& failure) {
      EXPECT_EQ(failure.getDescription(), "too long");
      EXPECT_NE(failure.getResult(), 0) << "an empty text must not make it a clean end";
    }
    EXPECT_EQ(engine().calls, (Calls{"TalStart(null)", "TalStop(null)"}));
  }
}

TEST_F(EngineConnection, AnErrorTextIsTheCodeAndItsMessage) {
  EXPECT_EQ(helper_.createErrorMsg(7103), "7103: login refused");
  EXPECT_EQ(helper_.createErrorMsg(-5), "-5: below zero");
  EXPECT_EQ(helper_.createErrorMsg(7999), "7999: The resource bundle is not installed");
}

TEST_F(EngineConnection, WithoutTheBundleAnErrorStillShowsItsCode) {
  const testing_support::MessageFolder empty;

  EXPECT_EQ(helper_.createErrorMsg(7103), "7103: The resource bundle is not installed");
}

class Engine : public EngineTest {};

TEST_F(Engine, TheTypeIsTheFifthValue) {
  engine().engineType = -6;

  EXPECT_EQ(helper_.getEngineType(), -6);
  EXPECT_EQ(engine().calls, (Calls{"TalGetEngineInformation(7)"}));
}

TEST_F(Engine, TheVersionIsPaddedWithZeros) {
  engine().version = {15, 21, 16};
  EXPECT_EQ(helper_.getEngineVersion(), "15.21.016");

  engine().version = {9, 1, 1234};
  EXPECT_EQ(helper_.getEngineVersion(), "09.01.1234");

  EXPECT_EQ(engine().calls, (Calls{"TalGetZorbVersion(7)", "TalGetZorbVersion(7)"}));
}

// Where there is no list, the statuses that shorten lists have no special meaning.
TEST_F(Engine, EveryStatusOfASingleAnswerIsAnError) {
  for (const std::int16_t status : Statuses{1, -5, 7008, 7010, 7015, 32767, -32768}) {
    engine().statuses = {
        {"TalGetEngineInformation", status},
        {"TalGetZorbVersion",       status},
        {"TalGetZorbUsageEx2",      status},
        {"TalGetZorbCommStatEx",    status},
    };
    EXPECT_EQ(failureOf([&] { helper_.getEngineType(); }), status);
    EXPECT_EQ(failureOf([&] { helper_.getEngineVersion(); }), status);
    EXPECT_EQ(failureOf([&] { helper_.getUsageStats(); }), status);
    EXPECT_EQ(failureOf([&] { helper_.getCommStats(); }), status);
  }
}

}  // namespace
}  // namespace component_tests
