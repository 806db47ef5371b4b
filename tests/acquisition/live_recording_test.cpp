// What the acquisition worker leaves in record files, on the virtual clock.
#include <gtest/gtest.h>

#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/host/faults.h"
#include "platform/host/virtual_clock.h"
#include "tests/acquisition/live_program.h"
#include "tests/acquisition/scripted_line.h"

namespace tw {
namespace {

using test::EchoBlock;
using test::LiveProgram;
using test::ScriptedLine;
using test::TakePostedTexts;

constexpr int64_t kBegin_ms = 1'700'000'000'000;
constexpr RecordChannel kA = RecordChannel::a;
constexpr RecordChannel kB = RecordChannel::b;

// What stands behind each block while there is no fix at all: two sentences and an empty line.
const std::string kPosition =
    "$GPGGA,000000.00,00.0000,S,00.0000,W,0,00,0.0,0.000,M,0.000,M,0.0,0000*4c\r\n"
    "$GPRMC,000000.00,V,00.0000,S,00.0000,W,0.0,0.0,000100,0.0,W,A*0e\r\n"
    "\r\n\r\n";

class LiveRecording : public testing::Test {
 protected:
  void Run_ms(uint32_t duration_ms) {
    if (program_.State().acquisitionThread == Handle::null) program_.StartWorker();
    SleepMilliseconds(duration_ms);
  }

  const VirtualClock clock_{kBegin_ms};
  ScriptedLine device_;
  LiveProgram program_{device_};
  AppState& state_ = program_.State();
};

TEST_F(LiveRecording, APingIsItsBlockGgaRmcAndAnEmptyLine) {
  DeliverSingly(test::kDeviceLine);
  program_.OpenFile(kA, L"a.log");
  Signal(state_.recordingEvent);
  device_.At_ms(100, "noise" + EchoBlock(1) + "noise" + EchoBlock(2));
  Run_ms(200);
  program_.StopWorker();
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + EchoBlock(1) + kPosition + EchoBlock(2) + kPosition);
}

TEST_F(LiveRecording, IsSwitchedOffAndOnBetweenTwoPings) {
  program_.OpenFile(kA, L"a.log");
  for (uint32_t ping = 1; ping <= 4; ++ping) device_.At_ms(100 * ping, EchoBlock(ping));
  Signal(state_.recordingEvent);
  Run_ms(150);
  Reset(state_.recordingEvent);
  Run_ms(200);
  Signal(state_.recordingEvent);
  Run_ms(100);
  program_.StopWorker();
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + EchoBlock(1) + kPosition + EchoBlock(4) + kPosition);
  EXPECT_EQ(LoadShared(globals.pingCounter), 4u);
}

TEST_F(LiveRecording, ChannelsGoToTheirFiles) {
  globals.dualMode = 1;
  program_.OpenFile(kA, L"a.log");
  program_.OpenFile(kB, L"b.log");
  Signal(state_.recordingEvent);
  device_.At_ms(100, EchoBlock(1, 200'000) + EchoBlock(2, 30'000));
  Run_ms(200);
  program_.StopWorker();
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + EchoBlock(1, 200'000) + kPosition);
  EXPECT_EQ(program_.FileContent(L"b.log"), "INFO\r\n" + EchoBlock(2, 30'000) + kPosition);
}

TEST_F(LiveRecording, ARunThatRecordedNothingLeavesNoFiles) {
  program_.OpenFile(kA, L"a.log");
  program_.OpenFile(kB, L"b.log");
  device_.At_ms(100, EchoBlock(1));  // recording is off
  Run_ms(200);
  program_.StopWorker();
  EXPECT_EQ(program_.FileContent(L"a.log"), "absent");
  EXPECT_EQ(program_.FileContent(L"b.log"), "absent");
}

TEST_F(LiveRecording, ARunThatRecordedOneChannelKeepsBothFiles) {
  globals.dualMode = 1;
  program_.OpenFile(kA, L"a.log");
  program_.OpenFile(kB, L"b.log");
  Signal(state_.recordingEvent);
  device_.At_ms(100, EchoBlock(1, 200'000));
  Run_ms(200);
  program_.StopWorker();
  EXPECT_NE(program_.FileContent(L"a.log"), "absent");
  EXPECT_EQ(program_.FileContent(L"b.log"), "INFO\r\n");
}

TEST_F(LiveRecording, AFailedWriteEndsTheFileSilentlyAndTheRunGoesOn) {
  program_.OpenFile(kA, L"a.log");
  Signal(state_.recordingEvent);
  for (uint32_t ping = 1; ping <= 30; ++ping) device_.At_ms(100 * ping, EchoBlock(ping));
  InjectFault({.point = FaultPoint::writeFile, .call = 3, .taken = 20});
  Run_ms(3'100);
  EXPECT_FALSE(IsRecordFileOpen(state_, kA));
  EXPECT_EQ(LoadShared(globals.pingCounter), 30u);
  program_.StopWorker();
  const std::string content = program_.FileContent(L"a.log");
  EXPECT_EQ(content, "INFO\r\n" + EchoBlock(1) + kPosition + EchoBlock(2) + kPosition);
  // The size report simply stops growing.
  const std::wstring size = L"File size: " + std::to_wstring(content.size() - 6) + L"Bytes";
  const auto posts = TakePostedTexts();
  ASSERT_EQ(posts.size(), 3u);
  EXPECT_EQ(posts[1].text, size);
  EXPECT_EQ(posts[2].text, size);
}

}  // namespace
}  // namespace tw
