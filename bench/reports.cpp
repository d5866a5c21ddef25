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
  testing_support::writeFile(folder_ / "scenario.toml", scenario(handles));
}

Command Reports::report(const Form& form) {
  const std::filesystem::path file = folder_ / "zelk.cfg";
  const std::string scenario = folder_ / "scenario.toml";
  testing_support::writeFile(file, configuration({
                                       {"SERV", "sim:" + scenario               },
                                       {"OUTP", form.toFile ? "FILE" : "CONSOLE"},
                                       {"NAME", folder_ / "zelk.log"            },
                                       {"FILE", handles_ > 0 ? "YES" : "NO"     }
  }));
  Command words{zelk_, "-f", file, "-runonce"};
  if (form.json) words.emplace_back("-JSON");
  return words;
}

Command Reports::floor(const Form& form) const {
  return {floor_, folder_ / "lines", form.toFile ? (folder_ / "zelk.log").string() : "-"};
}

std::size_t Reports::makeLines(bool json) {
  runChecked(report({"", json, true, Output::kDevNull}), Output::kDevNull);
  std::filesystem::rename(folder_ / "zelk.log", folder_ / "lines");
  return linesIn(folder_ / "lines");
}

Cost runChecked(const Command& command, Output output) {
  const Cost cost = run(command, output);
  if (cost.exitStatus != 0) throw std::runtime_error(command.front() + " failed");
  return cost;
}

}  // namespace bench
