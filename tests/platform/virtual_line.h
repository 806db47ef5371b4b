// A device and a line to it on the virtual clock, for the tests of the serial lines of the virtual side.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/serial_line.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/serial_peer.h"
#include "platform/virtual/virtual_clock.h"

namespace tw {

// Sends one byte each `interval_us`, "abc…z" over and over, from time 0 on; keeps what it gets.
struct TickingPeer : SerialPeer {
  bool Open(const char* mode) override {
    openedWith = mode;
    return !refuses;
  }
  void Close() override { ++closed; }
  void Receive(std::span<const uint8_t> bytes, int64_t) override {
    received.append(bytes.begin(), bytes.end());
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = std::min(out.size(), Waiting(now_us));
    for (size_t i = 0; i < count; ++i) out[i] = static_cast<uint8_t>('a' + sent++ % 26);
    return count;
  }
  int64_t NextSend_us(int64_t) override { return (sent + 1) * interval_us; }
  size_t Waiting(int64_t now_us) override {
    return static_cast<size_t>(std::max<int64_t>(0, now_us / interval_us - sent));
  }
  bool HungUp(int64_t now_us) override { return now_us >= hangsUpAt_us; }

  int64_t interval_us = 1'000;
  int64_t hangsUpAt_us = kNever;
  bool refuses = false;
  int closed = 0;
  std::string openedWith;
  std::string received;

 private:
  int64_t sent = 0;
};

class VirtualLine : public testing::Test {
 protected:
  static constexpr wchar_t kName[] = L"\\\\.\\COM7";
  static constexpr char kMode[] = "baud=115200 parity=N data=8 stop=1";
  static constexpr uint32_t kConstant_ms = 100;

  VirtualLine() { AttachPeer(kName, &device_); }
  ~VirtualLine() override {
    CloseSerialLine(line_);
    DetachSerialLines();
    ClearFaults();
  }

  static Handle OpenLine(const wchar_t* name = kName) { return OpenSerialLine(name, kMode, kConstant_ms); }

  // What one read gives; "failed" when the line has.
  static std::string ReadOf(Handle line, uint32_t size) {
    char bytes[256];
    uint32_t got = 7;
    const bool good = ReadSerialLine(line, bytes, size, got);
    EXPECT_TRUE(good || got == 0);
    return good ? std::string(bytes, got) : "failed";
  }
  [[nodiscard]] std::string Read(uint32_t size) const { return ReadOf(line_, size); }

  const VirtualClock clock_{0};
  TickingPeer device_;
  Handle line_ = Handle::invalid;
};

}  // namespace tw
