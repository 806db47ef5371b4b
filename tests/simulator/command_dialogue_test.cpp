// What the device answers at its prompt, byte for byte.
#include <gtest/gtest.h>

#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

TEST(CommandDialogue, BareReturnGivesThePrompt) {
  Sounder device({});
  EXPECT_EQ(device.Ask(""), "\r\n>");
  EXPECT_EQ(device.Ask("   \n "), "\r\n>") << "stop keys and line feeds count for nothing at the prompt";
}

TEST(CommandDialogue, OtherNamesAndCommandsForTwo) {
  const struct {
    std::string_view set, asked, value;
  } rows[] = {
      {"#gainlow 12.345", "#gainl", "12.345"},
      {"#gainh -3.5", "#gainhigh", "-3.500"},
      {"#tvgabsl 0.123", "#tvgabslow", "0.123"},
      {"#tvgabshigh 0.2", "#tvgabsh", "0.200"},
      {"#range 44000", "#rangel", "44000"},
      {"#range 45000", "#rangeh", "45000"},
      {"#setfl", "#getfreq", "200000"},
      {"#setfreqhigh", "#getfreq", "450000"},
      {"#setfreqdual", "##getsimul", "1"},
      {"#setfreqlow", "##getsimul", "0"},
      {"#preset +7", "#preset", "7"},
  };
  Sounder device({});
  for (const auto& row : rows) {
    EXPECT_EQ(device.Ask(row.set), Accepted(row.set));
    EXPECT_EQ(device.Ask(row.asked), Told(row.asked, row.value)) << row.set;
  }
}

TEST(CommandDialogue, WhatIsRefusedChangesNothing) {
  const std::string_view lines[] = {
      "#rangel 999",         "#rangel 200001",   "#rangel 10.5", "#rangel ten",      "#rangel 1e4",
      "#rangel --5",         "#rangel 5 5",      "#rangel +",    "#rangel .",        "#rangel 0.5.1",
      "#rangel 99999999999", "#sound 1299",      "#sound 1801",  "#interval -1",     "#interval 61",
      "#output 5",           "#output 0",        "#speed 12345", "#auto 2",          "#preset 256",
      "#getfreq 1",          "##maxrangel 5000", "#iden me",     "#go now",          "#reset 1",
      "#default 1",          "#setfreqlow 1",    "#unknown",     "rangel",           "#RANGEL",
      "#rangel\t5000",       "#swversion 9.0",   "#time -1",     "#time 4294967296",
  };
  Sounder device({});
  for (const auto line : lines) EXPECT_EQ(device.Ask(line), Refused(line));
  EXPECT_EQ(device.Ask("#rangel"), Told("#rangel", "30000"));
  EXPECT_EQ(device.Ask("#sound"), Told("#sound", "1500.000"));
  EXPECT_EQ(device.Ask("#output"), Told("#output", "2"));
}

TEST(CommandDialogue, OverlongLineIsRefusedAndTheNextOneIsHeard) {
  Sounder device({});
  EXPECT_TRUE(device.Ask("#rangel 5000" + std::string(100'000, ' ')).ends_with("\r\nError\r\n\r\n>"));
  EXPECT_EQ(device.Ask("#rangel"), Told("#rangel", "30000"));
}

TEST(CommandDialogue, SpeedComesIntoForceBehindThePromptOfTheReset) {
  Sounder end({.baud = 4'800});
  EXPECT_EQ(end.Ask("#speed 3000000"), Accepted("#speed 3000000"));
  EXPECT_EQ(end.Ask("#reset", 22), "#reset\r\n\r\n") << "the old speed carries the answer";
  EXPECT_EQ(end.device.LineSpeed(), 4'800);
  EXPECT_EQ(end.ReadFor_ms(2), ">");
  EXPECT_EQ(end.device.LineSpeed(), 3'000'000);
}

TEST(CommandDialogue, SpeedAtOnceComesIntoForceBehindItsOwnPrompt) {
  Sounder end({.baud = 4'800, .speedAtOnce = true});
  EXPECT_EQ(end.Ask("#speed 12345"), Refused("#speed 12345"));
  EXPECT_EQ(end.device.LineSpeed(), 4'800);
  EXPECT_EQ(end.Ask("#speed 3000000"), Accepted("#speed 3000000"));
  EXPECT_EQ(end.device.LineSpeed(), 3'000'000);
}

TEST(CommandDialogue, KeepsALogOfWhatItWasTold) {
  Sounder end({.logSize = 4});
  (void)end.Ask("#auto", 100);
  (void)end.Ask("#nonsense", 100);
  const auto& commands = end.device.Commands().Entries();
  ASSERT_EQ(commands.size(), 2u);
  EXPECT_EQ(commands[0].line, "#auto");
  EXPECT_FALSE(commands[0].refused);
  EXPECT_EQ(commands[1].line, "#nonsense");
  EXPECT_TRUE(commands[1].refused);
  EXPECT_EQ(commands[1].time_us, 100'000);
  EXPECT_EQ(end.device.Bytes().Total(), 16u);
  ASSERT_EQ(end.device.Bytes().Entries().size(), 4u) << "the log keeps the newest entries";
  EXPECT_EQ(end.device.Bytes().Entries()[3].byte, '\r');
}

}  // namespace
}  // namespace tw::sim
