// What zelk may cost at most, and what was measured.
#pragma once

#include <string>
#include <vector>

#include "bench/series.h"

namespace bench {

// Every figure that is measured for an aim is added to it; the greatest one must not exceed it.
class Aims {
 public:
  void add(const std::string& what, double aim, double measured);

  // A table on standard output.
  void print() const;

 private:
  struct Aim {
    std::string what;
    double atMost;
    Series measured;
  };

  std::vector<Aim> aims_;
};

}  // namespace bench
