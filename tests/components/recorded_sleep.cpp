#include "tests/components/recorded_sleep.h"

#include <unistd.h>

namespace component_tests {

RecordedSleep& sleeping() {
  static RecordedSleep s_sleeping;
  return s_sleeping;
}

}  // namespace component_tests

extern "C" int usleep(useconds_t microseconds) {
  component_tests::sleeping().slices.push_back(microseconds);
  component_tests::sleeping().onSlice();
  return 0;
}
