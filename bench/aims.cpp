#include "bench/aims.h"

#include <algorithm>
#include <cstdio>

namespace bench {

void Aims::add(const std::string& what, double aim, double measured) {
  auto known = std::find_if(aims_.begin(), aims_.end(),
                            [&what](const Aim& other) { return other.what == what; });
  if (known == aims_.end()) known = aims_.insert(aims_.end(), {what, aim, {}});
  known->measured.add(measured);
}

void Aims::print() const {
  std::printf("%-46s %8s  %-18s result\n", "", "at most", "measured");
  for (const Aim& aim : aims_) {
    std::printf("%-46s %8.2f  %6.2f to %6.2f   %s\n", aim.what.c_str(), aim.atMost,
                aim.measured.least(), aim.measured.greatest(),
                aim.measured.greatest() <= aim.atMost ? "met" : "missed");
  }
}

}  // namespace bench
