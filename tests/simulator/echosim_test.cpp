// The tool around the simulator: a line whose speeds may differ, and its link.
#include <gtest/gtest.h>

#include "simulator/virtual_echosounder.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tools/echosim/binding.h"

namespace tw::echosim {
namespace {

// A line that keeps what it is sent, and hands over what a test puts in.
struct KeepingLine final : Terminal {
  explicit KeepingLine(std::string input) : input_(std::move(input)) {}
  std::string Name() const override { return "kept"; }
  size_t Read(std::span<uint8_t> out) override {
    const size_t count = input_.copy(reinterpret_cast<char*>(out.data()), out.size());
    input_.erase(0, count);
    return count;
  }
  size_t Write(std::span<const uint8_t> bytes) override {
    sent_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return bytes.size();
  }
  void SetSpeed(int32_t) override {}
  bool OtherEnd(LineSettings& settings) const override {
    settings = settings_;
    return true;
  }

  std::string input_;
  std::string sent_;
  LineSettings settings_{115'200, 8, 'N', 1, false};
};

// A binding's log, in a file of the test's own.
class BindingTest : public testing::Test {
 protected:
  BindingTest() { EXPECT_TRUE(log_.Create(path_)); }

  const test::TestFolder folder_;
  const std::string path_ = folder_.Path() / "log";
  LineFile log_;
};

TEST_F(BindingTest, StrictLineCarriesNoiseWhileTheSpeedsDiffer) {
  for (const bool strict : {false, true}) {
    SCOPED_TRACE(strict);
    sim::VirtualEchosounder device({.streaming = true});
    auto terminal = std::make_unique<KeepingLine>(" ");
    KeepingLine& line = *terminal;
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
  auto terminal = std::make_unique<KeepingLine>("#speed 3000000\r#reset\r");
  KeepingLine& line = *terminal;
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
  EXPECT_EQ(test::ReadWhole(path_),
            "line 0 115200 8N1 none 115200\n"
            "line 1000000 115200 8N1 none 3000000\n"
            "line 3000000 3000000 7E2 rtscts 3000000\n");
}

TEST(PseudoTerminal, LeavesAloneWhatIsNoLink) {
  const test::TestFolder folder;
  const std::string path = folder.Path() / "file";
  test::WriteWhole(path, "precious");
  std::string error;
  EXPECT_EQ(OpenTerminal(path, 115'200, error), nullptr);
  EXPECT_NE(error.find(path), std::string::npos);
  EXPECT_EQ(test::ReadWhole(path), "precious");
}

}  // namespace
}  // namespace tw::echosim
