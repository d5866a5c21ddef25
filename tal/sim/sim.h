// The simulated engine: deterministic, embedded, described by a scenario.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "tal/credentials.h"
#include "tal/engine.h"
#include "tal/sim/calls.h"
#include "tal/sim/scenario.h"

namespace tal::sim {

// Serves the values of a scenario by refresh number, never by the clock or by chance. The numbers
// advance when the interface announces a call through answerInstead(), as it does for every call.
class SimulatedEngine : public Engine {
 public:
  explicit SimulatedEngine(Scenario scenario);

  Information information() override;
  Version version() override;
  Usage usage() override;
  Communication communication() override;
  std::vector<OpenFile> openFiles() override;
  std::vector<Client> clients() override;
  std::vector<SqlConnection> sqlConnections() override;
  Status answerInstead(Call call) override;

 private:
  Scenario scenario_;
  Calls calls_;
};

// Opens the built-in scenario for "demo", otherwise the scenario file of that name, relative to the
// working directory. Every account is accepted. Throws Failure kScenarioWrong, after one line on
// standard error that names the file, the line and the error.
std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials);

// Opens the built-in scenario.
std::unique_ptr<Engine> openDemo();

}  // namespace tal::sim
