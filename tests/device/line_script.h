// A device that answers each line that ends in CR with the next reply of a script, after a delay.
#pragma once

#include <algorithm>
#include <deque>
#include <string>

#include "platform/host/serial_peer.h"

namespace tw::test {

struct ScriptedReply {
  std::string text;
  int64_t delay_us = 0;
};

class LineScript : public SerialPeer {
 public:
  std::deque<ScriptedReply> replies;
  std::string received;
  int64_t pace_us = 0;  // between two bytes of a reply

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    received.append(bytes.begin(), bytes.end());
    for (const uint8_t byte : bytes) {
      if (byte != '\r' || replies.empty()) continue;
      waiting_.push_back({now_us + replies.front().delay_us, replies.front().text});
      replies.pop_front();
    }
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = std::min(Waiting(now_us), out.size());
    if (count == 0) return 0;
    Pending& first = waiting_.front();
    first.text.copy(reinterpret_cast<char*>(out.data()), count, first.sent);
    first.sent += count;
    if (first.sent == first.text.size()) waiting_.pop_front();
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    if (waiting_.empty()) return kNever;
    const Pending& first = waiting_.front();
    return std::max(now_us, first.from_us + static_cast<int64_t>(first.sent) * pace_us);
  }
  size_t Waiting(int64_t now_us) override {
    if (waiting_.empty() || waiting_.front().from_us > now_us) return 0;
    const Pending& first = waiting_.front();
    const size_t left = first.text.size() - first.sent;
    if (pace_us == 0) return left;
    const auto due = static_cast<size_t>((now_us - first.from_us) / pace_us) + 1;
    return std::min(left, due > first.sent ? due - first.sent : 0);
  }

 private:
  struct Pending {
    int64_t from_us;
    std::string text;
    size_t sent = 0;
  };
  std::deque<Pending> waiting_;
};

}  // namespace tw::test
