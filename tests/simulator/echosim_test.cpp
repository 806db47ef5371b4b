// The tool around the simulator: its command line, and instruments on lines that fail.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
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

// Of a command line's words; empty when they were taken.
std::string ErrorOf(const std::string& line, ToolOptions& options) {
  std::istringstream in(line);
  const std::vector<std::string> words{std::istream_iterator<std::string>(in), {}};
  std::vector<const char*> arguments;
  for (const std::string& word : words) arguments.push_back(word.c_str());
  std::string error;
  const bool taken = ParseOptions(arguments, options, error);
  EXPECT_EQ(taken, error.empty());
  return error;
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
    sent_.append(reinterpret_cast<const char*>(bytes.data()), count);
    return count;
  }
  void SetSpeed(int32_t) override {}
  bool OtherEnd(LineSettings& settings) const override {
    settings = settings_;
    return true;
  }

  size_t room_;
  std::string input_;
  std::string sent_;
  LineSettings settings_{115'200, 8, 'N', 1, false};
};

TEST(Options, AreReadInAnyOrder) {
  ToolOptions options;
  ASSERT_EQ(
      ErrorOf("--link /tmp/s --gps-link /tmp/g --line-log /tmp/l --strict-line --mode 10 --identity 1042 "
              "--lacks #threshold --family 2 --frequency 200000 --firmware 1.95 --rate 12.5 --samples 12000 "
              "--speed 921600 "
              "--speed-at-once --seed 7 --auto --preset 7 --smoothing none --no-dual-old "
              "--binary-form frame --lacks-silently --info-bytes 13 --prompt split --refuse #auto "
              "--refuse #smooth --missing-key #Altitude --fault-every 5 --hang-up-at 2.5 --silent-from 1 "
              "--stream-fault lost --stream-fault nan --gps-talker gn --gps-latitude -33.875 --gps-no-fix",
              options),
      "");
  EXPECT_EQ(options.device, "/tmp/s");
  EXPECT_EQ(options.gpsDevice, "/tmp/g");
  EXPECT_EQ(options.lineFile, "/tmp/l");
  EXPECT_TRUE(options.strictLine);
  const sim::SounderOptions& sounder = options.sounder;
  EXPECT_EQ(sounder.outputMode, 10);
  EXPECT_EQ(sounder.identity, "1042");
  EXPECT_EQ(sounder.family, sim::DeviceFamily::second);
  EXPECT_EQ(sounder.frequency_hz, 200'000);
  EXPECT_EQ(sounder.firmware_hundredths, 195);
  EXPECT_EQ(sounder.pingsPerSecond, 12.5);
  EXPECT_EQ(sounder.sampleCount, 12'000);
  EXPECT_EQ(sounder.baud, 921'600);
  EXPECT_EQ(sounder.seed, 7u);
  EXPECT_TRUE(sounder.automatic && sounder.refusesDualOld && sounder.speedAtOnce);
  EXPECT_EQ(sounder.preset, 7);
  EXPECT_EQ(sounder.smoothing, sim::Smoothing::absent);
  EXPECT_EQ(sounder.binaryForm, sim::BinaryForm::frame);
  const sim::SounderFaults& faults = sounder.faults;
  EXPECT_EQ(faults.lacksFrom, "#threshold");
  EXPECT_TRUE(faults.lacksSilently);
  EXPECT_EQ(faults.informationBytes, 13);
  EXPECT_EQ(faults.prompt, sim::PromptStyle::split);
  EXPECT_EQ(faults.refused, (std::vector<std::string>{"#auto", "#smooth"}));
  EXPECT_EQ(faults.block, sim::BlockFault::missingKey);
  EXPECT_EQ(faults.missingKey, "#Altitude");
  EXPECT_EQ(faults.blockEvery, 5);
  EXPECT_EQ(faults.instrument.hangUpAt_us, 2'500'000);
  EXPECT_EQ(faults.instrument.silentFrom_us, 1'000'000);
  EXPECT_EQ(faults.instrument.silentFor_us, sim::kNever) << "no length: for ever";
  EXPECT_EQ(faults.stream, (std::vector{sim::StreamFault::lostBytes, sim::StreamFault::notANumber}));
  EXPECT_EQ(faults.streamRate, 0.01);
  EXPECT_EQ(options.gps.talker, sim::GpsTalker::gn);
  EXPECT_EQ(options.gps.latitude_deg, -33.875);
  EXPECT_EQ(options.gps.fixFrom_us, sim::kNever);
}

TEST(Options, WhatIsWrongIsNamed) {
  // The first option with its value is the wrong one.
  const char* const lines[] = {
      "--rate 0.5",   "--rate 51",    "--samples 99",      "--mode 10 --family 1",
      "--rate ten",   "--mode 5",     "--samples 12001",   "--mode 11 --family 2",
      "--rate nan",   "--family 3",   "--speed 12345",     "--stream-fault burnt",
      "--rate 5x",    "--prompt odd", "--smoothing yes",   "--identity A1 --family 2",
      "--firmware 0", "--preset 256", "--silent-from -1",  "--lacks #rangel --family 2",
      "--seed -1",    "--seed 1e3",   "--info-bytes 1001", "--seed 99999999999999999999",
  };
  for (const std::string line : lines) {
    ToolOptions options;
    std::string option, value;
    std::istringstream(line) >> option >> value;
    EXPECT_EQ(ErrorOf(line, options), option + " cannot be " + value);
  }
  ToolOptions options;
  EXPECT_EQ(ErrorOf("--bogus", options), "unknown option --bogus");
  EXPECT_EQ(ErrorOf("--rate", options), "--rate needs a value");
  EXPECT_EQ(ErrorOf("--frequency 200000", options), "--frequency is for families 2 and 0");
  EXPECT_EQ(ErrorOf("--dual --family 0", options), "--dual and --low are for family 1");
  std::string error;
  EXPECT_FALSE(ParseOptions(std::vector{"--link", ""}, options, error));
  EXPECT_EQ(error, "--link cannot be ");
}

// A binding's log, in a file of the test's own.
class BindingTest : public testing::Test {
 protected:
  BindingTest() { EXPECT_TRUE(log_.Create(path_)); }
  ~BindingTest() override { unlink(path_.c_str()); }

  const std::string path_ = ScratchPath("log");
  LineFile log_;
};

TEST_F(BindingTest, WhatTheLineDoesNotTakeIsDroppedAndCounted) {
  sim::VirtualEchosounder device({.streaming = true});
  Binding binding(device, std::make_unique<NarrowLine>(1'000), {.lost = &log_});
  binding.Pump(100'000);
  EXPECT_EQ(binding.Sent(), 1'152u) << "a tenth of a second";
  EXPECT_EQ(binding.Dropped(), 152u);
  EXPECT_EQ(Contents(path_), "dropped 100000 1000 152\n");
}

TEST_F(BindingTest, ReceivedBytesAreWrittenWithTheirTime) {
  sim::VirtualEchosounder device({});
  Binding binding(device, std::make_unique<NarrowLine>(1'000, "#auto\r\n \\\x01"), {.received = &log_});
  binding.Pump(42);
  EXPECT_EQ(binding.Received(), 10u);
  EXPECT_EQ(device.Commands().Total(), 1u);
  EXPECT_EQ(Contents(path_), "42 #auto\\r\\n \\x5C\\x01\n");
}

TEST_F(BindingTest, StrictLineCarriesNoiseWhileTheSpeedsDiffer) {
  for (const bool strict : {false, true}) {
    SCOPED_TRACE(strict);
    sim::VirtualEchosounder device({.streaming = true});
    auto terminal = std::make_unique<NarrowLine>(100'000, " ");
    NarrowLine& line = *terminal;
    line.settings_.baud = 9'600;
    Binding binding(device, std::move(terminal), {}, strict);
    binding.Pump(100'000);
    EXPECT_EQ(device.Streaming(), strict) << "the stop key is understood on a line without speed";
    EXPECT_EQ(line.sent_.find("#DeviceID") == std::string::npos, strict);
    EXPECT_GT(line.sent_.size(), 1'000u);
    line.settings_.baud = 115'200;
    line.input_ = " ";
    binding.Pump(100'001);
    EXPECT_FALSE(device.Streaming());
  }
}

TEST_F(BindingTest, AnswerToTheResetLeavesAStrictLineAtTheOldSpeed) {
  sim::VirtualEchosounder device({});
  auto terminal = std::make_unique<NarrowLine>(100'000, "#speed 3000000\r#reset\r");
  NarrowLine& line = *terminal;
  Binding binding(device, std::move(terminal), {.line = &log_}, true);
  for (const int64_t now_us : {0, 1'000'000}) binding.Pump(now_us);
  EXPECT_EQ(line.sent_, "#speed 3000000\r\n\r\n>#reset\r\n\r\n>");
  line.input_ = "#time\r";
  binding.Pump(2'000'000);
  EXPECT_EQ(device.Commands().Total(), 2u) << "the program is not there yet";
  line.settings_ = {3'000'000, 7, 'E', 2, true};
  line.input_ = "#time\r";
  binding.Pump(3'000'000);
  EXPECT_EQ(device.Commands().Total(), 3u);
  EXPECT_EQ(Contents(path_),
            "line 0 115200 8N1 none 115200\n"
            "line 1000000 115200 8N1 none 3000000\n"
            "line 3000000 3000000 7E2 rtscts 3000000\n");
}

TEST_F(BindingTest, HangUpClosesTheLine) {
  sim::VirtualEchosounder device({.faults = {.instrument = {.hangUpAt_us = 5'000}}});
  Binding binding(device, std::make_unique<NarrowLine>(1'000), {});
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
    Binding binding(device, OpenTerminal(link, 115'200, error), {});
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
  Binding binding(device, OpenTerminal(link, 3'000'000, error), {});
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
