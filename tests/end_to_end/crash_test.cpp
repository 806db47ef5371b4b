// A run that records is stopped by a crash of the program, of the system, or of the power, at each call that
// changes a file. What is found then is read by the program's own reader. With TW_FULL set it is each call in
// every output mode, else in three of them, and a few calls in the others.
#include <algorithm>
#include <functional>
#include <optional>

#include "app/run/record_opening.h"
#include "platform/virtual/faults.h"
#include "tests/app/run/playback_fixture.h"
#include "tests/end_to_end/crashed_disk.h"
#include "tests/end_to_end/mode_case.h"

namespace tw::test {
namespace {

// From when a ping is due at the disk until it is there, which costs some looks at the clock.
constexpr int64_t kPatience_us = 10'000;

constexpr Loss kLosses[] = {Loss::none, Loss::whole, Loss::torn, Loss::pages};

struct HeldPing {
  uint32_t number;
  float altitude_m;
  int32_t channel;
  int64_t time_ms;
  size_t samples;  // a hash of them
  uint64_t begin;
  bool operator==(const HeldPing&) const = default;
};
using Held = std::vector<HeldPing>;

class Crash : public Playback, public testing::WithParamInterface<ModeCase> {
 protected:
  // Start, split, Apply, a disk that refuses, "Record Data" twice, Stop: each with seconds of pings between.
  void RunWhole() {
    sim::SounderOptions options = QuickSounder();
    GetParam().Configure(options);
    ConnectGps();
    StartDiskCalls();
    StartQuickRun(5, options);
    EXPECT_TRUE(SplitRecordFiles(*state_));
    Run(5);
    ApplySettings(*state_);
    Run(3);
    InjectFault({.point = FaultPoint::writeFile, .taken = 7});
    Run(1);
    for (const bool on : {false, true}) SetRecording(on);
    Run(3);
    StopRun(*state_);
    EXPECT_EQ(CallCount(FaultPoint::renameFile), 0u) << "is not followed here";
    calls_ = TakeDiskCalls();
    for (const std::string& name : RecordFiles()) {
      whole_[name] = Read(Content(name)).value();
      for (size_t i = 0; i < calls_.size(); ++i) {
        const bool writes = calls_[i].step == DiskStep::written && calls_[i].path.ends_with(Wide(name));
        if (writes) writes_[name].push_back(i);
      }
      // Beside pings two settings lines, and the part of a ping that was cut off again.
      EXPECT_GE(whole_[name].size() + 3, writes_[name].size()) << name;
    }
  }

  static std::wstring Wide(const std::string& name) { return {name.begin(), name.end()}; }

  // Nothing, if the reader finds no ping. Refused it may not be.
  std::optional<Held> Read(const std::string& content) {
    const auto known = read_.find(std::hash<std::string>{}(content));
    if (known != read_.end()) return known->second;
    const auto path = folder_ / "found.log";
    WriteWhole(path, content);
    RecordingFault fault{};
    const auto recording = OpenRecording(path.wstring().c_str(), fault);
    std::optional<Held> held;
    if (recording == nullptr) {
      EXPECT_TRUE(fault == RecordingFault::unknown || fault == RecordingFault::noPing)
          << static_cast<int>(fault);
    } else {
      held = Held{};
      for (RecordedPing ping{}; recording->Next(ping);) {
        const std::string_view samples(reinterpret_cast<const char*>(ping.samples.data()),
                                       ping.samples.size_bytes());
        held->push_back({ping.header.ping, ping.header.altitude_m, ping.channel, ping.time_ms,
                         std::hash<std::string_view>{}(samples), ping.begin});
      }
      EXPECT_FALSE(recording->Failed());
    }
    return read_[std::hash<std::string>{}(content)] = held;
  }

  // Where the last ping ends that was written before this call, and by then.
  [[nodiscard]] uint64_t WrittenUntil(const std::string& name, size_t call, int64_t time_us) const {
    uint64_t end = 0;
    for (const size_t write : writes_.at(name)) {
      if (write >= call || calls_[write].time_us > time_us) break;
      end = calls_[write].place + calls_[write].bytes.size();
    }
    return end;
  }

  void ExpectHeld(const CrashedDisk::Files& found, size_t call, int64_t since_us) {
    for (const auto& [name, whole] : whole_) {
      const auto before = [&, &pings = whole](uint64_t end) {
        return std::count_if(pings.begin(), pings.end(), [&](const HeldPing& p) { return p.begin < end; });
      };
      const auto owed = before(WrittenUntil(name, call, calls_[call].time_us - since_us));
      const auto written = before(WrittenUntil(name, call, calls_[call].time_us));
      const auto file = found.find(name);
      const Held held = file == found.end() ? Held{} : Read(file->second).value_or(Held{});
      const auto count = static_cast<ptrdiff_t>(held.size());
      ASSERT_GE(count, owed) << name << ": pings are lost";
      ASSERT_TRUE(std::equal(whole.begin(), whole.begin() + owed, held.begin())) << name << ": another ping";
      mostLost_ = std::max(mostLost_, written - count);
    }
  }

  void CrashAtEachCall(size_t stride) {
    const int64_t period_us = int64_t{state_->options.flushPeriod_s} * 1'000'000 + kPatience_us;
    CrashedDisk disk;
    std::mt19937 random(13);
    for (size_t i = 0; i < calls_.size() && !HasFatalFailure(); ++i) {
      if (i % stride == 0) CrashAt(i, disk, period_us, random);
      disk.Take(calls_[i]);
    }
  }
  void CrashAt(size_t call, const CrashedDisk& disk, int64_t period_us, std::mt19937& random) {
    for (const Loss loss : kLosses) {
      SCOPED_TRACE(testing::Message() << "call " << call << " at " << calls_[call].time_us << " us, loss "
                                      << static_cast<int>(loss));
      const CrashedDisk::Files found = disk.Crash(loss, calls_[call], random);
      ASSERT_NO_FATAL_FAILURE(ExpectHeld(found, call, loss == Loss::none ? 0 : period_us));
    }
  }

  std::vector<DiskCall> calls_;
  std::map<std::string, std::vector<size_t>> writes_;  // which of the calls, of each file
  std::map<std::string, Held> whole_;                  // by name
  std::map<size_t, std::optional<Held>> read_;         // by a hash of the content
  ptrdiff_t mostLost_ = 0;                             // pings of a file that was written when the power went
};

TEST_P(Crash, AtEachCallLeavesThePingsThatAreOwed) {
  const ModeCase& each = GetParam();
  const int32_t code = each.row->code;
  const bool chosen =
      each.IsFirstFamily() && each.IsPlain() && (each.dual ? code == 6 || code == 100 : code == 2);
  ASSERT_NO_FATAL_FAILURE(RunWhole());
  ASSERT_GT(calls_.size(), 100u);
  CrashAtEachCall(chosen || std::getenv("TW_FULL") != nullptr ? 1 : 97);
  EXPECT_GT(mostLost_, 5) << "a disk that loses nothing shows nothing";
}

INSTANTIATE_TEST_SUITE_P(Modes, Crash, testing::ValuesIn(AllModeCases()),
                         [](const auto& each) { return each.param.Name(); });

}  // namespace
}  // namespace tw::test
