// Every output mode that a device of each family can be set to, through Start and Stop: the right worker
// understands the stream, shows it and records it. What the values are is told by the tests of each mode.
#include <gtest/gtest.h>

#include "app/run_control.h"
#include "base/shared_value.h"
#include "simulator/virtual_echosounder.h"
#include "tests/app/run_control_fixture.h"

namespace tw {
namespace {

using sim::DeviceFamily;

struct Case {
  DeviceFamily family;
  int32_t mode;
  bool samples;
};

void PrintTo(const Case& each, std::ostream* out) {
  *out << "family " << static_cast<int>(each.family) << " mode " << each.mode;
}

class EveryMode : public test::RunControlTest, public testing::WithParamInterface<Case> {};

TEST_P(EveryMode, IsShownAndRecorded) {
  const Case& each = GetParam();
  sim::SounderOptions options = test::QuickSounder();
  options.family = each.family;
  options.outputMode = each.mode;
  options.depth_m = 4.0;  // within the few samples
  options.relief_m = 0.5;
  options.delivery_us = 1'000;
  ConnectSounder(options);
  StartRun(*state_);
  ASSERT_TRUE(test::Ui().boxes.empty()) << "a box was shown at Start";
  EXPECT_EQ(LoadShared(globals.deviceFamily), static_cast<int32_t>(each.family));
  EXPECT_EQ(state_->settings.outputMode, each.mode);
  EXPECT_EQ(state_->echogramEnabled, each.samples ? 1 : 0);
  Run(3);
  EXPECT_GE(LoadShared(globals.pingCounter), 20u);
  EXPECT_GT(LoadShared(globals.latestAltitudeHigh_m), 3.0f);
  StopRun(*state_);
  ExpectIdle();
  ASSERT_EQ(RecordFiles().size(), 1u);
  const std::string file = Content(RecordFiles()[0]);
  EXPECT_TRUE(file.starts_with("INFO:"));
  EXPECT_GT(file.size(), 1'000u);
}

constexpr DeviceFamily kFirst = DeviceFamily::first;
constexpr DeviceFamily kSecond = DeviceFamily::second;
constexpr DeviceFamily kThird = DeviceFamily::third;
constexpr Case kCases[] = {
    {kFirst, 1, false},   {kFirst, 2, true},    {kFirst, 3, false},  {kFirst, 4, true},
    {kFirst, 6, false},   {kFirst, 7, false},   {kFirst, 8, false},  {kFirst, 9, false},
    {kFirst, 100, true},  {kFirst, 101, true},  {kSecond, 1, false}, {kSecond, 2, true},
    {kSecond, 3, false},  {kSecond, 4, true},   {kSecond, 5, true},  {kSecond, 6, true},
    {kSecond, 7, false},  {kSecond, 8, false},  {kSecond, 9, false}, {kSecond, 10, false},
    {kSecond, 100, true}, {kSecond, 101, true}, {kThird, 1, false},  {kThird, 2, true},
    {kThird, 3, false},   {kThird, 4, true},    {kThird, 5, true},   {kThird, 6, true},
    {kThird, 7, false},   {kThird, 8, false},   {kThird, 9, false},  {kThird, 10, false}};

INSTANTIATE_TEST_SUITE_P(Modes, EveryMode, testing::ValuesIn(kCases), [](const auto& each) {
  return "Family" + std::to_string(static_cast<int>(each.param.family)) + "Mode" +
         std::to_string(each.param.mode);
});

}  // namespace
}  // namespace tw
