// Repeated measurements of one figure.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace bench {

// At least one value is added before it is asked.
class Series {
 public:
  void add(double value) {
    values_.insert(std::upper_bound(values_.begin(), values_.end(), value), value);
  }

  [[nodiscard]] double least() const { return values_.front(); }
  [[nodiscard]] double median() const { return values_[values_.size() / 2]; }
  [[nodiscard]] double greatest() const { return values_.back(); }

 private:
  std::vector<double> values_;
};

}  // namespace bench
