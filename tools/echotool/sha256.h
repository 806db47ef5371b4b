// SHA-256 (FIPS 180-4), by which a recording is known again wherever it is stored. With the processor's own
// instructions where it has them. Pure; one thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tw::echotool {

class Sha256 {
 public:
  // `plain`: without those instructions.
  explicit Sha256(bool plain = false) : plain_(plain) {}

  void Add(std::span<const uint8_t> bytes);

  // The sum of all bytes as 64 lower-case hexadecimal digits. Nothing is added afterwards.
  [[nodiscard]] std::string Hex();

 private:
  static constexpr size_t kBlock = 64;

  std::array<uint32_t, 8> state_ = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                    0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::array<uint8_t, kBlock> pending_{};
  uint64_t size_ = 0;
  bool plain_;
};

}  // namespace tw::echotool
