// All that an echosounder sent and its account of it.
#pragma once

#include <string>
#include <string_view>

#include "tests/sent_account.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {

// Streams from power-on on, over a line so fast that it never holds a ping back.
inline SounderOptions Fast(SounderOptions options) {
  options.baud = 12'000'000;
  options.delivery_us = 1'000;
  options.streaming = true;
  return options;
}

struct RecordedStream {
  RecordedStream(const SounderOptions& options, int64_t until_us) {
    VirtualEchosounder device(options, &account);
    bytes = FarEnd(device).ReadUntil(until_us);
  }

  [[nodiscard]] size_t size() const { return account.messages.size(); }
  [[nodiscard]] const SentPing& Ping(size_t i) const { return account.messages[i].sent; }
  [[nodiscard]] const std::vector<uint16_t>& Samples(size_t i) const { return account.messages[i].samples; }
  [[nodiscard]] std::string Text(size_t i) const { return bytes.substr(Ping(i).offset, Ping(i).size); }

  std::string bytes;
  test::SentAccount account;
};

inline size_t Count(std::string_view text, std::string_view piece) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find(piece, at)) != text.npos; at += piece.size()) ++count;
  return count;
}

}  // namespace tw::sim
