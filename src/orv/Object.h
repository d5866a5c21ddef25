// Shared and sole ownership.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

namespace orv {

// Base of all classes that are shared through Reference. The count is kept in the object and is
// safe across threads; the object's own state is not.
class Object {
 public:
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  void addReference() const noexcept { count_.fetch_add(1, std::memory_order_relaxed); }

  // Deletes the object with the last reference.
  void releaseReference() const noexcept {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

 protected:
  Object() = default;

 private:
  mutable std::atomic<std::int32_t> count_{0};
};

// A counted reference to an Object; null when default-constructed.
template <class T>
class Reference {
 public:
  Reference() = default;
  explicit Reference(T* object) noexcept : object_(object) {
    if (object_ != nullptr) object_->addReference();
  }
  Reference(const Reference& other) noexcept : Reference(other.object_) {}
  Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class Derived>
  requires std::is_convertible_v<Derived*, T*> Reference(const Reference<Derived>& other)
  noexcept : Reference(other.get()) {}
  Reference& operator=(Reference other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Reference() {
    if (object_ != nullptr) object_->releaseReference();
  }

  [[nodiscard]] T* get() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): the analyser does not know atomic counts.
  T* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

 private:
  T* object_ = nullptr;
};

// Creates an object that is shared from the start.
template <class T, class... Arguments>
[[nodiscard]] Reference<T> makeReference(Arguments&&... arguments) {
  return Reference<T>(new T(std::forward<Arguments>(arguments)...));
}

// Sole ownership. Its object is deleted with it, or when another object is stored.
template <class T>
using OwningPtr = std::unique_ptr<T>;

template <class T, class... Arguments>
[[nodiscard]] OwningPtr<T> makeOwned(Arguments&&... arguments) {
  return std::make_unique<T>(std::forward<Arguments>(arguments)...);
}

}  // namespace orv
