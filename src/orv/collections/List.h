// An ordered collection.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

#include "orv/Object.h"

namespace orv::collections {

// Owns its elements: references to shared objects where T is an Object, values otherwise.
template <class T>
class List : public Object {
 public:
  using Element = std::conditional_t<std::is_base_of_v<Object, T>, Reference<T>, T>;

  List() = default;

  void append(Element element) { elements_.push_back(std::move(element)); }
  void clear() noexcept { elements_.clear(); }
  // Gives back the room for more elements; for a list that is complete.
  void shrinkToSize() { elements_.shrink_to_fit(); }

  [[nodiscard]] std::size_t size() const noexcept { return elements_.size(); }
  [[nodiscard]] bool isEmpty() const noexcept { return elements_.empty(); }
  // `index` is below size().
  [[nodiscard]] const Element& get(std::size_t index) const noexcept { return elements_[index]; }

  [[nodiscard]] auto begin() const noexcept { return elements_.begin(); }
  [[nodiscard]] auto end() const noexcept { return elements_.end(); }

 private:
  std::vector<Element> elements_;
};

}  // namespace orv::collections
