// An echosounder at the end of a line that can be cut and be mended again, and whose power can be lost. At
// another speed than the device's nothing is heard.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>

#include "platform/virtual/serial_peer.h"
#include "platform/virtual/virtual_clock.h"
#include "simulator/virtual_echosounder.h"

namespace tw::test {

class LossyPeer : public SerialPeer {
 public:
  LossyPeer(const sim::SounderOptions& ofDevice, sim::PingObserver& log) : options(ofDevice), log_(log) {
    PowerOn();
  }
  enum class Link : uint8_t { up, silent, hungUp };
  Link link = Link::up;
  sim::SounderOptions options;  // of the device that is switched on next

  // A device as it comes: at its defaults, and at its prompt.
  void PowerOn() {
    taken_ = 0;
    device_ = std::make_unique<sim::VirtualEchosounder>(options, &log_);
  }
  // What it has sent by now is lost.
  void Discard(int64_t now_us) {
    uint8_t scrap[4'096];
    while (const size_t count = device_->Send(scrap, now_us)) taken_ += count;
  }
  [[nodiscard]] int IsOpen() const { return open_; }
  [[nodiscard]] const sim::VirtualEchosounder& Device() const { return *device_; }

  bool Open(const char* mode) override {
    Discard(VirtualNow_us());
    if (link == Link::hungUp) return false;
    speed_bps_ = std::atoi(mode + std::string_view("baud=").size());
    ++open_;
    return true;
  }
  void Close() override { --open_; }
  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    if (IsHeard()) device_->Receive(bytes, now_us);
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    if (IsHeard()) {
      const size_t count = device_->Send(out, now_us);
      taken_ += count;
      return count;
    }
    Discard(now_us);
    return 0;
  }
  int64_t NextSend_us(int64_t now_us) override { return device_->NextSend_us(now_us); }
  size_t Waiting(int64_t now_us) override { return IsHeard() ? device_->Waiting(now_us) : 0; }
  bool HungUp(int64_t) override { return link == Link::hungUp; }

 protected:
  [[nodiscard]] bool IsHeard() const { return link == Link::up && speed_bps_ == device_->LineSpeed(); }
  [[nodiscard]] uint64_t Taken() const { return taken_; }

 private:
  sim::PingObserver& log_;
  std::unique_ptr<sim::VirtualEchosounder> device_;
  uint64_t taken_ = 0;  // bytes of this device, heard or not
  int32_t speed_bps_ = 0;
  int open_ = 0;
};

}  // namespace tw::test
