// What sentences are made of: fields that are checked before they are printed, and their end. Pure; any
// thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "outputs/depth_sentences.h"

namespace tw {

// One field as it is printed; empty where there is no value.
struct Field {
  char text[16] = "";

  [[nodiscard]] bool IsEmpty() const { return text[0] == '\0'; }
};

// The number with so many decimals (at most 4); empty when it is not finite or lies outside of the bounds,
// which are at most a million.
[[nodiscard]] Field NumberField(double value, int decimals, double low, double high);

// The integer with leading zeroes up to `width`; empty outside of the bounds.
[[nodiscard]] Field IntegerField(int32_t value, int width, int32_t low, int32_t high);

// Puts checksum and CR LF behind a sentence that `length` characters of the text hold so far. Returns the new
// length; 0 and an empty text when it gets longer than a sentence may be.
size_t EndSentence(SentenceText text, size_t length);

// No sentence.
inline size_t NoSentence(SentenceText text) {
  text[0] = '\0';
  return 0;
}

}  // namespace tw
