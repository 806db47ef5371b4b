// A long voyage on the virtual clock: the program (all of it but the window) runs against the virtual
// echosounder at ten pings a second and the virtual GPS receiver, and records. Between legs something
// happens: the link hangs up or falls silent, the operator applies another output mode, or switches recording
// off for a while. A run that goes on by itself also sees its device without power and the machine asleep.
// Each ping must be in a record file, byte for byte and in its place, unless it was sent while the link was
// down, during an Apply, or with recording off; those are counted apart.
//
// The record files keep nothing: what is written is compared at once, and goes into a running hash.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/virtual/file_sink.h"
#include "tests/app/run_control_fixture.h"
#include "tests/sent_account.h"

namespace tw::test {

struct VoyagePlan {
  int32_t duration_s;
  int32_t shortestLeg_s;
  int32_t longestLeg_s;
  uint64_t seed = 1;
  bool goesOn = false;  // a lost link ends no run, files are of an hour, and more happens
};

// Why a ping need not be recorded.
enum class Excuse : uint8_t { none, linkDown, apply, recordingOff, stop };
inline constexpr size_t kExcuses = 5;

// What the process holds of the system.
struct Held {
  size_t bytes = 0;
  size_t threads = 0;
  size_t descriptors = 0;
  int lines = 0;  // open serial lines
};

struct VoyageFigures {
  uint64_t sent = 0;
  uint64_t recorded = 0;
  uint64_t lost[kExcuses] = {};  // not recorded, by excuse; none but with an excuse is allowed
  uint64_t unexpected = 0;       // records that are no ping that was sent, or one again
  uint64_t withPosition = 0;
  uint64_t hangUps = 0;
  uint64_t silences = 0;
  uint64_t applies = 0;
  uint64_t pauses = 0;  // of recording
  uint64_t sleeps = 0;  // of the machine
  uint64_t powerLosses = 0;
  uint64_t files = 0;
  uint64_t bytes = 0;
  uint64_t hash = 0;  // of all recorded bytes: the same for the same plan
  Held early;         // when rings and the simulator's logs have been filled
  Held atEnd;
};

// What the device says it sent against what is written.
class VoyageLog final : public sim::PingObserver, public FileSink {
 public:
  void PingMade(const sim::SentPing& ping, std::span<const uint16_t> samples) override;
  void PingEnded(const sim::SentPing& ping) override;
  // The device that sent so far sends no more.
  void PowerOff() { leaving_ = 0; }
  void Written(std::wstring_view path, uint64_t offset, std::span<const uint8_t> bytes) override;

  // From now on pings are excused; those that are on their way too.
  void Open(Excuse excuse);
  void Close() { excuse_ = Excuse::none; }
  // Whatever has not been recorded by now is lost.
  void Finish();

  VoyageFigures figures;
  std::string firstFailure;  // empty: there was none

 private:
  struct Ping : SentMessage {
    int64_t ended_us;  // kNever while it is leaving
    Excuse excuse;
  };

  void TakeRecord(std::string_view record);

  void Lose(const Ping& ping);
  void Fail(const std::string& what);

  std::deque<Ping> pending_;
  size_t leaving_ = 0;  // the last ones in `pending_`
  Excuse excuse_ = Excuse::linkDown;
};

class LossyPeer;

class Voyage : public RunControlTest {
 protected:
  Voyage();
  ~Voyage() override;

  // Fails, as a test does, when anything but the excused pings is lost or the program shows a box that it
  // should not. Once an object.
  [[nodiscard]] VoyageFigures Sail(const VoyagePlan& plan);

 private:
  void Begin();
  void Start();
  void Leg(int32_t seconds);
  void AwaitLink();
  void MendLink(bool lost);
  void HangUp();
  void FallSilent();
  void LosePower();
  void FallAsleep();
  void ApplyAnotherMode();
  void PauseRecording();

  void ForgetPosts();
  void Happen();
  [[nodiscard]] Held Measure() const;
  [[nodiscard]] int32_t Draw(int32_t least, int32_t most);

  VoyageLog log_;
  std::unique_ptr<LossyPeer> peer_;
  uint64_t draws_ = 0;
  bool goesOn_ = false;
};

}  // namespace tw::test
