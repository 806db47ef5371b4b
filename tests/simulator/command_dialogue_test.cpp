// What the device answers at its prompt, byte for byte.
#include <gtest/gtest.h>

#include "simulator/virtual_echosounder.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

constexpr std::string_view kPrompt = "\r\n>";

TEST(CommandDialogue, BareReturnGivesThePrompt) {
  VirtualEchosounder device({});
  FarEnd end(device);
  EXPECT_EQ(end.Ask(""), kPrompt);
  EXPECT_EQ(end.Ask("   \n "), kPrompt) << "stop keys and line feeds count for nothing at the prompt";
}

TEST(CommandDialogue, FactoryValues) {
  const struct {
    std::string_view keyword, value;
  } rows[] = {
      {"##maxrangel", "200000"}, {"##maxrangeh", "200000"},
      {"##maxlengthh", "1000"},  {"##maxlengthl", "1000"},
      {"#rangel", "30000"},      {"#rangeh", "30000"},
      {"#range", "30000"},       {"#auto", "0"},
      {"#preset", "255"},        {"#swversion", "2.10"},
      {"#getfreq", "450000"},    {"#interval", "0.00"},
      {"#output", "2"},          {"#thresholdl", "10"},
      {"#thresholdh", "10"},     {"#offsetl", "0"},
      {"#offseth", "0"},         {"#deadzonel", "500"},
      {"#deadzoneh", "500"},     {"#txlengthl", "100"},
      {"#txlengthh", "50"},      {"#gainlow", "0.000"},
      {"#gainhigh", "0.000"},    {"#gainl", "0.000"},
      {"#gainh", "0.000"},       {"#tvgsprdl", "15.000"},
      {"#tvgsprdh", "15.000"},   {"#tvgabslow", "0.060"},
      {"#tvgabsl", "0.060"},     {"#tvgabshigh", "0.140"},
      {"#tvgabsh", "0.140"},     {"##freql", "200000"},
      {"#getfreql", "200000"},   {"#getfl", "200000"},
      {"##freqh", "450000"},     {"#getfreqh", "450000"},
      {"#getfh", "450000"},      {"#tvgmode", "1"},
      {"#iden", "VIRTUAL-0001"}, {"#sound", "1500.000"},
      {"#txpower", "100.000"},   {"#samplfreq", "25000"},
      {"#attnl", "0"},           {"#attnh", "0"},
      {"##vfreql", "200000"},    {"##vfreqh", "450000"},
      {"##getsimul", "0"},       {"#smooth", "0"},
      {"#outrate", "0.00"},      {"#medianflt", "1"},
      {"#movavgflt", "1"},       {"#speed", "115200"},
  };
  VirtualEchosounder device({});
  FarEnd end(device);
  for (const auto& row : rows) EXPECT_EQ(end.Ask(row.keyword), Told(row.keyword, row.value));
}

