// The engine that a scenario describes.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/sim/calls.h"
#include "tal/sim/scenario.h"

namespace tal::sim {

// Serves the values of a scenario by refresh number, never by the clock or by chance. The numbers
// advance when a call is announced through answerInstead(), as the C layer does for every call.
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

}  // namespace tal::sim
