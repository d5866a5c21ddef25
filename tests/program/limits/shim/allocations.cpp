// operator new and delete of the whole process, that of shared libraries included.
#include <sys/mman.h>

#include <cstdlib>
#include <new>

#include "tests/program/limits/shim/counts.h"

namespace limits {
namespace {

constinit Counts s_own;
constinit Counts* s_counts = &s_own;
constinit std::uint64_t s_failing = 0;
constinit bool s_forGood = false;

bool mustFail(std::uint64_t number) noexcept {
  return s_failing != 0 && (number == s_failing || (s_forGood && number > s_failing));
}

void release(void* memory) noexcept {
  if (memory != nullptr) ++s_counts->releases;
  std::free(memory);
}

}  // namespace

Counts& counts() noexcept { return *s_counts; }

void shareCounts() {
  static void* const page =
      mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) throw std::bad_alloc();
  s_counts = new (page) Counts;
}

void failAllocation(std::uint64_t number, bool forGood) noexcept {
  s_failing = number;
  s_forGood = forGood;
}

}  // namespace limits

void* operator new(std::size_t size) {
  if (limits::mustFail(++limits::s_counts->allocations)) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept { limits::release(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { limits::release(memory); }
