#include "tests/support/fake_engine/disturbances.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fake_engine {
namespace {

std::string bytesOf(const std::string& hexadecimal) {
  std::string bytes;
  for (std::size_t at = 0; at < hexadecimal.size(); at += 2) {
    bytes += static_cast<char>(std::stoi(hexadecimal.substr(at, 2), nullptr, 16));
  }
  return bytes;
}

void read(const std::string& line, Disturbances& to) {
  std::istringstream fields(line);
  std::string kind;
  CallNumber call;
  fields >> kind >> call.first;
  if (kind != "announce") fields >> call.second;
  if (kind == "announce") {
    fields >> to.counts[call.first];
  } else if (kind == "status") {
    fields >> to.statuses[call];
  } else if (kind == "poke") {
    Poke poke{};
    std::string hexadecimal;
    fields >> poke.offset >> hexadecimal;
    poke.bytes = bytesOf(hexadecimal);
    to.pokes.emplace(call, poke);
  } else if (kind == "throw") {
    fields >> to.exceptions[call];
  } else if (kind == "pause") {
    fields >> to.pauses[call];
  } else {
    throw std::invalid_argument("unknown word: " + kind);
  }
  if (!fields || !(fields >> std::ws).eof()) throw std::invalid_argument("wrong fields");
}

}  // namespace

Disturbances readDisturbances(const std::string& path) {
  std::ifstream file(path);
  Disturbances disturbances;
  std::string line;
  try {
    if (!file) throw std::invalid_argument("cannot be read");
    while (std::getline(file, line)) {
      if (!line.empty() && line.front() != '#') read(line, disturbances);
    }
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "fake engine: %s: %s\n%s\n", path.c_str(), exception.what(), line.c_str());
    std::_Exit(125);
  }
  return disturbances;
}

}  // namespace fake_engine
