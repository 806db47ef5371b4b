// What the virtual echosounder and the virtual GPS receiver have in common: an instrument at the far end of
// a serial line, as a pure state machine. It has no clock, no thread and no I/O; whoever binds it to a line
// tells it the time with every call, in microseconds since any moment of the binder's choice, never falling.
// One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace tw::sim {

inline constexpr int64_t kNever = std::numeric_limits<int64_t>::max();

class VirtualInstrument {
 public:
  virtual ~VirtualInstrument() = default;

  // Bytes that have arrived at the instrument.
  virtual void Receive(std::span<const uint8_t> bytes, int64_t now_us) = 0;

  // Takes bytes that have left the instrument by now, in order. Returns how many were stored in `out`.
  [[nodiscard]] virtual size_t Send(std::span<uint8_t> out, int64_t now_us) = 0;

  // How many bytes Send would give with room for all of them.
  [[nodiscard]] virtual size_t Waiting(int64_t now_us) = 0;

  // When Send will next have a byte to give if nothing is received until then: now when bytes wait already,
  // kNever when only a command can change that.
  [[nodiscard]] virtual int64_t NextSend_us(int64_t now_us) const = 0;

  // The speed of the instrument's line, bit/s.
  [[nodiscard]] virtual int32_t LineSpeed() const = 0;

  // True from the moment at which the plug was pulled; the binder then hangs up its side.
  [[nodiscard]] virtual bool HungUp(int64_t now_us) const = 0;
};

// Faults of the instrument as a whole. Times are the binder's.
struct InstrumentFaults {
  bool dead = false;  // sends nothing, heeds nothing
  int64_t silentFrom_us =
      kNever;  // 0 or later: pings, epochs and replies that would begin in the silence are never
  int64_t silentFor_us = 0;      // made; what has begun before still leaves
  int64_t hangUpAt_us = kNever;  // the plug is pulled: what has not left by then never leaves

  [[nodiscard]] bool SilentAt(int64_t time_us) const {
    return dead || (time_us >= silentFrom_us && time_us - silentFrom_us < silentFor_us);
  }
  [[nodiscard]] bool HungUpAt(int64_t time_us) const { return time_us >= hangUpAt_us; }

  // The first moment from `time_us` (0 or later) on at which the instrument is not silent.
  [[nodiscard]] int64_t AfterSilence_us(int64_t time_us) const {
    if (!SilentAt(time_us)) return time_us;
    return dead || silentFor_us > kNever - silentFrom_us ? kNever : silentFrom_us + silentFor_us;
  }
};

}  // namespace tw::sim
