// Lists, and maps to strings by exact key.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "orv/Object.h"
#include "orv/String.h"

namespace orv::collections {

// Owns its elements: references to shared objects where T is an Object, values otherwise.
template <class T>
class List : public Object {
 public:
  using Element = std::conditional_t<std::is_base_of_v<Object, T>, Reference<T>, T>;

  List() = default;

  void append(Element element) { elements_.push_back(std::move(element)); }
  void clear() noexcept { elements_.clear(); }
  // Frees the memory that is kept for more elements; call it when the list is complete.
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

struct StringHash {
  std::size_t operator()(const String& text) const noexcept {
    return std::hash<std::string>()(text.toBytes());
  }
};

// Starts with `capacity` buckets, and gets more when there are more than `loadFactor` entries per
// bucket.
template <class Key, class Hash>
class HashMap : public Object {
 public:
  HashMap(int capacity, float loadFactor) {
    map_.max_load_factor(loadFactor);
    map_.rehash(static_cast<std::size_t>(capacity));
  }

  // A later value replaces an earlier one.
  void put(Key key, String value) { map_.insert_or_assign(std::move(key), std::move(value)); }

  // The map's own value, or null if the key is absent.
  [[nodiscard]] const String* get(const Key& key) const {
    const auto found = map_.find(key);
    return found == map_.end() ? nullptr : &found->second;
  }

  [[nodiscard]] std::size_t size() const noexcept { return map_.size(); }

  // Empties every value and overwrites its memory.
  void wipe() noexcept {
    for (auto& entry : map_) entry.second.wipe();
  }

 private:
  std::unordered_map<Key, String, Hash> map_;
};

using IntegerHashMap = HashMap<int, std::hash<int>>;
using StringHashMap = HashMap<String, StringHash>;

}  // namespace orv::collections
