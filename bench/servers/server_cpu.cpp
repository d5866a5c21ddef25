#include "bench/servers/server_cpu.h"

#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace bench {
namespace {

struct Process {
  std::string parent;
  long own = 0;            // clock ticks
  long endedChildren = 0;  // likewise
};

// The fields of /proc/PID/stat after the name, which ends with the last bracket: the state, the
// parent, and from the 12th on the times.
std::optional<Process> processIn(const std::filesystem::path& folder) {
  std::ifstream file(folder / "stat");
  std::string line;
  if (!std::getline(file, line)) return std::nullopt;
  std::istringstream fields(line.substr(line.rfind(')') + 1));
  std::array<std::string, 15> field;
  for (std::string& each : field) fields >> each;
  return Process{.parent = field[1],
                 .own = std::stol(field[11]) + std::stol(field[12]),
                 .endedChildren = std::stol(field[13]) + std::stol(field[14])};
}

}  // namespace

double serverCpuSeconds(const std::string& process) {
  const std::optional<Process> server = processIn("/proc/" + process);
  if (!server) throw std::runtime_error("no process " + process);
  long ticks = server->own + server->endedChildren;
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::optional<Process> other = processIn(entry.path());
    if (other && other->parent == process) ticks += other->own;
  }
  return static_cast<double>(ticks) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace bench
