// The simulated engine: deterministic, embedded, described by a scenario.
#pragma once

#include <memory>
#include <string_view>

#include "tal/connect.h"
#include "tal/engine.h"

namespace tal::sim {

// Opens the built-in scenario for "demo", otherwise the scenario file of that name, relative to
// the working directory. Anybody is let in. Throws Failure kScenarioWrong, after one line on
// standard error that names the file, the line and what is wrong.
std::unique_ptr<Engine> open(std::string_view location, const Credentials& credentials);

// Opens the built-in scenario.
std::unique_ptr<Engine> openDemo();

}  // namespace tal::sim
