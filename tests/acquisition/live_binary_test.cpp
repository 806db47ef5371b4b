// The acquisition worker of the binary modes on the virtual clock: what it shows and what it records.
#include <gtest/gtest.h>

#include "acquisition/frame_worker.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/host/virtual_clock.h"
#include "tests/acquisition/golden_frames.h"
#include "tests/acquisition/live_program.h"
#include "tests/acquisition/scripted_line.h"

namespace tw {
namespace {

using test::kGoldenDeviceBlock;
using test::kGoldenFrame;
using test::kGoldenWordBlock;
using test::LiveProgram;
using test::ScriptedLine;
using test::With;

constexpr size_t kPing = 22;
constexpr size_t kTxFrequency = 54;

class LiveBinary : public testing::Test {
 protected:
  LiveBinary() {
    state_.settings.outputMode = 100;
    program_.OpenFile(RecordChannel::a, L"a.log");
    program_.OpenFile(RecordChannel::b, L"b.log");
    Signal(state_.recordingEvent);
  }

  void Run_ms(uint32_t duration_ms) {
    program_.StartWorker(BinaryEchoWorker);
    SleepMilliseconds(duration_ms);
    program_.StopWorker();
  }

  // The ping numbers of the frames that a file holds, one behind the other.
  [[nodiscard]] std::vector<uint32_t> PingsOf(const wchar_t* name) const {
    const std::string content = program_.FileContent(name);
    std::vector<uint32_t> pings;
    for (size_t at = 6; at + 88 <= content.size();) {
      const auto* header = reinterpret_cast<const uint8_t*>(content.data() + at);
      EXPECT_EQ(content.substr(at, 4), "TR57");
      pings.push_back(LoadPingHeader(header).ping);
      at += 88 + 2 * LoadPingHeader(header).sampleCount;
      EXPECT_LE(at, content.size());
    }
    return pings;
  }

  const VirtualClock clock_{1'700'000'000'000};
  ScriptedLine device_;
  LiveProgram program_{device_};
  AppState& state_ = program_.State();
};

TEST_F(LiveBinary, ABlockBecomesAFrameInRingAndFile) {
  globals.gpsLatitude_rad = 0.75f;
  globals.gpsLongitude_rad = -0.125f;
  globals.fix.elevation_m = 37.25;
  globals.gpsTime_s = 1'699'999'999;
  globals.gpsPdop = 2.5f;
  globals.gpsQuality = 1;
  device_.At_ms(1'500, "noise" + kGoldenWordBlock);
  Run_ms(2'000);
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + kGoldenFrame);
  EXPECT_EQ(program_.FileContent(L"b.log"), "INFO\r\n");
  ASSERT_EQ(program_.IndexA(), 1);
  const auto* slot = reinterpret_cast<const char*>(state_.ringA->slots[1]);
  EXPECT_EQ(std::string(slot, 88), kGoldenFrame.substr(0, 88));
  EXPECT_EQ(std::string(slot + 88, 640), std::string(640, '\0')) << "the gap";
  EXPECT_EQ(std::string(slot + 728, 16), kGoldenFrame.substr(88));
}

TEST_F(LiveBinary, ChannelsGoToTheirRingsAndFiles) {
  globals.dualMode = 1;
  for (uint32_t i = 0; i < 6; ++i) {
    const uint32_t frequency_hz = i % 3 == 0 ? 200'000 : i % 3 == 1 ? 30'000 : 33'000;  // the last: virtual
    device_.At_ms(100 + 100 * i, With(With(kGoldenDeviceBlock, kTxFrequency, frequency_hz), kPing, i));
  }
  Run_ms(1'000);
  EXPECT_EQ(PingsOf(L"a.log"), (std::vector<uint32_t>{0, 3}));
  EXPECT_EQ(PingsOf(L"b.log"), (std::vector<uint32_t>{1, 2, 4, 5}));
  EXPECT_EQ(program_.HeaderA(program_.IndexA()).ping, 3u);
  EXPECT_EQ(program_.HeaderB(program_.IndexB()).ping, 5u);
}

TEST_F(LiveBinary, ASingleRunHasOneFileWhateverTheFrequency) {
  device_.At_ms(100, kGoldenDeviceBlock + With(kGoldenDeviceBlock, kTxFrequency, 30'000u));
  Run_ms(200);
  EXPECT_EQ(PingsOf(L"a.log").size(), 2u);
  EXPECT_TRUE(PingsOf(L"b.log").empty());
}

TEST_F(LiveBinary, ARunThatRecordedNothingLeavesOneByteInEachFile) {
  Reset(state_.recordingEvent);
  device_.At_ms(100, kGoldenDeviceBlock);
  Run_ms(200);
  EXPECT_EQ(program_.FileContent(L"a.log"), "\r");
  EXPECT_EQ(program_.FileContent(L"b.log"), "\r");
  EXPECT_FALSE(IsRecordFileOpen(state_, RecordChannel::a));
}

TEST_F(LiveBinary, StopIsHeardInEndlessMagics) {
  for (int64_t time_ms = 0; time_ms < 3'000; ++time_ms) device_.At_ms(time_ms, "TIDEWRITECTIDEWRIT");
  program_.StartWorker(BinaryEchoWorker);
  SleepMilliseconds(1'000);
  const int64_t begin_us = VirtualNow_us();
  program_.StopWorker();
  EXPECT_LE(VirtualNow_us() - begin_us, 102'000);
}

}  // namespace
}  // namespace tw
