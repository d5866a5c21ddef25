#include "tests/fuzz/target.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fuzzing {

void require(bool isKept, const char* promise) {
  if (isKept) return;
  std::fprintf(stderr, "broken promise: %s\n", promise);
  std::abort();
}

}  // namespace fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzing::run({reinterpret_cast<const char*>(data), size});
  return 0;
}
