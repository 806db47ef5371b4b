// The near end of a virtual instrument's line: a test's own clock, and everything the instrument sent.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/virtual_echosounder.h"

namespace tw::sim {

class FarEnd {
 public:
  explicit FarEnd(VirtualInstrument& instrument) : instrument_(instrument) {}

  [[nodiscard]] int64_t Now_us() const { return now_us_; }

  void Write(std::string_view text) {
    instrument_.Receive({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, now_us_);
  }

  // Reads until `until_us`, jumping from one byte's arrival to the next.
  std::string ReadUntil(int64_t until_us) {
    std::string text;
    for (;;) {
      const int64_t next_us = instrument_.NextSend_us(now_us_);
      if (next_us > until_us) break;
      now_us_ = next_us;
      Drain(text);
    }
    now_us_ = until_us;
    Drain(text);
    return text;
  }
  std::string ReadFor_ms(int64_t duration_ms) { return ReadUntil(now_us_ + duration_ms * 1'000); }

  // Sends a command line and reads the answer.
  std::string Ask(std::string_view line, int64_t wait_ms = 500) {
    Write(std::string(line) + "\r");
    return ReadFor_ms(wait_ms);
  }

 private:
  void Drain(std::string& text) {
    std::array<uint8_t, 4'096> bytes;
    while (const size_t count = instrument_.Send(bytes, now_us_)) {
      text.append(reinterpret_cast<const char*>(bytes.data()), count);
    }
  }

  VirtualInstrument& instrument_;
  int64_t now_us_ = 0;
};

// An echosounder and the near end of its line.
struct Sounder : FarEnd {
  explicit Sounder(const SounderOptions& options, PingObserver* observer = nullptr)
      : FarEnd(device), device(options, observer) {}

  VirtualEchosounder device;
};

// The answers to a line: a value, nothing but the prompt, a refusal.
inline std::string Told(std::string_view line, std::string_view value) {
  return std::string(line) + "\r\n" + std::string(value) + "\r\n\r\n>";
}
inline std::string Accepted(std::string_view line) {
  return std::string(line) + "\r\n\r\n>";
}
inline std::string Refused(std::string_view line) {
  return Told(line, "Error");
}

}  // namespace tw::sim
