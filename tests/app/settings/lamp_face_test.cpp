#include "app/settings/lamp_face.h"

#include <gtest/gtest.h>

#include <string>

namespace tw {
namespace {

constexpr uint64_t kHour_ms = 3'600'000;

TEST(RecordingLamp, TellsWhatBecomesOfThePings) {
  RecordingFacts going{};
  going.wanted = going.open = true;
  going.free_bytes = kUnknownSpace;
  going.files = "a.log";
  const auto with = [&](auto change) {
    RecordingFacts facts = going;
    change(facts);
    return facts;
  };
  // One file of a pair may go on.
  const auto fault = [&](RecordFault why, uint32_t now_ms, bool oneGoesOn = false) {
    return with([&](RecordingFacts& f) { f.open = oneGoesOn, f.fault = why, f.now_ms = now_ms; });
  };
  const struct {
    RecordingFacts facts;
    const wchar_t* text;
    LampColour colour;
    const wchar_t* second = L"";
  } rows[] = {
      {with([](RecordingFacts& f) { f.wanted = f.open = false; }), L"not recording", LampColour::grey},
      {with([](RecordingFacts& f) { f.recorded_ms = 751'999; }), L"REC 00:12:31", LampColour::red},
      {with([](RecordingFacts& f) { f.recorded_ms = 1'234 * kHour_ms; }), L"REC 1234:00:00", LampColour::red},
      {with([](RecordingFacts& f) { f.noData_s = 12; }), L"REC 00:00:00", LampColour::red, L"NO DATA 12 s"},
      {fault(RecordFault::diskFull, 1'000), L"NOT RECORDING: disk full", LampColour::alarm},
      {fault(RecordFault::diskFull, 1'500), L"NOT RECORDING: disk full", LampColour::red},
      {fault(RecordFault::folderMissing, 0), L"NOT RECORDING: folder missing", LampColour::alarm},
      {fault(RecordFault::diskRefuses, 0), L"NOT RECORDING: disk error", LampColour::alarm},
      {fault(RecordFault::none, 0), L"NOT RECORDING", LampColour::alarm},
      {fault(RecordFault::diskFull, 0, true), L"NOT RECORDING: disk full", LampColour::alarm},
  };
  for (const auto& row : rows) {
    const LampFace face = LampOf(row.facts);
    EXPECT_STREQ(face.text, row.text);
    EXPECT_STREQ(face.second, row.second) << std::wstring(row.text).size();
    EXPECT_EQ(face.colour, row.colour);
  }
  const RecordingFacts told =
      with([](RecordingFacts& f) { f.pings = 7, f.bytes = 4'711, f.free_bytes = 3u << 20; });
  EXPECT_STREQ(LampOf(told).tip, L"a.log\n7 pings, 4711 bytes\n3 MB free");
}

TEST(ReceiverLamp, TellsTheFixOrWhyThereIsNone) {
  using enum ReceiverState;
  const struct {
    ReceiverFacts facts;
    const wchar_t* text;
    LampColour colour;
    const wchar_t* status = L"";
  } rows[] = {
      {{false, true, silent, 0, 0, false, 0, 0, 0, 0}, L"", LampColour::grey},
      {{true, false, silent, 0, 0, false, 0, 0, 0, 0}, L"port failed", LampColour::red, L"port failed"},
      {{true, true, tells, 0, 4'800, true, 1, 1, 8, 0.94}, L"GPS 8/0.9 1s", LampColour::green},
      {{true, true, tells, 0, 4'800, true, 0, 2, 12, 0.9}, L"DGPS 12/0.9 0s", LampColour::green},
      {{true, true, tells, 0, 4'800, true, 75, 4, 12, 1e300}, L"RTK fixed 12/99.9 75s", LampColour::green},
      {{true, true, tells, 0, 4'800, true, 0, 5, 12, 0.5}, L"RTK float 12/0.5 0s", LampColour::green},
      {{true, true, tells, 0, 4'800, true, 0, 0, 3, 0}, L"none 3 sat", LampColour::red},
      {{true, true, tells, 0, 4'800, false, 0, 1, 0, 0}, L"none 0 sat", LampColour::red},
      {{true, true, silent, 12, 4'800, true, 12, 2, 8, 1}, L"silent 12 s", LampColour::red, L"silent 12 s"},
      {{true, true, noSentences, 0, 115'200, false, 0, 0, 0, 0},
       L"no sentences",
       LampColour::red,
       L"no sentences at 115200 bps"},
  };
  for (const auto& row : rows) {
    wchar_t status[64] = L"x";
    EXPECT_STREQ(LampOf(row.facts).text, row.text);
    EXPECT_EQ(LampOf(row.facts).colour, row.colour) << std::wstring(row.text).size();
    EXPECT_EQ(FormatReceiverTrouble(status, row.facts), row.status[0] != L'\0');
    EXPECT_STREQ(status, row.status);
  }
}

// What the millisecond clock says when it wraps, and of a byte that came after the clock was read.
TEST(ReceiverLamp, SilenceIsJudgedByTheTimesOfBytesAndSentences) {
  using enum ReceiverState;
  EXPECT_EQ(JudgeReceiver({1'000, 1'000}, 5'000, 5'999), tells);
  EXPECT_EQ(JudgeReceiver({1'000, 1'000}, 5'000, 6'000), silent);
  EXPECT_EQ(JudgeReceiver({5'900, 1'000}, 2'000, 6'000), noSentences);
  EXPECT_EQ(JudgeReceiver({0xFFFFFF00u, 0xFFFFFF00u}, 5'000, 4'000), tells);
  EXPECT_EQ(JudgeReceiver({1'005, 1'005}, 5'000, 1'000), tells);
}

TEST(DiskState, IsToldTheWorstFirstAndItsRoomFromADayDown) {
  constexpr uint64_t kHour_bytes = 3'600 * 1'000;
  constexpr wchar_t kTooSlow[] = L"Pings not recorded, the disk is too slow : 7";
  const struct {
    DiskFacts facts;
    const wchar_t* text;
    bool alarm;
  } rows[] = {
      {{7, 2'048, true, RecordFault::diskFull, 1'000, 0}, kTooSlow, true},
      {{7, 0, false, RecordFault::none, 0, 0}, kTooSlow, true},
      {{0, 2'049, true, RecordFault::diskFull, 1'000, 0}, L"Still to be written : 3 KB", false},
      {{0, 1, true, RecordFault::none, 1'000, kHour_bytes}, L"Still to be written : 1 KB", false},
      {{0, 0, false, RecordFault::diskFull, 1'000, 0}, L"", false},
      {{0, 0, true, RecordFault::none, 1'000, 24 * kHour_bytes + 1'000}, L"", false},
      {{0, 0, true, RecordFault::none, 1'000, 24 * kHour_bytes}, L"Disk: 24 h", false},
      {{0, 0, true, RecordFault::none, 1'000, 2 * kHour_bytes}, L"Disk: 2.0 h", false},
      {{0, 0, true, RecordFault::none, 1'000, 3 * kHour_bytes / 2}, L"Disk: 1.5 h", true},
      {{0, 0, true, RecordFault::none, 1'000, kHour_bytes - 1}, L"Disk: 59 min", true},
      {{0, 0, true, RecordFault::none, 0, 1}, L"", false},
      {{0, 0, true, RecordFault::none, 1, kUnknownSpace}, L"", false},
      {{0, 0, true, RecordFault::diskFull, 1'000, 0}, L"Ended: disk full", true},
      {{0, 0, true, RecordFault::folderMissing, 0, kUnknownSpace}, L"folder missing", true},
  };
  for (const auto& row : rows) {
    wchar_t text[64] = L"x";
    EXPECT_EQ(FormatDiskState(text, row.facts), row.alarm) << row.facts.free_bytes;
    EXPECT_STREQ(text, row.text);
  }
}

}  // namespace
}  // namespace tw
