#include "app/state/event_marks.h"

#include <gtest/gtest.h>

#include <string>

#include "base/text_format.h"

namespace tw {
namespace {

constexpr std::string_view kUtc = "2026-03-14T09:30:05.000Z,mark,";

TEST(EventMarks, AreReadAsTheyAreWritten) {
  for (const wchar_t* const word : {L"", L"wreck, \u00FCber all", L", "}) {
    for (const bool known : {false, true}) {
      EventMark mark{1'773'480'605'000, 7, 1'234, known, 12.34, known, -35.1, 129.05, L""};
      CopyWide(mark.word, word);
      char detail[256];
      FormatMark(detail, mark);
      EventMark read{};
      ASSERT_TRUE(ParseMark(std::string(kUtc) + '"' + detail + '"', read)) << detail;
      EXPECT_EQ(read.time_ms, mark.time_ms);
      EXPECT_EQ(read.number, 7u);
      EXPECT_EQ(read.ping, 1'234u);
      EXPECT_EQ(read.hasDepth, known);
      EXPECT_EQ(read.hasPosition, known);
      EXPECT_DOUBLE_EQ(read.depth_m, known ? 12.34 : 0);
      EXPECT_DOUBLE_EQ(read.latitude_deg, known ? -35.1 : 0);
      EXPECT_STREQ(read.word, word);
    }
  }
}

TEST(EventMarks, WhatNobodyWroteIsNone) {
  EventMark mark{};
  mark.number = 99;
  for (const char* const rest :
       {"\"7, ping 1, no bottom, no position", "\"0, ping 1, no bottom, no position\"", "\"7, ping 1\"",
        "\"7, ping 1, nan m, no position\"", "\"7, ping 1, -1.0 m, no position\"",
        "\"7, ping 1, 1.0 m, 91.0 0.0\"", "7, ping 1, no bottom, no position"}) {
    EXPECT_FALSE(ParseMark(std::string(kUtc) + rest, mark)) << rest;
  }
  EXPECT_FALSE(ParseMark("2026-03-14T09:30:05.000Z,start,\"COM5\"", mark));
  EXPECT_FALSE(ParseMark("2026-03-14 09:30:05.000Z,mark,\"7, ping 1, no bottom, no position\"", mark));
  EXPECT_EQ(mark.number, 99u);
}

}  // namespace
}  // namespace tw
