#include "tal/sim/load.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "tal/sim/errors.h"

namespace tal::sim {
namespace {

constexpr std::size_t kBlock = 16384;  // bytes

[[noreturn]] void failUnreadable(int error) {
  throw ScenarioError(0, "cannot be read: " + std::generic_category().message(error));
}

class Descriptor {
 public:
  // Without O_NONBLOCK, opening a pipe would wait for its writer.
  explicit Descriptor(const std::string& path)
      : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (number_ < 0) failUnreadable(errno);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { ::close(number_); }

  [[nodiscard]] bool isRegularFile() const {
    struct stat status {};
    if (::fstat(number_, &status) != 0) failUnreadable(errno);
    return S_ISREG(status.st_mode);
  }

  // Returns false at the end of the file.
  [[nodiscard]] bool appendTo(std::string& text) const {
    std::array<char, kBlock> block;
    ssize_t got = -1;
    do {
      got = ::read(number_, block.data(), block.size());
    } while (got < 0 && errno == EINTR);
    if (got < 0) failUnreadable(errno);
    text.append(block.data(), static_cast<std::size_t>(got));
    return got > 0;
  }

 private:
  int number_;
};

}  // namespace

std::string readFile(const std::string& path) {
  const Descriptor file(path);
  if (!file.isRegularFile()) throw ScenarioError(0, "is not a regular file");
  std::string text;
  while (file.appendTo(text)) {
    if (text.size() > kFileLimit) {
      throw ScenarioError(0, "is larger than " + std::to_string(kFileLimit) + " bytes");
    }
  }
  return text;
}

}  // namespace tal::sim
