// Runs a target on every file of a folder, without a fuzzer.
//   replay FOLDER
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

#include "tests/support/temporary_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& file) {
  std::fprintf(stderr, "%s\n", file.c_str());  // the last one is to blame when the process ends
  const std::string input = testing_support::readFile(file);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    replay(entry.path());
    ++files;
  }
  return files > 0 ? 0 : 1;
}
