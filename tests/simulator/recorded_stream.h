// All that an echosounder sent and its account of it.
#pragma once

#include <string>

#include "simulator/virtual_echosounder.h"
#include "tests/sent_account.h"

namespace tw::sim {

// All that comes until then, read as soon as it comes.
inline std::string ReadUntil(VirtualInstrument& instrument, int64_t until_us) {
  std::string text;
  uint8_t bytes[4'096];
  for (int64_t now_us = 0; (now_us = instrument.NextSend_us(now_us)) <= until_us;) {
    while (const size_t count = instrument.Send(bytes, now_us)) {
      text.append(reinterpret_cast<const char*>(bytes), count);
    }
  }
  return text;
}

struct RecordedStream {
  // Streams from power-on on, over a line so fast that it never holds a ping back.
  RecordedStream(SounderOptions options, int64_t until_us) {
    options.baud = 12'000'000;
    options.delivery_us = 1'000;
    options.streaming = true;
    VirtualEchosounder device(options, &account);
    bytes = ReadUntil(device, until_us);
  }

  [[nodiscard]] size_t size() const { return account.messages.size(); }
  [[nodiscard]] const SentPing& Ping(size_t i) const { return account.messages[i].sent; }
  [[nodiscard]] std::string Text(size_t i) const { return bytes.substr(Ping(i).offset, Ping(i).size); }

  std::string bytes;
  test::SentAccount account;
};

}  // namespace tw::sim
