// Each fault of the instrument as the program at the other end sees it.
#include <gtest/gtest.h>

#include "tests/simulator/recorded_stream.h"

namespace tw::sim {
namespace {

SounderOptions Streaming(const SounderFaults& faults) {
  return Fast({.sampleCount = 100, .faults = faults});
}

TEST(Faults, DeadDeviceSaysNothingAndHeedsNothing) {
  Sounder end(Streaming({.instrument = {.dead = true}}));
  EXPECT_EQ(end.Ask(" "), "");
  EXPECT_EQ(end.Ask("#rangel", 10'000), "");
  EXPECT_EQ(end.device.Bytes().Total(), 10u) << "it was told all the same";
}

TEST(Faults, SilenceBeginsAndEnds) {
  Sounder end(Streaming({.instrument = {.silentFrom_us = 1'000'000, .silentFor_us = 61'000'000}}));
  EXPECT_EQ(Count(end.ReadUntil(1'050'000), "#Ping "), 10u);
  EXPECT_EQ(end.device.NextSend_us(end.Now_us()), 62'001'000);
  EXPECT_EQ(end.ReadUntil(61'999'999), "");
  const std::string after = end.ReadUntil(62'950'000);
  EXPECT_EQ(Count(after, "#Ping "), 10u);
  EXPECT_EQ(Count(after, "#Ping 11\r\n"), 1u) << "no ping was made meanwhile";
}

TEST(Faults, SilenceForEverIsNoOverflow) {
  Sounder end(Streaming({.instrument = {.silentFrom_us = 500'000, .silentFor_us = kNever}}));
  EXPECT_EQ(Count(end.ReadUntil(100'000'000), "#Ping "), 5u);
  EXPECT_EQ(end.device.NextSend_us(end.Now_us()), kNever);
}

TEST(Faults, AnswersAtThePrompt) {
  const struct {
    SounderFaults faults;
    const char* line;
    int64_t after_ms;
    const char* early;  // until then
    const char* late;   // in the tenth of a second behind it
  } rows[] = {
      {{.replyDelay_ms = 1'900}, "#auto", 1'900, "", "#auto\r\n0\r\n\r\n>"},
      {{.replyDelay_ms = 2'100}, "#auto", 2'100, "", "#auto\r\n0\r\n\r\n>"},
      {{.prompt = PromptStyle::missing}, "#auto", 250, "#auto\r\n0\r\n", ""},
      {{.prompt = PromptStyle::split, .splitPause_ms = 300}, "#auto", 250, "#auto\r\n0\r\n\r\n", ">"},
      {{.prompt = PromptStyle::doubledReturn}, "#auto", 250, "#auto\r\n0\r\n\r\r\n>", ""},
      {{.refused = {"#smooth", "#rangel"}}, "#smooth", 250, "#smooth\r\nError\r\n\r\n>", ""},
      {{.refused = {"#smooth", "#rangel"}}, "#rangel 5000", 250, "#rangel 5000\r\nError\r\n\r\n>", ""},
      {{.refused = {"#smooth", "#rangel"}}, "#auto", 250, "#auto\r\n0\r\n\r\n>", ""},
      {{.mute = {"#output"}}, "#output", 5'000, "", ""},
  };
  for (const auto& row : rows) {
    Sounder end({.faults = row.faults});
    EXPECT_EQ(end.Ask(row.line, row.after_ms), row.early) << row.line;
    EXPECT_EQ(end.ReadFor_ms(100), row.late) << row.line;
  }
}

TEST(Faults, EachHowManiethBlockLacksSomething) {
  const struct {
    SounderFaults faults;
    const char* piece;
    size_t pieces;  // in six blocks
  } rows[] = {
      {{.block = BlockFault::noEndMark, .blockEvery = 3}, "\r\n\r\n\r\n", 4},
      {{.block = BlockFault::missingKey, .blockEvery = 2, .missingKey = "#DeviceID"}, "#DeviceID", 3},
      {{.block = BlockFault::missingKey, .blockEvery = 2, .missingKey = "#Altitude"}, "#Altitude", 3},
      {{.block = BlockFault::missingKey, .blockEvery = 3, .missingKey = "#Tx_Frequency,Hz"},
       "#Tx_Frequency,Hz",
       4},
      {{.block = BlockFault::missingKey, .blockEvery = 2, .missingKey = "##DataStart"}, "##DataStart", 3},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.piece);
    const RecordedStream sent(Streaming(row.faults), 550'000);
    ASSERT_EQ(sent.size(), 6u);
    EXPECT_EQ(Count(sent.bytes, "#Ping "), 6u);
    EXPECT_EQ(Count(sent.bytes, row.piece), row.pieces);
    for (size_t i = 0; i < sent.size(); ++i) {
      EXPECT_EQ(sent.Ping(i).faulty, (i + 1) % static_cast<size_t>(row.faults.blockEvery) == 0);
    }
  }
}

TEST(Faults, OversizeBlock) {
  const RecordedStream sent(Streaming({.block = BlockFault::oversize, .blockEvery = 2}), 1'000'000);
  EXPECT_LT(sent.Ping(0).size, 2'000u);
  EXPECT_GT(sent.Ping(1).size, 256'000u);
}

TEST(Faults, GarbageStandsBetweenTheBlocks) {
  const RecordedStream sent(Streaming({.garbageBytes = 333}), 950'000);
  ASSERT_EQ(sent.size(), 10u);
  for (size_t i = 1; i < sent.size(); ++i) {
    EXPECT_EQ(sent.Ping(i).offset - sent.Ping(i - 1).offset - sent.Ping(i - 1).size, 333u);
  }
  EXPECT_EQ(Count(sent.bytes, "#DeviceID "), 10u) << "garbage never looks like a whole start mark";
}

TEST(Faults, HangUpCutsTheStreamAtItsMoment) {
  test::SentAccount account;
  Sounder end({.faults = {.instrument = {.hangUpAt_us = 1'000'000}}}, &account);
  std::string text = end.Ask("#go", 900);
  EXPECT_FALSE(end.device.HungUp(999'999));
  EXPECT_TRUE(end.device.HungUp(1'000'000));
  text += end.ReadUntil(20'000'000);
  EXPECT_NEAR(static_cast<double>(text.size()), 11'520.0, 1.0) << "a second of the line";
  EXPECT_EQ(end.Ask(" "), "");
  EXPECT_EQ(end.device.NextSend_us(end.Now_us()), kNever);
  EXPECT_FALSE(account.messages.back().sent.whole);
}

}  // namespace
}  // namespace tw::sim
