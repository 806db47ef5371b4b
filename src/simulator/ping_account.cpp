#include "simulator/ping_account.h"

namespace tw::sim {

uint64_t HashOf(std::span<const uint8_t> bytes) {
  uint64_t hash = 0xCBF29CE484222325u;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001B3u;
  return hash;
}

void PingAccount::Made(const SentPing& ping, std::span<const uint16_t> samples) {
  leaving_.push_back(ping);
  if (observer_ != nullptr) observer_->PingMade(ping, samples);
}

void PingAccount::Settle(uint64_t left, uint64_t end) {
  while (!leaving_.empty()) {
    SentPing& ping = leaving_.front();
    ping.whole = ping.offset + ping.size <= left;
    const bool cut = ping.offset + ping.size > end;
    if (!ping.whole && !cut) break;
    if (cut) ping.size = end > ping.offset ? end - ping.offset : 0;
    if (observer_ != nullptr) observer_->PingEnded(ping);
    ended_.Add(ping);
    leaving_.pop_front();
  }
}

}  // namespace tw::sim
