#include "tal/sim/load.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tal/sim/errors.h"

namespace tal::sim {
namespace {

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

  // Bytes read into the text from `at`; 0 at the end of the file.
  [[nodiscard]] std::size_t read(std::string& text, std::size_t at) const {
    ssize_t got = -1;
    do {
      got = ::read(number_, text.data() + at, text.size() - at);
    } while (got < 0 && errno == EINTR);
    if (got < 0) failUnreadable(errno);
    return static_cast<std::size_t>(got);
  }

 private:
  int number_;
};

}  // namespace

std::string readFile(const std::string& path) {
  const Descriptor file(path);
  if (!file.isRegularFile()) throw ScenarioError(0, "is not a regular file");
  std::string text(kFileLimit + 1, '\0');
  std::size_t length = 0;
  while (const std::size_t got = file.read(text, length)) length += got;
  if (length > kFileLimit) {
    throw ScenarioError(0, "is larger than " + std::to_string(kFileLimit) + " bytes");
  }
  text.resize(length);
  return text;
}

}  // namespace tal::sim
