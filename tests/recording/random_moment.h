// Moments made by chance, the same ones in every run: every code, every byte, empty and long lists.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tal/recording/moment.h"

namespace recording_tests {

using Random = std::mt19937_64;

// A complete moment of an engine.
tal::recording::Moment randomMoment(Random& random);

// A scenario whose refreshes serve these moments, one after the other, with vanishing entries and
// failures in some of them.
std::string scenarioOf(const std::vector<tal::recording::Moment>& moments, Random& random);

// What a recording says of a moment, its heading apart.
std::string sectionsOf(const tal::recording::Moment& moment);

// Reads a line, with or without its line end.
tal::recording::Moment read(std::string line);

}  // namespace recording_tests
