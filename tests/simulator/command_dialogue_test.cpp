// What the device answers at its prompt, byte for byte.
#include <gtest/gtest.h>

#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

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

TEST(CommandDialogue, SpeedComesIntoForceBehindThePromptOfTheReset) {
  Sounder end({.baud = 4'800});
  EXPECT_EQ(end.Ask("#speed 3000000"), Accepted("#speed 3000000"));
  EXPECT_EQ(end.Ask("#reset", 22), "#reset\r\n\r\n") << "the old speed carries the answer";
  EXPECT_EQ(end.device.LineSpeed(), 4'800);
  EXPECT_EQ(end.ReadFor_ms(2), ">");
  EXPECT_EQ(end.device.LineSpeed(), 3'000'000);
}

TEST(CommandDialogue, FaultsOfAnAnswer) {
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

// The third family's block of 38 bytes, or of another length, was packed by another program.
TEST(CommandDialogue, InformationAsEachFamilyTellsIt) {
  const std::string frequency = "]\r\nTx Frequency      450000 Hz  ";
  const struct {
    SounderOptions options;
    std::string told;
  } rows[] = {
      {{.interfaceWord = InterfaceWord::usb},
       "Device VIRTUAL-0001\r\nFirmware 2.10\r\nRange 30000 mm\r\nOutput 2\r\nInterface USB"},
      {{.family = DeviceFamily::second, .identity = "1042", .firmware_hundredths = 195},
       "Device 1042\r\nFirmware 1.95\r\nRange 30000 mm\r\nOutput 2"},
      {{.family = DeviceFamily::third},
       "B64INFO[JgAAACoAAAAwdQAAMgAAAAAA9AEAAAoAAAAAAAAAcEEBAAIA3AU=" + frequency},
      {{.family = DeviceFamily::third, .faults = {.informationBytes = 13}},
       "B64INFO[JgAAACoAAAAwdQAAMg==" + frequency},
      {{.family = DeviceFamily::third, .faults = {.informationBytes = 40}},
       "B64INFO[JgAAACoAAAAwdQAAMgAAAAAA9AEAAAoAAAAAAAAAcEEBAAIA3AUAAA==" + frequency},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Sounder(row.options).Ask("#info"), Told("#info", row.told));
  }
  EXPECT_EQ(Sounder({.family = DeviceFamily::third}).Ask("#deadzone 32768"), Refused("#deadzone 32768"))
      << "the block could not tell it";
}

}  // namespace
}  // namespace tw::sim
