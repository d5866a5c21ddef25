#include "bench/reports.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "bench/configuration.h"

namespace bench {
namespace {

std::size_t linesIn(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const auto lines = std::count(std::istreambuf_iterator<char>(file), {}, '\n');
  return static_cast<std::size_t>(lines);
}

}  // namespace

void Reports::setHandles(long handles) {
  handles_ = handles;
  folder_.write("scenario.toml", scenario(handles));
}

Command Reports::report(const Form& form) {
  const std::string path =
      folder_.write("zelk.cfg", configuration({
                                    {"SERV", "sim:" + folder_.file("scenario.toml")},
                                    {"OUTP", form.toFile ? "FILE" : "CONSOLE"      },
                                    {"NAME", folder_.file("zelk.log")              },
                                    {"FILE", handles_ > 0 ? "YES" : "NO"           }
  }));
  Command words{zelk_, "-f", path, "-runonce"};
  if (form.json) words.emplace_back("-JSON");
  return words;
}

Command Reports::floor(const Form& form) const {
  return {floor_, folder_.file("lines"), form.toFile ? folder_.file("zelk.log") : "-"};
}

std::size_t Reports::makeLines(bool json) {
  runChecked(report({"", json, true, Output::kDevNull}), Output::kDevNull);
  std::filesystem::rename(folder_.file("zelk.log"), folder_.file("lines"));
  return linesIn(folder_.file("lines"));
}

Cost runChecked(const Command& command, Output output) {
  const Cost cost = run(command, output);
  if (cost.exitStatus != 0) throw std::runtime_error(command.front() + " failed");
  return cost;
}

}  // namespace bench
