// An echosounder at the end of a line that is cut at a given byte or command, and the account of what it sent
// and of what of that is owed to the record.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "platform/virtual/serial_peer.h"
#include "simulator/virtual_echosounder.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/mode_case.h"

namespace tw::test {

enum class Cut : uint8_t {
  cable,      // the device streams on unheard
  plug,       // the port is gone, and comes back under its name; the device streams on
  power,      // the device begins anew at its defaults, and does not stream
  plugPower,  // both
};
inline constexpr Cut kCuts[] = {Cut::cable, Cut::plug, Cut::power, Cut::plugPower};

// What a message is known by: its bytes, or what the frame of a ping tells of it.
struct Mark {
  uint64_t size;
  uint64_t hash;
  bool operator==(const Mark&) const = default;
};

inline uint64_t Fold(uint64_t hash, uint64_t value) {
  return (hash ^ value) * 0x100000001B3;
}

inline Mark MarkOfPing(uint32_t number, uint32_t seconds, int32_t frequency_hz, float altitude_m,
                       std::span<const uint16_t> samples) {
  uint64_t hash = Fold(Fold(Fold(7, number), seconds), static_cast<uint64_t>(frequency_hz));
  hash = Fold(hash, std::bit_cast<uint32_t>(altitude_m));
  for (const uint16_t sample : samples) hash = Fold(hash, sample);
  return {samples.size(), hash};
}

struct Message {
  sim::SentPing sent;
  Mark mark;  // in binary
};

// All messages of all devices that stood behind the line, and when what follows was owed to the record, or
// not.
class Account final : public sim::PingObserver {
 public:
  void PingMade(const sim::SentPing& ping, std::span<const uint16_t> samples) override {
    messages.push_back(
        {ping, MarkOfPing(ping.number, ping.deviceTime_s, ping.txFrequency_hz, ping.altitude_m, samples)});
  }
  void PingEnded(const sim::SentPing& ping) override { messages[ended_++].sent = ping; }
  void PowerOff() { ended_ = messages.size(); }
  void Turn(bool owed) { turns.push_back({messages.size(), owed}); }

  struct TurnAt {
    size_t message;
    bool owed;
  };
  std::vector<Message> messages;
  std::vector<TurnAt> turns;

 private:
  size_t ended_ = 0;
};

// A line that is cut behind a given byte that the device sends, or at a command that it is sent. At another
// speed than the device's nothing is heard.
class CutLine final : public SerialPeer {
 public:
  explicit CutLine(const ModeCase& each) : each_(each) {
    options = QuickSounder();
    each_.Configure(options);
    options.sampleCount = 100;
    options.depth_m = 1.5;
    options.pingsPerSecond = 5;
    PowerOn();
  }

  void CutBehind(uint64_t bytes, Cut cut) {
    cutAt_ = sent_ + bytes;
    cut_ = cut;
  }
  void CutAtCommand(int command, Cut cut) {
    commands_ = 0;
    cutCommand_ = command;
    cut_ = cut;
  }
  void Mend() {
    Discard(
        VirtualNow_us());  // what has left the device until now was unheard, whoever looks at the line when
    if (cut_ == Cut::power || cut_ == Cut::plugPower) PowerOn();
    isCut_ = false;
    commands_ = 0;
    cutAt_ = UINT64_MAX;
    cutCommand_ = 0;
  }
  void PowerOn() {
    account.PowerOff();
    first_ = account.messages.size();
    taken_ = 0;
    device_ = std::make_unique<sim::VirtualEchosounder>(options, &account);
  }
  [[nodiscard]] uint64_t Sent() const { return sent_; }
  [[nodiscard]] bool IsCut() const { return isCut_; }
  [[nodiscard]] int Commands() const { return commands_; }
  [[nodiscard]] const sim::VirtualEchosounder& Device() const { return *device_; }

  bool Open(const char* mode) override {
    speed_bps_ = std::atoi(mode + std::string_view("baud=").size());
    const bool isThere = !IsGone();
    if (opening_ms != 0) SleepMilliseconds(opening_ms);
    Discard(VirtualNow_us());
    return isThere;
  }
  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    for (const uint8_t byte : bytes) {
      line_.push_back(static_cast<char>(byte));
      if (byte != '\r' && line_ != " ") continue;
      const std::string line = std::exchange(line_, {});
      if (++commands_ == cutCommand_) CutNow();
      if (!IsHeard()) continue;
      if (line == "#go\r") account.Turn(true);
      device_->Receive({reinterpret_cast<const uint8_t*>(line.data()), line.size()}, now_us);
    }
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    if (!IsHeard()) return Discard(now_us);
    const size_t count = device_->Send(out.first(std::min<uint64_t>(out.size(), cutAt_ - sent_)), now_us);
    sent_ += count;
    taken_ += count;
    if (sent_ == cutAt_) CutNow();
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    return IsHeard() ? device_->NextSend_us(now_us) : now_us + 50'000;
  }
  size_t Waiting(int64_t now_us) override {
    return IsHeard() ? std::min<uint64_t>(device_->Waiting(now_us), cutAt_ - sent_) : 0;
  }
  bool HungUp(int64_t) override { return IsGone(); }

  sim::SounderOptions options;  // of the device that is switched on next
  Account account;
  uint32_t opening_ms = 0;  // what a try to open the line takes

 private:
  [[nodiscard]] bool IsHeard() const { return !isCut_ && speed_bps_ == device_->LineSpeed(); }
  [[nodiscard]] bool IsGone() const { return isCut_ && (cut_ == Cut::plug || cut_ == Cut::plugPower); }
  // From the first message on that has not come whole.
  void CutNow() {
    isCut_ = true;
    size_t message = account.messages.size();
    for (; message > first_; --message) {
      const sim::SentPing& last = account.messages[message - 1].sent;
      if (last.offset + last.size <= taken_) break;
    }
    account.turns.push_back({message, false});
  }
  size_t Discard(int64_t now_us) {
    uint8_t scrap[4'096];
    while (const size_t count = device_->Send(scrap, now_us)) taken_ += count;
    return 0;
  }

  const ModeCase& each_;
  std::unique_ptr<sim::VirtualEchosounder> device_;
  size_t first_ = 0;    // message of this device
  uint64_t taken_ = 0;  // bytes of this device
  uint64_t sent_ = 0;
  uint64_t cutAt_ = UINT64_MAX;
  int commands_ = 0;
  int cutCommand_ = 0;
  bool isCut_ = false;
  Cut cut_ = Cut::cable;
  int32_t speed_bps_ = 0;
  std::string line_;
};

}  // namespace tw::test
