// Little-endian loads, little- and big-endian stores at any address. A wire or file layout is a set of
// offsets that is read and written through these functions, never a cast of a buffer. Any thread; the caller
// has checked that the bytes exist.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace tw {

namespace bytes_detail {

// The value whose bytes stand in memory in the order asked for, or the reverse.
template <std::integral T, std::endian order>
constexpr T Ordered(T value) {
  if constexpr (order == std::endian::native || sizeof(T) == 1) {
    return value;
  } else {
    auto bytes = std::bit_cast<std::array<uint8_t, sizeof(T)>>(value);
    std::reverse(bytes.begin(), bytes.end());
    return std::bit_cast<T>(bytes);
  }
}

template <std::integral T, std::endian order>
constexpr void Store(uint8_t* bytes, T value) {
  const auto copy = std::bit_cast<std::array<uint8_t, sizeof(T)>>(Ordered<T, order>(value));
  std::copy_n(copy.begin(), sizeof(T), bytes);
}

}  // namespace bytes_detail

template <std::integral T>
[[nodiscard]] constexpr T LoadLe(const uint8_t* bytes) {
  std::array<uint8_t, sizeof(T)> copy{};
  std::copy_n(bytes, sizeof(T), copy.begin());
  return bytes_detail::Ordered<T, std::endian::little>(std::bit_cast<T>(copy));
}

template <std::integral T>
constexpr void StoreLe(uint8_t* bytes, T value) {
  bytes_detail::Store<T, std::endian::little>(bytes, value);
}

template <std::integral T>
constexpr void StoreBe(uint8_t* bytes, T value) {
  bytes_detail::Store<T, std::endian::big>(bytes, value);
}

// Many little-endian numbers at once.
inline void LoadLeNumbers(std::span<uint16_t> numbers, const uint8_t* bytes) {
  if constexpr (std::endian::native == std::endian::little) {
    if (!numbers.empty()) std::memcpy(numbers.data(), bytes, numbers.size_bytes());
  } else {
    for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = LoadLe<uint16_t>(bytes + 2 * i);
  }
}
inline void StoreLeNumbers(uint8_t* bytes, std::span<const uint16_t> numbers) {
  if constexpr (std::endian::native == std::endian::little) {
    if (!numbers.empty()) std::memcpy(bytes, numbers.data(), numbers.size_bytes());
  } else {
    for (size_t i = 0; i < numbers.size(); ++i) StoreLe(bytes + 2 * i, numbers[i]);
  }
}

// IEEE-754 single precision, the bytes in little-endian order.
[[nodiscard]] constexpr float LoadLeFloat(const uint8_t* bytes) {
  return std::bit_cast<float>(LoadLe<uint32_t>(bytes));
}

constexpr void StoreLeFloat(uint8_t* bytes, float value) {
  StoreLe<uint32_t>(bytes, std::bit_cast<uint32_t>(value));
}

}  // namespace tw
