// Devices for the tests of the host side's serial lines.
#pragma once

#include <algorithm>
#include <deque>
#include <string>

#include "platform/host/serial_peer.h"

namespace tw {

// Sends one byte each `interval_us`, "abc…z" over and over, from the time it was made; keeps what it gets.
class TickingPeer : public SerialPeer {
 public:
  explicit TickingPeer(int64_t interval_us) : interval_us_(interval_us) {}

  bool Open(const char* mode) override {
    openedWith = mode;
    return !refuses;
  }
  void Close() override { ++closed; }
  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    received.append(bytes.begin(), bytes.end());
    receivedAt_us = now_us;
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = std::min(out.size(), Waiting(now_us));
    for (size_t i = 0; i < count; ++i) out[i] = static_cast<uint8_t>('a' + sent_++ % 26);
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    (void)now_us;
    return (sent_ + 1) * interval_us_;
  }
  size_t Waiting(int64_t now_us) override {
    return static_cast<size_t>(std::max<int64_t>(0, now_us / interval_us_ - sent_));
  }
  bool HungUp(int64_t now_us) override { return now_us >= hangsUpAt_us; }

  bool refuses = false;
  int64_t hangsUpAt_us = kNever;
  int closed = 0;
  std::string openedWith;
  std::string received;
  int64_t receivedAt_us = -1;

 private:
  const int64_t interval_us_;
  int64_t sent_ = 0;
};

// Sends back what it gets, a while later.
class EchoPeer : public SerialPeer {
 public:
  explicit EchoPeer(int64_t delay_us) : delay_us_(delay_us) {}

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    for (const uint8_t byte : bytes) queue_.push_back({now_us + delay_us_, byte});
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    size_t count = 0;
    while (count < out.size() && !queue_.empty() && queue_.front().due_us <= now_us) {
      out[count++] = queue_.front().byte;
      queue_.pop_front();
    }
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    (void)now_us;
    return queue_.empty() ? kNever : queue_.front().due_us;
  }
  size_t Waiting(int64_t now_us) override {
    return static_cast<size_t>(
        std::count_if(queue_.begin(), queue_.end(), [&](const Due& due) { return due.due_us <= now_us; }));
  }

 private:
  struct Due {
    int64_t due_us;
    uint8_t byte;
  };
  const int64_t delay_us_;
  std::deque<Due> queue_;
};

}  // namespace tw
