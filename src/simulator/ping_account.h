// The account that a virtual echosounder keeps of its pings, from the moment at which a message is queued to
// the one at which its last byte has left. Not thread-safe.
#pragma once

#include <cstdint>
#include <deque>
#include <span>

#include "simulator/bounded_log.h"
#include "simulator/sent_ping.h"

namespace tw::sim {

class PingAccount {
 public:
  // `observer` may be null; it outlives the account.
  PingAccount(PingObserver* observer, size_t logSize) : observer_(observer), ended_(logSize) {}

  // Enters a message that is about to be queued.
  void Made(const SentPing& ping, std::span<const uint16_t> samples);

  // Moves the pings that have left, or that have been cut, into the log. Positions in the stream: behind
  // the last byte that has left, and behind the last one that is queued.
  void Settle(uint64_t left, uint64_t end);

  // Oldest first.
  [[nodiscard]] const BoundedLog<SentPing>& Ended() const { return ended_; }

 private:
  PingObserver* observer_;
  std::deque<SentPing> leaving_;
  BoundedLog<SentPing> ended_;
};

}  // namespace tw::sim
