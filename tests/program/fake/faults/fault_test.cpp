// Lets each of the 23 functions return each kind of status at its first, a middle and its last call
// of a report, in text and JSON, with and without handles. The calls that follow, what is printed,
// what stands on standard error and the exit code must be as the table of effects says.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/program/fake/faults/effects.h"
#include "tests/program/fake/faults/expected_run.h"
#include "tests/program/fake/faults/small_engine.h"
#include "tests/program/program_under_test.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::Ending;
using testing_support::maskTimes;
using testing_support::Result;
using testing_support::run;
using testing_support::sameText;

struct Form {
  bool json;
  bool handles;
};

constexpr std::array<Form, 4> kForms = {
    {{false, false}, {false, true}, {true, false}, {true, true}}
};

struct StatusText {
  int status;
  const char* text;
};

// What the message bundle of these tests says; one status is not in it.
constexpr std::array<StatusText, 5> kStatuses = {
    {{7008, "the text of 7008"},
     {7010, "the text of 7010"},
     {7015, "a \"quoted\" text"},
     {-5, "the text of minus five"},
     {1, "The resource bundle is not installed"}}
};

const char* const kBundle =
    "ORV_MSG_P_E_7008=the text of 7008\n"
    "ORV_MSG_P_E_7010=the text of 7010\n"
    "ORV_MSG_P_E_7015=a \"quoted\" text\n"
    "ORV_MSG_P_E_-5=the text of minus five\n";

// How the first line of what a stage prints begins, in text (behind a rule) and in JSON.
struct StageBeginning {
  const char* text;
  const char* json;
};

StageBeginning beginningOf(Stage stage) {
  switch (stage) {
    case Stage::kConnect:
      return {"ENGINE VERSION:", "\t\"engine_version\""};
    case Stage::kFiles:
      return {"ACTIVE FILES:", "\t\"active_files\""};
    case Stage::kSessions:
      return {"VANTOR ACTIVE SESSIONS:", "\t\"vantor_active_sessions\""};
    case Stage::kConnections:
      return {"SQL CONNECTION MANAGER", "\t\"sql_connection_manager_active_sessions\""};
    case Stage::kResources:
      return {"RESOURCE USAGE", "\t\"resource_usage\""};
    default:
      return {"COMMUNICATION STATISTICS", "\t\"communication_statistics\""};
  }
}

// What a complete output holds before the stage.
std::string before(Stage stage, const std::string& output, bool json) {
  const StageBeginning beginning = beginningOf(stage);
  if (json) {
    return output.substr(0, output.find(std::string("\n") + beginning.json) + 1) + "}\n";
  }
  const auto title = output.find(std::string("\n") + beginning.text);
  return output.substr(0, output.rfind('\n', title - 1) + 1);
}

std::string errorText(const StatusText& status, bool json) {
  const std::string number = std::to_string(status.status);
  if (!json) {
    return number + ": " + status.text + "\n";
  }
  std::string escaped;
  for (const char character : std::string(status.text)) {
    escaped += character == '"' ? "\\\"" : std::string(1, character);
  }
  return "\t\"error\": \"" + number + ": " + escaped + "\"\n";
}

class Faults : public ::testing::TestWithParam<EffectRow> {
 protected:
  Faults() {
    testing_support::writeFile(place_ / "tree/share/zelk/messages/TALMSG.properties", kBundle);
  }

  Result report(const std::string& scenario, const std::string& disturbances, const Form& form) {
    std::filesystem::remove(place_ / "trace");
    place_.simulate(scenario);
    place_.disturb(disturbances);
    place_.configure({
        {"FILE", "YES"                      },
        {"SESS", "YES"                      },
        {"CONN", "YES"                      },
        {"RESO", "YES"                      },
        {"COMM", "YES"                      },
        {"HAND", form.handles ? "YES" : "NO"}
    });
    std::vector<std::string> arguments = {"-f", "zelk.cfg", "-runonce"};
    if (form.json) {
      arguments.emplace_back("-JSON");
    }
    Result result = run(place_.command(std::move(arguments)));
    result.output = maskTimes(result.output);
    return result;
  }

  // The output of an engine without faults that has these entries.
  const std::string& outputOf(const std::string& scenario, const Form& form) {
    std::string& output = outputs_[{scenario, form.json, form.handles}];
    if (output.empty()) {
      const Result result = report(scenario, "", form);
      EXPECT_EQ(result.ending, Ending::exit(0));
      output = result.output;
    }
    return output;
  }

  void check(const Fault& fault, const StatusText& status, const Form& form) {
    const ExpectedRun expected(fault, form.handles);
    const std::string output =
        expected.failure() ? before(*expected.failure(), outputOf(wholeEngine(), form), form.json)
                           : outputOf(expected.reported(), form);

    const Result result = report(wholeEngine(),
                                 "status " + fault.function + " " + std::to_string(fault.call) +
                                     " " + std::to_string(fault.status) + "\n",
                                 form);

    EXPECT_PRED_FORMAT2(sameText, expected.trace(), place_.trace());
    EXPECT_PRED_FORMAT2(sameText, output, result.output);
    EXPECT_EQ(result.error, expected.failure() ? errorText(status, form.json) : "");
    EXPECT_EQ(result.ending, Ending::exit(expected.failure() ? 1 : 0));
  }

  const Workplace place_;

 private:
  std::map<std::tuple<std::string, bool, bool>, std::string> outputs_;
};

TEST_P(Faults, HaveTheirEffect) {
  for (const Form& form : kForms) {
    const int calls = ExpectedRun({}, form.handles).callsOf(GetParam().function);
    for (const int call : std::set<int>{1, (calls + 1) / 2, calls}) {
      for (const StatusText& status : kStatuses) {
        SCOPED_TRACE(std::string(form.json ? "JSON" : "text") + (form.handles ? ", handles" : "") +
                     ", call " + std::to_string(call) + ", status " +
                     std::to_string(status.status));
        check({GetParam().function, call, status.status}, status, form);
      }
    }
  }
}

std::string functionName(const ::testing::TestParamInfo<EffectRow>& info) {
  return info.param.function;
}

INSTANTIATE_TEST_SUITE_P(Of, Faults, ::testing::ValuesIn(effectTable()), functionName);

}  // namespace
}  // namespace program_tests
