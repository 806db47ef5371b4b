// Puts a virtual instrument of the simulator behind a serial line.
#pragma once

#include <string>

#include "platform/virtual/serial_peer.h"
#include "simulator/instrument.h"

namespace tw::test {

class SimulatorPeer : public SerialPeer {
 public:
  explicit SimulatorPeer(sim::VirtualInstrument& instrument) : instrument_(instrument) {}

  bool Open(const char* mode) override {
    ++opened_;
    mode_ = mode;
    return true;
  }
  void Close() override { ++closed_; }
  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    instrument_.Receive(bytes, now_us);
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override { return instrument_.Send(out, now_us); }
  int64_t NextSend_us(int64_t now_us) override { return instrument_.NextSend_us(now_us); }
  size_t Waiting(int64_t now_us) override { return instrument_.Waiting(now_us); }
  bool HungUp(int64_t now_us) override { return instrument_.HungUp(now_us); }

  // How often the program has opened and closed the line, and the mode string of the last time.
  [[nodiscard]] int Opened() const { return opened_; }
  [[nodiscard]] int Closed() const { return closed_; }
  [[nodiscard]] const std::string& Mode() const { return mode_; }

 private:
  sim::VirtualInstrument& instrument_;
  int opened_ = 0;
  int closed_ = 0;
  std::string mode_;
};
static_assert(sim::kNever == kNever);

}  // namespace tw::test
