#include "gps/receiver_watch.h"

namespace tw {

uint32_t Elapsed_ms(uint32_t since_ms, uint32_t now_ms) {
  const uint32_t elapsed_ms = now_ms - since_ms;
  return elapsed_ms <= INT32_MAX ? elapsed_ms : 0;
}

ReceiverState JudgeReceiver(const ReceiverTimes& times, uint32_t silence_ms, uint32_t now_ms) {
  if (Elapsed_ms(times.byte_ms, now_ms) >= silence_ms) return ReceiverState::silent;
  if (Elapsed_ms(times.sentence_ms, now_ms) >= kNoSentences_ms) return ReceiverState::noSentences;
  return ReceiverState::tells;
}

}  // namespace tw
