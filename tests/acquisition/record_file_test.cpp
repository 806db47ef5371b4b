#include "acquisition/record_file.h"

#include <gtest/gtest.h>

#include <utility>

#include "platform/clock.h"
#include "platform/file.h"
#include "platform/virtual/faults.h"
#include "tests/acquisition/live_fixture.h"

namespace tw {
namespace {

using test::kA;
using test::kB;

TEST(FileSizeText, UnitsChangeAtTheirBounds) {
  const struct {
    uint64_t size;
    const wchar_t* text;
  } cases[] = {
      {0, L"File size: 0Bytes"},        {1, L"File size: 1Bytes"},
      {1'024, L"File size: 1024Bytes"}, {1'025, L"File size: 1KB"},
      {2'047, L"File size: 1KB"},       {10'485'760, L"File size: 10240KB"},
      {10'485'761, L"File size: 10MB"}, {UINT64_MAX, L"File size: 17592186044415MB"},
  };
  for (const auto& each : cases) {
    wchar_t text[kSizeTextSize];
    FormatFileSize(text, each.size);
    EXPECT_STREQ(text, each.text);
  }
}

class RecordFile : public test::LiveTest {
 protected:
  Recorded Hand(RecordChannel channel, std::string_view ping) {
    return RecordPing(state_, {.channel = channel, .runNumber = state_.runNumber, .any = true}, ping);
  }
  // Hands a ping over, and tells whether it stands in the file when the writer is done.
  bool Write(RecordChannel channel, std::string_view ping) {
    const uint64_t before = RecordedBytes(state_, 0);
    const bool handedOver = Hand(channel, ping) == Recorded::handedOver;
    EXPECT_TRUE(AwaitRecords(state_, 1'000));
    return handedOver && RecordedBytes(state_, 0) == before + ping.size();
  }
  [[nodiscard]] bool IsOpen(RecordChannel channel) { return IsRecordFileOpen(state_, channel); }
};

TEST_F(RecordFile, AShortWriteIsCutBackToTheLastWholePingAndTheFileClosed) {
  for (const uint32_t taken : {0u, 1u, 5u}) {
    program_.OpenFile(kA, L"a.log");
    program_.OpenFile(kB, L"b.log");
    EXPECT_TRUE(Write(kA, "ping 1"));
    InjectFault({.point = FaultPoint::writeFile, .taken = taken});
    EXPECT_EQ(Hand(kA, "ping 2"), Recorded::handedOver);
    EXPECT_FALSE(Write(kA, "ping 3")) << "what waits behind it is not recorded either";
    EXPECT_FALSE(IsOpen(kA));
    EXPECT_EQ(Hand(kA, "ping 4"), Recorded::noFile) << "recording does not begin again by itself";
    EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\nping 1") << taken << " bytes were taken";
    EXPECT_TRUE(Write(kB, "other")) << "the other channel goes on";
    CloseBothRecordFiles(state_);
    EXPECT_TRUE(AwaitRecords(state_, 1'000));
    ClearFaults();
  }
}

TEST_F(RecordFile, AnotherFilePutInItsPlaceClosesTheFirstBehindItsPings) {
  program_.OpenFile(kA, L"a.log");
  const Handle first = state_.recordFileA;
  EXPECT_EQ(Hand(kA, "last"), Recorded::handedOver);
  program_.OpenFile(kA, L"next.log");
  EXPECT_EQ(Hand(kA, "ping"), Recorded::handedOver);
  CloseBothRecordFiles(state_);
  EXPECT_TRUE(AwaitRecords(state_, 1'000));
  uint32_t written = 0;
  EXPECT_FALSE(WriteFileBytes(first, "x", 1, written));
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\nlast");
  EXPECT_EQ(program_.FileContent(L"next.log"), "INFO\r\nping");
}

TEST_F(RecordFile, AWorkerThatOutlivedItsRunHandsNothingOverAndEndsNothing) {
  program_.OpenFile(kA, L"a.log");
  const uint32_t stale = std::exchange(state_.runNumber, state_.runNumber + 1);
  EXPECT_EQ(RecordPing(state_, {.channel = kA, .runNumber = stale}, std::string_view("late")),
            Recorded::noFile);
  EndRecording(state_, stale, EmptyRun::deleteFiles, false);
  EXPECT_TRUE(IsOpen(kA));
  EXPECT_TRUE(Write(kA, "ping"));
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\nping");
}

TEST_F(RecordFile, AFileWhoseNameIsNotFoundStaysWithItsReturnCharacter) {
  program_.OpenFile(kA, L"a.log");
  InjectFault({.point = FaultPoint::pathOfFile});
  DeleteEmptyRecordFiles(state_);
  EXPECT_FALSE(IsOpen(kA));
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n\r");
}

// What a steady device hands over, each ping with its number at both ends.
class SlowDisk : public RecordFile {
 protected:
  void HandPings(uint32_t count, uint32_t size, uint32_t every_ms) {
    for (uint32_t i = 0; i < count; ++i) {
      lost_ += Hand(kA, Ping(sent_++, size)) == Recorded::noRoom ? 1 : 0;
      SleepMilliseconds(every_ms);
    }
  }
  static std::string Ping(uint32_t number, uint32_t size) {
    const std::string text = std::to_string(1'000'000 + number);
    return text + std::string(size - 2 * text.size(), '.') + text;
  }
  // The pings of the file; a torn one fails.
  [[nodiscard]] uint32_t WholePings(const wchar_t* name, uint32_t size) const {
    const std::string content = program_.FileContent(name);
    EXPECT_EQ((content.size() - 6) % size, 0u) << "a torn ping";
    uint32_t number = 0;
    for (size_t at = 6; at + size <= content.size(); at += size) {
      const std::string_view ping = std::string_view(content).substr(at, size);
      EXPECT_EQ(ping.substr(0, 7), ping.substr(size - 7));
      const auto found = static_cast<uint32_t>(std::stoul(std::string(ping.substr(1, 6))));
      EXPECT_GE(found, number) << "in order";
      number = found + 1;
    }
    return static_cast<uint32_t>((content.size() - 6) / size);
  }

  uint32_t sent_ = 0;
  uint32_t lost_ = 0;
};

TEST_F(SlowDisk, AStallCostsNoPing) {
  const struct {
    uint32_t held_ms, size, every_ms;
  } rows[] = {{20'000, 30'000, 100}, {60'000, 10'000, 200}, {60'000, 250, 5}};
  for (const auto& row : rows) {
    sent_ = 0;
    program_.OpenFile(kA, L"a.log");
    InjectFault({.point = FaultPoint::writeFile, .call = 4, .held_ms = row.held_ms});
    HandPings(10 + row.held_ms / row.every_ms, row.size, row.every_ms);
    CloseBothRecordFiles(state_);
    EXPECT_TRUE(AwaitRecords(state_, 1'000)) << row.held_ms;
    EXPECT_EQ(lost_, 0u) << row.held_ms;
    EXPECT_EQ(WholePings(L"a.log", row.size), sent_) << row.held_ms;
    ClearFaults();
  }
  EXPECT_TRUE(test::TakePostedTexts().empty());
}

TEST_F(SlowDisk, WhatFindsNoRoomIsCountedAndToldAndTheRestIsWhole) {
  program_.LogEvents();
  program_.OpenFile(kA, L"a.log");
  InjectFault({.point = FaultPoint::writeFile, .call = 4, .held_ms = 90'000});
  // Then it takes them as slowly as they come: the queue stays full and goes round.
  InjectFault({.point = FaultPoint::writeFile, .call = 5, .repeat = kEveryCall, .held_ms = 99});
  HandPings(1'000, 30'000, 100);
  EXPECT_TRUE(AwaitRecords(state_, 60'000));
  EXPECT_EQ(lost_, 900u - (16u << 20) / (30'000u + uint32_t{sizeof(RecordEntry)}));
  EXPECT_EQ(WholePings(L"a.log", 30'000), sent_ - lost_);
  EXPECT_EQ(LoadShared(state_.pingsLost), lost_);
  EXPECT_TRUE(
      program_.FileContent(L"events.csv")
          .ends_with("Z,pings not recorded,\"" + std::to_string(lost_) + ", the disk is too slow\"\r\n"));
  program_.OpenFile(kA, L"b.log");
  EXPECT_EQ(LoadShared(state_.pingsLost), 0u) << "of a former recording";
}

TEST_F(SlowDisk, ThatIsFullWhenItComesBackKeepsWholePings) {
  program_.OpenFile(kA, L"a.log");
  InjectFault({.point = FaultPoint::writeFile, .call = 2, .held_ms = 5'000});
  LimitDiskSpace(20 * 1'000 + 500);
  HandPings(60, 1'000, 100);
  EXPECT_FALSE(IsOpen(kA));
  EXPECT_TRUE(AwaitRecords(state_, 1'000));
  EXPECT_EQ(WholePings(L"a.log", 1'000), 20u);
}

TEST_F(SlowDisk, GetsWhatWasWrittenEveryTwoSecondsAndAtTheEnd) {
  const struct {
    uint32_t period_ms;
    uint64_t flushes;
  } rows[] = {{2'000, 6}, {500, 21}, {0, 0}};
  for (const auto& row : rows) {
    state_.recordFlushPeriod_ms = row.period_ms;
    program_.OpenFile(kA, L"a.log");
    HandPings(103, 100, 100);
    SleepMilliseconds(10'000);
    EXPECT_EQ(CallCount(FaultPoint::flushFile), row.flushes) << row.period_ms;
    EXPECT_TRUE(Write(kA, Ping(0, 100)));
    CloseBothRecordFiles(state_);
    EXPECT_TRUE(AwaitRecords(state_, 1'000));
    EXPECT_EQ(CallCount(FaultPoint::flushFile), row.flushes + (row.period_ms != 0 ? 1 : 0)) << row.period_ms;
    ClearFaults();
  }
}

TEST_F(SlowDisk, AWriterThatCouldNotBeginBeginsWithTheNextPing) {
  program_.OpenFile(kA, L"a.log");
  InjectFault({.point = FaultPoint::startThread});
  HandPings(1, 100, 100);
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n");
  HandPings(1, 100, 100);
  EXPECT_EQ(WholePings(L"a.log", 100), 2u);
}

}  // namespace
}  // namespace tw
