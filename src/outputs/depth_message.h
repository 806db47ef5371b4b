// All that is sent of one ping. Pure; any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "app/state/ping_facts.h"
#include "outputs/depth_sentences.h"
#include "outputs/output_options.h"

namespace tw {

inline constexpr size_t kMaxSentences = 6;
inline constexpr size_t kMaxMessage = kMaxSentences * kMaxSentence;
inline constexpr uint32_t kStale_ms = 2'000;  // an older depth is none

struct DepthMessage {
  uint32_t clock_ms = 0;  // of the ping
  size_t count = 0;       // sentences
  std::array<uint32_t, kMaxSentences> ends{};
  std::array<char, kMaxMessage + 1> text{};  // and the zero of the last one

  [[nodiscard]] uint32_t Size() const { return count == 0 ? 0 : ends[count - 1]; }
  [[nodiscard]] std::string_view Sentence(size_t i) const {
    const size_t begin = i == 0 ? 0 : ends[i - 1];
    return {text.data() + begin, ends[i] - begin};
  }
  [[nodiscard]] bool IsStale(uint32_t now_ms) const { return now_ms - clock_ms > kStale_ms; }
};

// The sentences that are asked for, as far as the ping has them; none without a bottom. Without `freshFix` no
// position.
[[nodiscard]] DepthMessage BuildMessage(const PingFacts& ping, const OutputOptions& options, bool freshFix);

}  // namespace tw
