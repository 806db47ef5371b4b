// A line that is cut at a given byte or command, and from when on what its echosounder sent was owed to the
// record.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/lossy_peer.h"
#include "tests/end_to_end/mode_case.h"
#include "tests/sent_account.h"

namespace tw::test {

enum class Cut : uint8_t {
  cable,      // the device streams on unheard
  plug,       // the port is gone, and comes back under its name; the device streams on
  power,      // the device begins anew at its defaults, and does not stream
  plugPower,  // both
};
inline constexpr Cut kCuts[] = {Cut::cable, Cut::plug, Cut::power, Cut::plugPower};

class CutLine final : public LossyPeer {
 public:
  explicit CutLine(const ModeCase& each) : LossyPeer(Options(each), account) {}

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
    Discard(VirtualNow_us());  // unheard, whoever looks at the line when
    if (cut_ == Cut::power || cut_ == Cut::plugPower) PowerOn();
    link = Link::up;
    commands_ = cutCommand_ = 0;
    cutAt_ = UINT64_MAX;
  }
  void PowerOn() {
    account.PowerOff();
    first_ = account.messages.size();
    LossyPeer::PowerOn();
  }
  [[nodiscard]] uint64_t Sent() const { return sent_; }
  [[nodiscard]] bool IsCut() const { return link != Link::up; }
  [[nodiscard]] int Commands() const { return commands_; }

  bool Open(const char* mode) override {
    const bool isThere = LossyPeer::Open(mode);
    if (opening_ms != 0) SleepMilliseconds(opening_ms);
    return isThere;
  }
  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    for (const uint8_t byte : bytes) {
      line_.push_back(static_cast<char>(byte));
      if (byte != '\r' && line_ != " ") continue;
      const std::string line = std::exchange(line_, {});
      if (++commands_ == cutCommand_) CutNow();
      if (IsHeard() && line == "#go\r") turns.push_back({account.messages.size(), true});
      LossyPeer::Receive({reinterpret_cast<const uint8_t*>(line.data()), line.size()}, now_us);
    }
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const bool heard = IsHeard();
    const size_t count = LossyPeer::Send(out.first(std::min<uint64_t>(out.size(), cutAt_ - sent_)), now_us);
    sent_ += count;
    if (heard && sent_ == cutAt_) CutNow();
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    return IsHeard() ? LossyPeer::NextSend_us(now_us) : now_us + 50'000;
  }
  size_t Waiting(int64_t now_us) override {
    return std::min<uint64_t>(LossyPeer::Waiting(now_us), cutAt_ - sent_);
  }

  // When what follows was owed to the record, or not.
  struct Turn {
    size_t message;
    bool owed;
  };
  SentAccount account;  // of all devices that stood behind the line
  std::vector<Turn> turns;
  uint32_t opening_ms = 0;  // what a try to open the line takes

 private:
  static sim::SounderOptions Options(const ModeCase& each) {
    sim::SounderOptions options = QuickSounder();
    each.Configure(options);
    options.sampleCount = 100;
    options.depth_m = 1.5;
    options.pingsPerSecond = 5;
    return options;
  }
  // From the first message on that has not come whole.
  void CutNow() {
    link = cut_ == Cut::plug || cut_ == Cut::plugPower ? Link::hungUp : Link::silent;
    size_t message = account.messages.size();
    for (; message > first_; --message) {
      const sim::SentPing& last = account.messages[message - 1].sent;
      if (last.offset + last.size <= Taken()) break;
    }
    turns.push_back({message, false});
  }

  size_t first_ = 0;  // message of this device
  uint64_t sent_ = 0;
  uint64_t cutAt_ = UINT64_MAX;
  int commands_ = 0;
  int cutCommand_ = 0;
  Cut cut_ = Cut::cable;
  std::string line_;
};

}  // namespace tw::test
