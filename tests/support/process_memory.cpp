#include "tests/support/process_memory.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "tests/support/file_descriptor.h"

namespace testing_support {
namespace {

long statusLine(const std::string& label) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long value = 0;
    if (word == label && status >> value) return value;
  }
  throw std::runtime_error("no " + label + " in /proc/self/status");
}

// A part of a process's addresses, from `begin` to before `end`.
struct Region {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

// From a line "7f0a-7f0b rw-p ..." of the process's map. Empty if the process itself can never have
// written there.
Region writableRegion(const std::string& line) {
  std::istringstream words(line);
  Region region;
  char dash = 0;
  std::string rights;
  words >> std::hex >> region.begin >> dash >> region.end >> rights;
  return rights.starts_with("rw") ? region : Region();
}

std::string bytesOf(const Region& region, int memory) {
  std::string bytes(region.end - region.begin, '\0');
  const ssize_t count =
      ::pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(region.begin));
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

std::size_t countIn(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != text.npos; at += part.size()) ++count;
  return count;
}

}  // namespace

long residentMemory() { return statusLine("VmRSS:"); }

long peakResidentMemory() { return statusLine("VmHWM:"); }

void resetPeak() {
  constexpr const char* kResetPeak = "5";
  if (!(std::ofstream("/proc/self/clear_refs") << kResetPeak << std::flush)) {
    throw std::runtime_error("the peak cannot be reset");
  }
}

std::size_t copiesIn(pid_t process, std::string_view bytes) {
  const std::string folder = "/proc/" + std::to_string(process);
  const FileDescriptor memory(::open((folder + "/mem").c_str(), O_RDONLY | O_CLOEXEC));
  if (!memory.isOpen()) throw std::runtime_error("the memory cannot be read");
  std::ifstream map(folder + "/maps");
  std::size_t copies = 0;
  for (std::string line; std::getline(map, line);) {
    copies += countIn(bytesOf(writableRegion(line), memory.number()), bytes);
  }
  return copies;
}

}  // namespace testing_support
