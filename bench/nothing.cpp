// The floor under the start of a program: the standard library and its threads are linked, and
// nothing is done.
#include <cstdlib>
#include <iostream>
#include <thread>

int main() {
  std::thread([] {}).join();
  return std::cout.good() ? EXIT_SUCCESS : EXIT_FAILURE;
}
