// Reading and writing the plain scalars of the state record and of the globals that more than one thread
// touches. The fields stay plain, so that the record can be one zero-filled block; every access from a
// second thread goes through these two functions (sequentially consistent, lock-free for 1 to 8 bytes).
#pragma once

#include <atomic>
#include <type_traits>

namespace tw {

template <typename T>
requires std::is_trivially_copyable_v<T>
[[nodiscard]] T LoadShared(const T& field) {
  return std::atomic_ref<T>(const_cast<T&>(field)).load();
}

template <typename T>
requires std::is_trivially_copyable_v<T>
void StoreShared(T& field, std::type_identity_t<T> value) {
  std::atomic_ref<T>(field).store(value);
}

// Puts `value` into the field and returns what stood there: one thread alone gets the old value.
template <typename T>
requires std::is_trivially_copyable_v<T>
[[nodiscard]] T ExchangeShared(T& field, std::type_identity_t<T> value) {
  return std::atomic_ref<T>(field).exchange(value);
}

// Puts `value` into the field when `expected` stands there; tells whether it did.
template <typename T>
requires std::is_trivially_copyable_v<T>
[[nodiscard]] bool CompareExchangeShared(T& field, std::type_identity_t<T> expected,
                                         std::type_identity_t<T> value) {
  return std::atomic_ref<T>(field).compare_exchange_strong(expected, value);
}

}  // namespace tw
