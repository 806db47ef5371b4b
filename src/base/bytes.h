// Little- and big-endian loads and stores at any address. A wire or file layout is a set of offsets that is
// read and written through these functions, never a cast of a buffer. Any thread; the caller has checked
// that the bytes exist.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace tw {

// Where the machine's own order is the wanted one, a load or store is one instruction; compilers do not see
// that through the loop.
inline constexpr bool kNativeLittle = std::endian::native == std::endian::little;

template <std::integral T>
[[nodiscard]] constexpr T LoadLe(const uint8_t* bytes) {
  if (kNativeLittle && !std::is_constant_evaluated()) {
    T native;
    std::memcpy(&native, bytes, sizeof native);
    return native;
  }
  std::make_unsigned_t<T> value = 0;
  for (size_t i = 0; i < sizeof(T); ++i) {
    value = static_cast<std::make_unsigned_t<T>>(value | static_cast<std::make_unsigned_t<T>>(bytes[i])
                                                             << (8 * i));
  }
  return static_cast<T>(value);
}

template <std::integral T>
constexpr void StoreLe(uint8_t* bytes, T value) {
  if (kNativeLittle && !std::is_constant_evaluated()) {
    std::memcpy(bytes, &value, sizeof value);
    return;
  }
  const auto bits = static_cast<std::make_unsigned_t<T>>(value);
  for (size_t i = 0; i < sizeof(T); ++i) bytes[i] = static_cast<uint8_t>(bits >> (8 * i));
}

template <std::integral T>
[[nodiscard]] constexpr T LoadBe(const uint8_t* bytes) {
  std::make_unsigned_t<T> value = 0;
  for (size_t i = 0; i < sizeof(T); ++i) {
    value = static_cast<std::make_unsigned_t<T>>(value | static_cast<std::make_unsigned_t<T>>(bytes[i])
                                                             << (8 * (sizeof(T) - 1 - i)));
  }
  return static_cast<T>(value);
}

template <std::integral T>
constexpr void StoreBe(uint8_t* bytes, T value) {
  const auto bits = static_cast<std::make_unsigned_t<T>>(value);
  for (size_t i = 0; i < sizeof(T); ++i) bytes[i] = static_cast<uint8_t>(bits >> (8 * (sizeof(T) - 1 - i)));
}

// IEEE-754 single precision, the bytes in little-endian order.
[[nodiscard]] constexpr float LoadLeFloat(const uint8_t* bytes) {
  return std::bit_cast<float>(LoadLe<uint32_t>(bytes));
}

constexpr void StoreLeFloat(uint8_t* bytes, float value) {
  StoreLe<uint32_t>(bytes, std::bit_cast<uint32_t>(value));
}

}  // namespace tw
