// Positions in text recordings: the sentences behind a ping, and the lines of a converted text. Pure; any
// thread.
#pragma once

#include <cstddef>
#include <string_view>

namespace tw {

inline constexpr size_t kSentenceReach = 520;  // two sentences and the blank lines around them

// GGA and RMC that stand right at the front of `text`, each up to its CR LF; ahead of them one CR LF that
// ends the ping's own line.
struct SentenceTail {
  size_t size;    // 0: neither
  size_t blanks;  // CR and LF behind them, or in their place
};
[[nodiscard]] SentenceTail FindSentences(std::string_view text);

struct TextPosition {
  bool valid;
  double latitude_rad;
  double longitude_rad;
  float altitude_m;
  float pdop;
};

// The "#gps…" lines of a converted block. False when it has no latitude and longitude.
[[nodiscard]] bool FindTextPosition(std::string_view block, TextPosition& position);

}  // namespace tw
