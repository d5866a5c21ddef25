#include "orv/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "orv/Exception.h"

namespace orv {
namespace {

struct Standard {
  int descriptor;
  int wrongMode;  // in which the descriptor's use fails
};

constexpr Standard kStandards[] = {
    {STDIN_FILENO,  O_WRONLY},
    {STDOUT_FILENO, O_RDONLY},
    {STDERR_FILENO, O_RDONLY},
};

}  // namespace

void keepStandardDescriptors() {
  for (const Standard& standard : kStandards) {
    if (fcntl(standard.descriptor, F_GETFD) >= 0) continue;
    // The lowest free number is taken, and that is this one.
    if (open("/dev/null", standard.wrongMode) < 0) throw ResultException(resultOfErrno(errno));
  }
}

}  // namespace orv
