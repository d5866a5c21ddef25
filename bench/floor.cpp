// The floor under a report's cost: the same lines, each handed to the system by one write(2), and
// nothing else.
//   floor LINES OUTPUT
// LINES is a file that a report was written to; OUTPUT is emptied, "-" stands for standard output.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace {

// Costs next to nothing compared with the writing, which is what is measured.
std::string_view map(const char* path) {
  const int descriptor = open(path, O_RDONLY);
  struct stat status {};
  if (descriptor < 0 || fstat(descriptor, &status) != 0) return {};
  const auto size = static_cast<std::size_t>(status.st_size);
  void* const bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, descriptor, 0);
  if (bytes == MAP_FAILED) return {};
  return {static_cast<const char*>(bytes), size};
}

bool writeLines(int descriptor, std::string_view lines) {
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n') + 1);
    if (write(descriptor, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
      return false;
    }
    lines.remove_prefix(line.size());
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: floor LINES OUTPUT\n", stderr);
    return 2;
  }
  const std::string_view lines = map(argv[1]);
  const std::string_view output = argv[2];
  const int descriptor =
      output == "-" ? STDOUT_FILENO : open(argv[2], O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0666);
  if (lines.empty() || !lines.ends_with('\n') || descriptor < 0 || !writeLines(descriptor, lines)) {
    std::perror("floor");
    return 1;
  }
  return 0;
}