TEST(CommandDialogue, OtherNamesAndCommandsForTwo) {
  const struct {
    std::string_view set, asked, value;
  } rows[] = {
      {"#gainlow 12.345", "#gainl", "12.345"},   {"#gainh -3.5", "#gainhigh", "-3.500"},
      {"#tvgabsl 0.123", "#tvgabslow", "0.123"}, {"#preset +7", "#preset", "7"},
      {"#range 44000", "#rangel", "44000"},      {"#range 45000", "#rangeh", "45000"},
      {"#setfl", "#getfreq", "200000"},          {"#setfreqhigh", "#getfreq", "450000"},
      {"#setfreqdual", "##getsimul", "1"},       {"#setfreqlow", "##getsimul", "0"},
  };
  VirtualEchosounder device({});
  FarEnd end(device);
  for (const auto& row : rows) {
    EXPECT_EQ(end.Ask(row.set, 200), Accepted(row.set));
    EXPECT_EQ(end.Ask(row.asked, 200), Told(row.asked, row.value)) << row.set;
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
  VirtualEchosounder device({});
  FarEnd end(device);
  for (const auto line : lines) EXPECT_EQ(end.Ask(line), Told(line, "Error"));
  EXPECT_EQ(end.Ask("#rangel"), Told("#rangel", "30000"));
  EXPECT_EQ(end.Ask("#sound"), Told("#sound", "1500.000"));
  EXPECT_EQ(end.Ask("#output"), Told("#output", "2"));
}

TEST(CommandDialogue, OverlongLineIsRefusedAndTheNextOneIsHeard) {
  VirtualEchosounder device({});
  FarEnd end(device);
  const std::string answer = end.Ask("#rangel 5000" + std::string(100'000, ' '));
  EXPECT_TRUE(answer.ends_with("\r\nError\r\n\r\n>"));
  EXPECT_EQ(end.Ask("#rangel"), Told("#rangel", "30000"));
}

TEST(CommandDialogue, SpeedComesIntoForceBehindThePromptOfTheReset) {
  VirtualEchosounder device({.baud = 4'800});
  FarEnd end(device);
  EXPECT_EQ(end.Ask("#speed 3000000"), Accepted("#speed 3000000"));
  EXPECT_EQ(device.LineSpeed(), 4'800);
  EXPECT_EQ(end.Ask("#reset", 22), "#reset\r\n\r\n") << "the old speed carries the answer";
  EXPECT_EQ(device.LineSpeed(), 4'800);
  EXPECT_EQ(end.ReadFor_ms(2), ">");
  EXPECT_EQ(device.LineSpeed(), 3'000'000);
}

TEST(CommandDialogue, SpeedAtOnceComesIntoForceBehindItsOwnPrompt) {
  VirtualEchosounder device({.baud = 4'800, .speedAtOnce = true});
  FarEnd end(device);
  EXPECT_EQ(end.Ask("#speed 12345"), Told("#speed 12345", "Error"));
  EXPECT_EQ(device.LineSpeed(), 4'800);
  EXPECT_EQ(end.Ask("#speed 3000000"), Accepted("#speed 3000000"));
  EXPECT_EQ(device.LineSpeed(), 3'000'000);
}

TEST(CommandDialogue, InformationNamesOneInterface) {
  const struct {
    InterfaceWord word;
    std::string_view name;
  } rows[] = {{InterfaceWord::rs232, "RS232"}, {InterfaceWord::rs485, "RS485"}, {InterfaceWord::usb, "USB"}};
  for (const auto& row : rows) {
    VirtualEchosounder device({.interfaceWord = row.word});
    FarEnd end(device);
    const std::string answer = end.Ask("#info");
    for (const auto& other : rows) {
      EXPECT_EQ(answer.find(other.name) != std::string::npos, other.word == row.word) << row.name;
    }
    EXPECT_TRUE(answer.ends_with(kPrompt));
  }
}

TEST(CommandDialogue, KeepsALogOfWhatItWasTold) {
  VirtualEchosounder device({.logSize = 4});
  FarEnd end(device);
  (void)end.Ask("#auto", 100);
  (void)end.Ask("#nonsense", 100);
  ASSERT_EQ(device.Commands().Total(), 2u);
  EXPECT_EQ(device.Commands().Entries()[0].line, "#auto");
  EXPECT_FALSE(device.Commands().Entries()[0].refused);
  EXPECT_EQ(device.Commands().Entries()[1].line, "#nonsense");
  EXPECT_TRUE(device.Commands().Entries()[1].refused);
  EXPECT_EQ(device.Commands().Entries()[1].time_us, 100'000);
  EXPECT_EQ(device.Bytes().Total(), 16u);
  ASSERT_EQ(device.Bytes().Entries().size(), 4u) << "the log keeps the newest entries";
  EXPECT_EQ(device.Bytes().Entries()[3].byte, '\r');
}

}  // namespace
}  // namespace tw::sim
