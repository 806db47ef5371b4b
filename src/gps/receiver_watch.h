// Whether the GPS receiver still tells something: judged by the times that its worker notes. Pure but for
// the shared fields; any thread.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"
#include "base/shared_value.h"

namespace tw {

// By the millisecond clock.
struct ReceiverTimes {
  uint32_t byte_ms;      // of the last byte
  uint32_t sentence_ms;  // of the last whole sentence
};

enum class ReceiverState : uint8_t {
  tells,
  silent,       // no byte for the given time
  noSentences,  // bytes that are none, of another speed perhaps
};

inline constexpr uint32_t kNoSentences_ms = 5'000;

[[nodiscard]] inline ReceiverTimes TimesOfReceiver(const AppState& state) {
  return {LoadShared(state.receiverByte_ms), LoadShared(state.receiverSentence_ms)};
}

// The times between the bytes of a burst may be noted after `now_ms` was read: that is no silence.
[[nodiscard]] ReceiverState JudgeReceiver(const ReceiverTimes& times, uint32_t silence_ms, uint32_t now_ms);

// From then to now; 0 for a time that lies ahead, by less than half the clock's circle.
[[nodiscard]] uint32_t Elapsed_ms(uint32_t since_ms, uint32_t now_ms);

}  // namespace tw
