// A device that answers each line that ends in CR with the next reply of a script, and is silent after the
// last one.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <string>

#include "device/device_link.h"
#include "device/serial_ports.h"
#include "platform/serial_line.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/serial_peer.h"
#include "platform/virtual/virtual_clock.h"

namespace tw::test {

struct ScriptedReply {
  std::string text;
  int64_t delay_us = 0;
  int64_t spacing_us = 0;  // between its bytes; 0: all at once
};

class LineScript : public SerialPeer {
 public:
  std::deque<ScriptedReply> replies;
  std::string received;

  // Says something unasked. Texts are added in the order of their times.
  void Say(const ScriptedReply& reply, int64_t now_us) {
    int64_t at_us = now_us + reply.delay_us;
    for (const char byte : reply.text) {
      bytes_.push_back({at_us, byte});
      at_us += reply.spacing_us;
    }
  }
  void At_ms(int64_t time_ms, std::string_view text) { Say({std::string(text)}, time_ms * 1'000); }
  void HangUpAt_ms(int64_t time_ms) { hangUp_us_ = time_ms * 1'000; }

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    received.append(bytes.begin(), bytes.end());
    for (const uint8_t byte : bytes) {
      if (byte != '\r' || replies.empty()) continue;
      Say(replies.front(), now_us);
      replies.pop_front();
    }
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = std::min(out.size(), Waiting(now_us));
    for (size_t i = 0; i < count; ++i, bytes_.pop_front()) out[i] = static_cast<uint8_t>(bytes_.front().byte);
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    const int64_t next_us = bytes_.empty() ? kNever : bytes_.front().at_us;
    return std::max(now_us, std::min(next_us, hangUp_us_));
  }
  size_t Waiting(int64_t now_us) override {
    const auto come = [now_us](const TimedByte& each) { return each.at_us <= now_us; };
    return static_cast<size_t>(std::partition_point(bytes_.begin(), bytes_.end(), come) - bytes_.begin());
  }
  bool HungUp(int64_t now_us) override { return now_us >= hangUp_us_; }

 private:
  struct TimedByte {
    int64_t at_us;
    char byte;
  };
  std::deque<TimedByte> bytes_;
  int64_t hangUp_us_ = kNever;
};

inline constexpr wchar_t kScriptedLine[] = L"\\\\.\\COM5";

// Such a device behind an open line, under the virtual clock.
class ScriptedLineTest : public testing::Test {
 protected:
  ScriptedLineTest() {
    ClearFaults();
    AttachPeer(kScriptedLine, &device_);
    link_.port = OpenDevicePort(L"COM5", 115'200);
  }
  ~ScriptedLineTest() override {
    CloseSerialLine(link_.port);
    DetachSerialLines();
    ClearFaults();
  }

  VirtualClock clock_{1'700'000'000'000};
  LineScript device_;
  DeviceLink link_;
};

}  // namespace tw::test
