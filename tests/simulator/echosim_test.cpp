// The tool around the simulator: its command line, and instruments on lines that fail.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "tools/echosim/binding.h"
#include "tools/echosim/options.h"

namespace tw::echosim {
namespace {

std::string Contents(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

std::string ScratchPath(const std::string& name) {
  return testing::TempDir() + "echosim_" + std::to_string(getpid()) + "_" + name;
}

// A line that takes only so many bytes, and hands over what a test puts in.
struct NarrowLine final : Terminal {
  explicit NarrowLine(size_t room, std::string input = {}) : room_(room), input_(std::move(input)) {}
  std::string Name() const override { return "narrow"; }
  size_t Read(std::span<uint8_t> out) override {
    const size_t count = input_.copy(reinterpret_cast<char*>(out.data()), out.size());
    input_.erase(0, count);
    return count;
  }
  size_t Write(std::span<const uint8_t> bytes) override {
    const size_t count = std::min(room_, bytes.size());
    room_ -= count;
    return count;
  }
  void SetSpeed(int32_t) override {}

  size_t room_;
  std::string input_;
};

TEST(Options, AreRead) {
  const char* arguments[] = {"--link",     "/tmp/s",
                             "--gps-link", "/tmp/g",
                             "--mode",     "4",
                             "--rate",     "12.5",
                             "--samples",  "12000",
                             "--speed",    "921600",
                             "--seed",     "7",
                             "--dual",     "--prompt",
                             "split",      "--refuse",
                             "#auto",      "--refuse",
                             "#smooth",    "--missing-key",
                             "#Altitude",  "--fault-every",
                             "5",          "--hang-up-at",
                             "2.5",        "--silent-from",
                             "1",          "--gps-talker",
                             "gn",         "--gps-latitude",
                             "-33.875",    "--gps-no-fix"};
  ToolOptions options;
  std::string error;
  ASSERT_TRUE(ParseOptions(arguments, options, error)) << error;
  EXPECT_EQ(options.device, "/tmp/s");
  EXPECT_EQ(options.gpsDevice, "/tmp/g");
  EXPECT_EQ(options.sounder.outputMode, 4);
  EXPECT_EQ(options.sounder.pingsPerSecond, 12.5);
  EXPECT_EQ(options.sounder.sampleCount, 12'000);
  EXPECT_EQ(options.sounder.baud, 921'600);
  EXPECT_EQ(options.sounder.seed, 7u);
  EXPECT_TRUE(options.sounder.dual);
  const sim::SounderFaults& faults = options.sounder.faults;
  EXPECT_EQ(faults.prompt, sim::PromptStyle::split);
  EXPECT_EQ(faults.refused, (std::vector<std::string>{"#auto", "#smooth"}));
  EXPECT_EQ(faults.block, sim::BlockFault::missingKey);
  EXPECT_EQ(faults.missingKey, "#Altitude");
  EXPECT_EQ(faults.blockEvery, 5);
  EXPECT_EQ(faults.instrument.hangUpAt_us, 2'500'000);
  EXPECT_EQ(faults.instrument.silentFrom_us, 1'000'000);
  EXPECT_EQ(faults.instrument.silentFor_us, sim::kNever) << "no length: for ever";
  EXPECT_EQ(options.gps.talker, sim::GpsTalker::gn);
  EXPECT_EQ(options.gps.latitude_deg, -33.875);
  EXPECT_EQ(options.gps.fixFrom_us, sim::kNever);
}

TEST(Options, StreamFaultsAddUp) {
  const char* const arguments[] = {"--stream-fault", "lost", "--stream-fault", "nan",
                                   "--binary-form",  "frame"};
  ToolOptions options;
  std::string error;
  ASSERT_TRUE(ParseOptions(arguments, options, error)) << error;
  const sim::SounderFaults& faults = options.sounder.faults;
  EXPECT_EQ(faults.stream, (std::vector{sim::StreamFault::lostBytes, sim::StreamFault::notANumber}));
  EXPECT_EQ(faults.streamRate, 0.01);
  EXPECT_EQ(options.sounder.binaryForm, sim::BinaryForm::frame);
  const char* const wrong[] = {"--stream-fault", "burnt"};
  EXPECT_FALSE(ParseOptions(wrong, options, error));
}

TEST(Options, WhatIsWrongIsNamed) {
  const struct {
    std::vector<const char*> arguments;
    std::string_view error;
  } rows[] = {
      {{"--bogus"}, "unknown option --bogus"},
      {{"--rate"}, "--rate needs a value"},
      {{"--rate", "0.5"}, "--rate cannot be 0.5"},
      {{"--rate", "51"}, "--rate cannot be 51"},
      {{"--rate", "ten"}, "--rate cannot be ten"},
      {{"--rate", "nan"}, "--rate cannot be nan"},
      {{"--rate", "5x"}, "--rate cannot be 5x"},
      {{"--samples", "99"}, "--samples cannot be 99"},
      {{"--samples", "12001"}, "--samples cannot be 12001"},
      {{"--speed", "12345"}, "--speed cannot be 12345"},
      {{"--mode", "5"}, "--mode cannot be 5"},
      {{"--family", "2"}, "--family cannot be 2"},
      {{"--prompt", "odd"}, "--prompt cannot be odd"},
      {{"--silent-from", "-1"}, "--silent-from cannot be -1"},
      {{"--link", ""}, "--link cannot be "},
      {{"--seed", "99999999999999999999"}, "--seed cannot be 99999999999999999999"},
  };
  for (const auto& row : rows) {
    ToolOptions options;
    std::string error;
    EXPECT_FALSE(ParseOptions(row.arguments, options, error));
    EXPECT_EQ(error, row.error);
  }
}

TEST(Binding, WhatTheLineDoesNotTakeIsDroppedAndCounted) {
  const std::string path = ScratchPath("lost");
  {
    sim::VirtualEchosounder device({.streaming = true});
    LineFile lost;
    ASSERT_TRUE(lost.Create(path));
    Binding binding(device, std::make_unique<NarrowLine>(1'000), nullptr, &lost);
    binding.Pump(100'000);
    EXPECT_EQ(binding.Sent(), 1'152u) << "a tenth of a second";
    EXPECT_EQ(binding.Dropped(), 152u);
  }
  EXPECT_EQ(Contents(path), "dropped 100000 1000 152\n");
  unlink(path.c_str());
}

TEST(Binding, ReceivedBytesAreWrittenWithTheirTime) {
  const std::string path = ScratchPath("received");
  {
    sim::VirtualEchosounder device({});
    LineFile received;
    ASSERT_TRUE(received.Create(path));
    Binding binding(device, std::make_unique<NarrowLine>(1'000, "#auto\r\n \\\x01"), &received, nullptr);
    binding.Pump(42);
    EXPECT_EQ(binding.Received(), 10u);
    EXPECT_EQ(device.Commands().Total(), 1u);
  }
  EXPECT_EQ(Contents(path), "42 #auto\\r\\n \\x5C\\x01\n");
  unlink(path.c_str());
}

TEST(Binding, HangUpClosesTheLine) {
  sim::VirtualEchosounder device({.faults = {.instrument = {.hangUpAt_us = 5'000}}});
  Binding binding(device, std::make_unique<NarrowLine>(1'000), nullptr, nullptr);
  binding.Pump(4'999);
  EXPECT_NE(binding.Line(), nullptr);
  binding.Pump(5'000);
  EXPECT_EQ(binding.Line(), nullptr);
  binding.Pump(6'000);
  EXPECT_EQ(binding.Next_us(6'000), sim::kNever);
}

TEST(PseudoTerminal, CarriesADialogueAndTakesItsLinkAway) {
  const std::string link = ScratchPath("link");
  sim::VirtualEchosounder device({});
  std::string error;
  {
    Binding binding(device, OpenTerminal(link, 115'200, error), nullptr, nullptr);
    ASSERT_NE(binding.Line(), nullptr) << error;
    const int line = open(link.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(line, 0);
    ASSERT_EQ(write(line, "#rangel\r", 8), 8);
    Terminal* const lines[] = {nullptr, binding.Line()};
    WaitForInput(lines, 5'000'000);
    binding.Pump(0);
    binding.Pump(100'000);
    char text[64] = {};
    EXPECT_EQ(read(line, text, sizeof text), 19) << "raw: nothing is echoed, translated or held for a line";
    EXPECT_STREQ(text, "#rangel\r\n30000\r\n\r\n>");
    close(line);
  }
  struct stat status {};
  EXPECT_NE(lstat(link.c_str(), &status), 0);
}

TEST(PseudoTerminal, NobodyReadingNeverBlocks) {
  const std::string link = ScratchPath("unread");
  sim::VirtualEchosounder device({.baud = 3'000'000, .streaming = true});
  std::string error;
  Binding binding(device, OpenTerminal(link, 3'000'000, error), nullptr, nullptr);
  ASSERT_NE(binding.Line(), nullptr) << error;
  for (int64_t now_us = 0; now_us <= 20'000'000; now_us += 100'000) binding.Pump(now_us);
  EXPECT_GT(binding.Sent(), 700'000u);
  EXPECT_GT(binding.Dropped(), 500'000u);
}

TEST(PseudoTerminal, LeavesAloneWhatIsNoLink) {
  const std::string path = ScratchPath("file");
  std::ofstream(path) << "precious";
  std::string error;
  EXPECT_EQ(OpenTerminal(path, 115'200, error), nullptr);
  EXPECT_NE(error.find(path), std::string::npos);
  EXPECT_EQ(Contents(path), "precious");
  unlink(path.c_str());
}

}  // namespace
}  // namespace tw::echosim
