// A device that sends given texts at given times, and nothing else.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/host/serial_peer.h"

namespace tw::test {

class ScriptedLine final : public SerialPeer {
 public:
  // Texts are added in the order of their times.
  void At_ms(int64_t time_ms, std::string_view text) {
    script_.push_back({time_ms * 1'000, std::string(text)});
  }
  void HangUpAt_ms(int64_t time_ms) { hangUp_us_ = time_ms * 1'000; }

  void Receive(std::span<const uint8_t>, int64_t) override {}
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    size_t count = 0;
    for (; count < out.size() && Due(now_us); ++count) {
      out[count] = static_cast<uint8_t>(script_[entry_].text[taken_]);
      if (++taken_ == script_[entry_].text.size()) {
        ++entry_;
        taken_ = 0;
      }
    }
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    const int64_t next_us = entry_ < script_.size() ? script_[entry_].time_us : kNever;
    return std::max(now_us, std::min(next_us, hangUp_us_));
  }
  size_t Waiting(int64_t now_us) override {
    size_t waiting = 0;
    for (size_t i = entry_; i < script_.size() && script_[i].time_us <= now_us; ++i) {
      waiting += script_[i].text.size();
    }
    return waiting - taken_;
  }
  bool HungUp(int64_t now_us) override { return now_us >= hangUp_us_; }

 private:
  struct Entry {
    int64_t time_us;
    std::string text;
  };
  [[nodiscard]] bool Due(int64_t now_us) const {
    return entry_ < script_.size() && script_[entry_].time_us <= now_us;
  }

  std::vector<Entry> script_;
  size_t entry_ = 0;
  size_t taken_ = 0;  // bytes of that entry
  int64_t hangUp_us_ = kNever;
};

}  // namespace tw::test
