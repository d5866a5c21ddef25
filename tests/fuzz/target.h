// What a fuzz target consists of. Each is one program; the fuzzer makes its inputs, and the
// ordinary tests replay those of its corpus.
#pragma once

#include <string_view>

namespace fuzzing {

// Gives one input to the code under test. Every target has one of its own.
void run(std::string_view input);

// Ends the process, which a fuzzer takes for a finding, unless the promise was kept.
void require(bool isKept, const char* promise);

}  // namespace fuzzing
