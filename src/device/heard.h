// What the bytes on a line look like while no device can be made out: nothing at all, noise, text, a GPS
// receiver. Pure; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "device/rolling_window.h"

namespace tw {

enum class Heard : uint8_t {
  nothing,
  echo,      // no more than what the program sends itself: blanks and line ends
  noise,     // mostly no text: another speed, or binary data
  text,      // of an instrument that gives no prompt
  prompt,    // "\r\n>"
  receiver,  // a sentence of a GPS receiver with its checksum right
};

class HeardBytes {
 public:
  void Take(uint8_t byte);
  [[nodiscard]] Heard Verdict() const;

 private:
  static constexpr size_t kLongestSentence = 82;

  void TakeOfSentence(char c);

  uint32_t total_ = 0;  // a dialogue is over long before these overflow
  uint32_t visible_ = 0;
  uint32_t blank_ = 0;
  bool prompted_ = false;
  bool receiver_ = false;
  RollingWindow<3> prompt_;
  char sentence_[kLongestSentence];
  size_t length_ = 0;  // of the sentence that has begun; 0: none has
};

}  // namespace tw
