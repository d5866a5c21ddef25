// What an engine gives, on its way through the interface.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tal/engine.h"

namespace fuzzing {

// A text that reaches the interface ends within its field and holds no control character.
void requireClean(std::string_view field);

// Puts the values into the interface's structures, and requires that every text there is clean and
// every entry can be found again.
void serve(std::vector<tal::OpenFile> files);
void serve(std::vector<tal::Client> clients);
void serve(const std::vector<tal::SqlConnection>& connections);
void serve(const tal::Usage& usage);
void serve(const tal::Communication& communication);

}  // namespace fuzzing
