// What the acquisition worker leaves in record files.
#include <gtest/gtest.h>

#include "acquisition/device_block.h"
#include "base/shared_value.h"
#include "platform/virtual/faults.h"
#include "tests/acquisition/golden_frames.h"
#include "tests/acquisition/live_fixture.h"

namespace tw {
namespace {

using test::EchoBlock;
using test::kA;
using test::kGoldenFrame;
using test::kGoldenWordBlock;

// A block as it is recorded while there is no fix at all: two sentences and an empty line behind it.
std::string Recorded(uint32_t ping) {
  return EchoBlock(ping) + test::kNoPosition + "\r\n\r\n";
}

class LiveRecording : public test::LiveTest {};

TEST_F(LiveRecording, IsSwitchedOffAndOnBetweenTwoPings) {
  Record();
  Take("noise" + EchoBlock(1));
  Reset(state_.recordingEvent);
  Take(EchoBlock(2) + EchoBlock(3));
  Signal(state_.recordingEvent);
  RunWith(EchoBlock(4));
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + Recorded(1) + Recorded(4));
  EXPECT_EQ(program_.FileContent(L"b.log"), "INFO\r\n") << "one ping in one file keeps both";
  EXPECT_EQ(LoadShared(globals.pingCounter), 4u);
}

TEST_F(LiveRecording, SentencesAreTheReceiversTalkers) {
  globals.gpsTalkerGn = 1;
  Record();
  RunWith(EchoBlock(1));
  EXPECT_EQ(program_.FileContent(L"a.log"),
            "INFO\r\n" + EchoBlock(1) +
                "$GNGGA,000000.00,0.000000,S,0.000000,W,0,00,0.0,0.000,M,0.000,M,0.0,0000*52\r\n"
                "$GNRMC,000000.00,V,0.000000,S,0.000000,W,0.0,0.0,000100,0.0,W,A*10\r\n\r\n\r\n");
}

TEST_F(LiveRecording, ARunWhoseOnlyPingTheDiskRefusedHasRecordedNothing) {
  Record();
  RunWith(EchoBlock(1));
  EXPECT_EQ(program_.FileContent(L"b.log"), "INFO\r\n") << "an earlier run's";
  Record();
  InjectFault({.point = FaultPoint::writeFile, .taken = 20});
  RunWith(EchoBlock(2));
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n");
  EXPECT_EQ(program_.FileContent(L"b.log"), "absent");
}

TEST_F(LiveRecording, ABinaryRecordingThatTheDiskEndsKeepsItsFrames) {
  Record();
  InjectFault({.point = FaultPoint::writeFile, .call = 2, .taken = 20});
  RunWith(kGoldenWordBlock + kGoldenWordBlock, kBlockStream);
  EXPECT_EQ(program_.FileContent(L"a.log").size(), 6 + kGoldenFrame.size());
}

TEST_F(LiveRecording, WhatARunLeavesThatRecordedNothing) {
  enum class Disk : uint8_t { isSwitchedOff, refusesOneWrite, isFull };
  const struct {
    const char* what;
    const StreamForm& form;
    std::string stream;
    Disk disk;
    const char* left;
  } rows[] = {{"text", kFirstTextStream, EchoBlock(1), Disk::isSwitchedOff, "absent"},
              {"binary", kBlockStream, kGoldenWordBlock, Disk::isSwitchedOff, "\r"},
              {"the first frame is refused", kBlockStream, kGoldenWordBlock, Disk::refusesOneWrite, "\r"},
              {"so is the byte", kBlockStream, kGoldenWordBlock, Disk::isFull, "absent"},
              {"no frame came", kBlockStream, "noise", Disk::isFull, "absent"}};
  for (const auto& row : rows) {
    Record();
    if (row.disk == Disk::isSwitchedOff) Reset(state_.recordingEvent);
    if (row.disk == Disk::isFull) LimitDiskSpace(0);
    if (row.disk == Disk::refusesOneWrite) InjectFault({.point = FaultPoint::writeFile, .taken = 20});
    RunWith(row.stream, row.form);
    EXPECT_EQ(program_.FileContent(L"a.log"), row.left) << row.what;
    EXPECT_EQ(program_.FileContent(L"b.log"), row.left) << row.what;
    EXPECT_FALSE(IsRecordFileOpen(state_, kA)) << row.what;
    ClearFaults();
  }
}

TEST_F(LiveRecording, AnEmptySecondRecordingOfABinaryRunIsOneByte) {
  program_.OpenFile(kA, L"a.log");
  Signal(state_.recordingEvent);
  Take(kGoldenWordBlock, kBlockStream);
  program_.OpenFile(kA, L"second.log");
  StoreShared(state_.recordingNumber, state_.recordingNumber + 1);
  program_.StopWorker();
  EXPECT_EQ(program_.FileContent(L"a.log").size(), 6 + kGoldenFrame.size());
  EXPECT_EQ(program_.FileContent(L"second.log"), "\r");
}

TEST_F(LiveRecording, ABlockBecomesAFrameInRingAndFile) {
  globals.gpsLatitude_rad = 0.75f;
  globals.gpsLongitude_rad = -0.125f;
  globals.fix.elevation_m = 37.25;
  globals.gpsTime_s = 1'699'999'999;
  globals.gpsPdop = 2.5f;
  globals.gpsQuality = 1;
  globals.fix.presence = kHasGga;
  Record();
  device_.At_ms(1'500, "noise" + kGoldenWordBlock);
  Run_ms(2'000, kBlockStream);
  program_.StopWorker();
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + kGoldenFrame);
  ASSERT_EQ(program_.IndexA(), 1);
  const auto* slot = reinterpret_cast<const char*>(state_.ringA->slots[1]);
  EXPECT_EQ(std::string(slot, 88), kGoldenFrame.substr(0, 88));
  EXPECT_EQ(std::string(slot + 88, 640), std::string(640, '\0')) << "the gap";
  EXPECT_EQ(std::string(slot + 728, 16), kGoldenFrame.substr(88));
}

TEST_F(LiveRecording, AFailedWriteEndsTheFileSilentlyAndTheRunGoesOn) {
  Record();
  for (uint32_t ping = 1; ping <= 30; ++ping) device_.At_ms(100 * ping, EchoBlock(ping));
  InjectFault({.point = FaultPoint::writeFile, .call = 3, .taken = 20});
  Run_ms(3'100);
  EXPECT_FALSE(IsRecordFileOpen(state_, kA));
  EXPECT_EQ(LoadShared(globals.pingCounter), 30u);
  program_.StopWorker();
  const std::string content = program_.FileContent(L"a.log");
  EXPECT_EQ(content, "INFO\r\n" + Recorded(1) + Recorded(2));
  // The size report simply stops growing.
  const std::wstring size = L"File size: " + std::to_wstring(content.size() - 6) + L"Bytes";
  const auto posts = test::TakePostedTexts();
  ASSERT_EQ(posts.size(), 3u);
  EXPECT_EQ(posts[1].text, size);
  EXPECT_EQ(posts[2].text, size);
}

}  // namespace
}  // namespace tw
