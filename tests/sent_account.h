// All that a virtual echosounder says it sent, message by message.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "simulator/sent_ping.h"

namespace tw::test {

struct SentMessage {
  sim::SentPing sent;
  std::vector<uint16_t> samples;
};

class SentAccount final : public sim::PingObserver {
 public:
  void PingMade(const sim::SentPing& ping, std::span<const uint16_t> samples) override {
    messages.push_back({ping, {samples.begin(), samples.end()}});
  }
  // Messages end in their order.
  void PingEnded(const sim::SentPing& ping) override { messages[ended_++].sent = ping; }
  // The device that sent so far sends no more.
  void PowerOff() { ended_ = messages.size(); }

  std::vector<SentMessage> messages;

 private:
  size_t ended_ = 0;
};

}  // namespace tw::test
