// Each fault as the program at the other end sees it.
#include <gtest/gtest.h>

#include "simulator/virtual_echosounder.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

size_t Count(std::string_view text, std::string_view piece) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find(piece, at)) != std::string_view::npos; at += piece.size()) ++count;
  return count;
}

SounderOptions Streaming(const SounderFaults& faults) {
  return {.baud = 12'000'000, .delivery_us = 1'000, .sampleCount = 100, .streaming = true, .faults = faults};
}

TEST(Faults, DeadDeviceSaysNothingAndHeedsNothing) {
  VirtualEchosounder device(Streaming({.instrument = {.dead = true}}));
  FarEnd end(device);
  EXPECT_EQ(end.Ask(" "), "");
  EXPECT_EQ(end.Ask("#rangel", 10'000), "");
  EXPECT_EQ(device.Bytes().Total(), 10u) << "it was told all the same";
}

TEST(Faults, SilenceBeginsAndEnds) {
  VirtualEchosounder device(
      Streaming({.instrument = {.silentFrom_us = 1'000'000, .silentFor_us = 61'000'000}}));
  FarEnd end(device);
  EXPECT_EQ(Count(end.ReadUntil(1'050'000), "#Ping "), 10u);
  EXPECT_EQ(device.NextSend_us(end.Now_us()), 62'001'000);
  EXPECT_EQ(end.ReadUntil(61'999'999), "");
  const std::string after = end.ReadUntil(62'950'000);
  EXPECT_EQ(Count(after, "#Ping "), 10u);
  EXPECT_NE(after.find("#Ping 11\r\n"), std::string::npos) << "no ping was made meanwhile";
}

TEST(Faults, SilenceForEverIsNoOverflow) {
  VirtualEchosounder device(Streaming({.instrument = {.silentFrom_us = 500'000, .silentFor_us = kNever}}));
  FarEnd end(device);
  EXPECT_EQ(Count(end.ReadUntil(100'000'000), "#Ping "), 5u);
  EXPECT_EQ(device.NextSend_us(end.Now_us()), kNever);
}

TEST(Faults, SlowReplyComesAfterItsDelay) {
  for (const int32_t delay_ms : {1'900, 2'100}) {
    VirtualEchosounder device({.baud = 3'000'000, .faults = {.replyDelay_ms = delay_ms}});
    FarEnd end(device);
    EXPECT_EQ(end.Ask("#auto", delay_ms), "");
    EXPECT_EQ(end.ReadFor_ms(1), "#auto\r\n0\r\n\r\n>");
  }
}

TEST(Faults, PromptForms) {
  const struct {
    PromptStyle style;
    std::string_view early, late;
  } rows[] = {
      {PromptStyle::missing, "#auto\r\n0\r\n", ""},
      {PromptStyle::split, "#auto\r\n0\r\n\r\n", ">"},
      {PromptStyle::doubledReturn, "#auto\r\n0\r\n\r\r\n>", ""},
  };
  for (const auto& row : rows) {
    VirtualEchosounder device({.faults = {.prompt = row.style, .splitPause_ms = 300}});
    FarEnd end(device);
    EXPECT_EQ(end.Ask("#auto", 250), row.early);
    EXPECT_EQ(end.ReadFor_ms(100), row.late);
  }
}

TEST(Faults, SplitEndMark) {
  VirtualEchosounder device(Streaming({.splitEndMark = true, .splitPause_ms = 300}));
  FarEnd end(device);
  (void)end.ReadFor_ms(50);
  end.Write(" ");
  EXPECT_EQ(end.ReadFor_ms(250), "Data");
  EXPECT_EQ(end.ReadFor_ms(100), "End\r\n\r\n>");
}

TEST(Faults, BlocksWithoutEndMark) {
  VirtualEchosounder device(Streaming({.block = BlockFault::noEndMark, .blockEvery = 3}));
  const std::string text = FarEnd(device).ReadUntil(550'000);
  EXPECT_EQ(Count(text, "#DeviceID "), 6u);
  EXPECT_EQ(Count(text, "\r\n\r\n\r\n"), 4u);
  const auto& pings = device.Pings().Entries();
  ASSERT_EQ(pings.size(), 6u);
  for (size_t i = 0; i < pings.size(); ++i) EXPECT_EQ(pings[i].faulty, i % 3 == 2);
}

TEST(Faults, BlocksWithoutAKey) {
  for (const std::string key : {"#DeviceID", "#Altitude", "#Tx_Frequency,Hz", "##DataStart"}) {
    VirtualEchosounder device(
        Streaming({.block = BlockFault::missingKey, .blockEvery = 2, .missingKey = key}));
    const std::string text = FarEnd(device).ReadUntil(550'000);
    EXPECT_EQ(Count(text, "#Ping "), 6u);
    EXPECT_EQ(Count(text, key), 3u) << key;
  }
}

TEST(Faults, OversizeBlock) {
  VirtualEchosounder device(Streaming({.block = BlockFault::oversize, .blockEvery = 2}));
  (void)FarEnd(device).ReadUntil(1'000'000);
  ASSERT_GE(device.Pings().Entries().size(), 2u);
  EXPECT_LT(device.Pings().Entries()[0].size, 2'000u);
  EXPECT_GT(device.Pings().Entries()[1].size, 256'000u);
}

TEST(Faults, GarbageStandsBetweenTheBlocks) {
  VirtualEchosounder device(Streaming({.garbageBytes = 333}));
  const std::string text = FarEnd(device).ReadUntil(950'000);
  const auto& pings = device.Pings().Entries();
  ASSERT_EQ(pings.size(), 10u);
  for (size_t i = 1; i < pings.size(); ++i) {
    EXPECT_EQ(pings[i].offset - pings[i - 1].offset - pings[i - 1].size, 333u);
  }
  EXPECT_EQ(Count(text, "#DeviceID "), 10u) << "garbage never looks like a whole start mark";
}

TEST(Faults, DeafDeviceStreamsOn) {
  VirtualEchosounder device(Streaming({.deaf = true}));
  FarEnd end(device);
  end.Write("   ");
  EXPECT_EQ(Count(end.ReadUntil(950'000), "#Ping "), 10u);
}

TEST(Faults, ChatterAtThePromptNeverEnds) {
  VirtualEchosounder device({.faults = {.chatter = true}});
  FarEnd end(device);
  const std::string text = end.ReadUntil(10'050'000);
  EXPECT_EQ(Count(text, "~?\r\n"), 101u);
  EXPECT_NE(end.Ask("#auto").find("#auto\r\n0\r\n"), std::string::npos);
}

TEST(Faults, RefusedAndMuteCommands) {
  VirtualEchosounder device({.faults = {.refused = {"#smooth", "#rangel"}, .mute = {"#output"}}});
  FarEnd end(device);
  EXPECT_EQ(end.Ask("#smooth"), "#smooth\r\nError\r\n\r\n>");
  EXPECT_EQ(end.Ask("#rangel 5000"), "#rangel 5000\r\nError\r\n\r\n>");
  EXPECT_EQ(end.Ask("#output", 5'000), "");
  EXPECT_EQ(end.Ask("#auto"), "#auto\r\n0\r\n\r\n>");
}

TEST(Faults, HangUpCutsTheStreamAtItsMoment) {
  VirtualEchosounder device({.faults = {.instrument = {.hangUpAt_us = 1'000'000}}});
  FarEnd end(device);
  std::string text = end.Ask("#go", 900);
  EXPECT_FALSE(device.HungUp(999'999));
  EXPECT_TRUE(device.HungUp(1'000'000));
  text += end.ReadUntil(20'000'000);
  EXPECT_NEAR(static_cast<double>(text.size()), 11'520.0, 1.0) << "a second of the line";
  EXPECT_EQ(end.Ask(" "), "");
  EXPECT_EQ(device.NextSend_us(end.Now_us()), kNever);
  EXPECT_FALSE(device.Pings().Entries().back().whole);
}

}  // namespace
}  // namespace tw::sim
