// Worker and GUI thread at once, on the real clock; the race detector watches.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "base/shared_value.h"
#include "display/ring_view.h"
#include "platform/clock.h"
#include "tests/acquisition/live_program.h"
#include "tests/acquisition/mark_text.h"

namespace tw {
namespace {

// Sends a ping each 2 ms, counted from the first time that anybody looks.
class SteadyDevice final : public SerialPeer {
 public:
  void Receive(std::span<const uint8_t>, int64_t) override {}
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = std::min(out.size(), Waiting(now_us));
    std::copy_n(pending_.begin(), count, out.begin());
    pending_.erase(0, count);
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override { return Waiting(now_us) != 0 ? now_us : next_us_; }
  size_t Waiting(int64_t now_us) override {
    if (next_us_ == 0) next_us_ = now_us;
    for (; next_us_ <= now_us; next_us_ += 2'000) {
      ++ping_;
      pending_ += test::EchoBlock(ping_, ping_ % 2 == 0 ? 200'000 : 30'000);
    }
    return pending_.size();
  }

 private:
  uint32_t ping_ = 0;
  int64_t next_us_ = 0;
  std::string pending_;
};

TEST(LiveRace, FilesChangeAndEverythingIsReadWhileTheWorkerRuns) {
  SteadyDevice device;
  test::LiveProgram program(device);
  AppState& state = program.State();
  globals.dualMode = 1;
  globals.timestampTicked = 1;
  Signal(state.recordingEvent);
  program.StartWorker();
  int files = 0;
  while (LoadShared(globals.pingCounter) < 150) {
    program.OpenFile(RecordChannel::a, (L"a" + std::to_wstring(files) + L".log").c_str());
    program.OpenFile(RecordChannel::b, (L"b" + std::to_wstring(files) + L".log").c_str());
    ++files;
    const uint32_t begin = LoadShared(globals.pingCounter);
    while (LoadShared(globals.pingCounter) < begin + 3) {
      char text[kMarkTextSize];
      static_cast<void>(CopyMark(globals.marksA, 0, text));
      const SlotSamples newest = FindSamples(SlotAt(*state.ringA, program.IndexA()));
      uint16_t amplitudes[8];
      CopyAmplitudes(newest, std::size(amplitudes), amplitudes);
      EXPECT_GE(ReadShownPing(SlotAt(*state.ringB, program.IndexB())).altitude_m, 0.0f);
      {
        Locked held(state.gpsLock);
        globals.gpsLatitude_rad += 0.001f;
        globals.fix.utc.second = files % 60;
      }
      static_cast<void>(test::TakePostedTexts());
      SleepMilliseconds(1);
    }
    if (files % 5 == 0) CloseBothRecordFiles(state);
  }
  program.StopWorker();
  // No file ends within a ping, whoever closed it.
  size_t pings = 0;
  for (int i = 0; i < files; ++i) {
    const std::string content = program.FileContent((L"a" + std::to_wstring(i) + L".log").c_str());
    ASSERT_TRUE(content.starts_with("INFO\r\n")) << i;
    if (content.size() == 6) continue;
    EXPECT_TRUE(content.ends_with("\r\n\r\n\r\n")) << i;
    EXPECT_EQ(content.substr(6, 10), "#DeviceID ") << i;
    for (size_t at = content.find("$GPRMC"); at != content.npos; at = content.find("$GPRMC", at + 1)) ++pings;
  }
  EXPECT_GT(pings, 30u);
}

}  // namespace
}  // namespace tw
