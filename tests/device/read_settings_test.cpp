// Reading the whole parameter set, with each query failing in turn in each way.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "device/serial_ports.h"
#include "device/settings_readers.h"
#include "platform/host/faults.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "tests/device/first_family_queries.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

using test::After;
using test::kQueries;
using test::Query;

constexpr wchar_t kLine[] = L"\\\\.\\COM5";
constexpr size_t kNone = std::size(kQueries);

// A record in which every field shows whether it was set; the filters are small enough to be replaced.
DeviceSettings Before() {
  DeviceSettings settings;
  std::memset(&settings, 0x11, sizeof settings);
  std::memset(settings.identity, 0, sizeof settings.identity);
  settings.medianFilter = 0;
  settings.movingAverageFilter = 0;
  return settings;
}

// What stays when the query `failing` fails, and with it all later ones when the line is gone.
DeviceSettings Kept(size_t failing, bool gone) {
  DeviceSettings settings = Before();
  for (size_t i = 0; i < kNone; ++i) {
    const bool skipped = (failing == test::kAuto && i == test::kPreset) ||
                         (failing == test::kSmooth && i == test::kOutputRate);
    if (i == failing) {
      if (i == test::kSmooth) settings.smoothing = 0;
      if (i == test::kSmooth) settings.outputRate = 0.f;
      if (i == test::kMedian || (i == test::kSmooth && gone)) settings.medianFilter = 2;
      if (i == test::kMovingAverage) settings.movingAverageFilter = 1;
      if (gone || kQueries[i].after != After::goesOn) break;
    } else if (i == test::kIdentity) {
      std::memcpy(settings.identity, "KT-1042", 7);
    } else if (!skipped) {
      kQueries[i].field.Set(settings, kQueries[i].kept);
    }
  }
  return settings;
}

// True when the reading comes to the query, and it succeeds.
bool IsAnswered(size_t query, size_t failing, bool gone) {
  if (query < failing) return true;
  return query > failing && !gone && kQueries[failing].after == After::goesOn;
}

std::string Reply(const Query& query) {
  return std::string(query.keyword) + "\r\n" + query.answer + "\r\n\r\n>";
}

class ReadSettingsTest : public testing::Test {
 protected:
  ~ReadSettingsTest() override { ClearFaults(); }

  void Read(const std::vector<std::string>& replies, DeviceSettings before = Before()) {
    device_ = test::LineScript();
    for (const std::string& reply : replies) device_.replies.push_back({reply});
    globals = Globals{};
    globals.presetCapable = 7;
    globals.currentPreset = 7;
    settings_ = before;
    const VirtualClock clock(1'700'000'000'000);
    AttachPeer(kLine, &device_);
    const Handle port = OpenDevicePort(5, 115'200);
    result_ = ReadAllSettings(port, settings_);
    CloseSerialLine(port);
    DetachSerialLines();
  }

  void Expect(size_t failing, bool gone) const {
    const DeviceSettings kept = Kept(failing, gone);
    const bool fails = failing < kNone && kQueries[failing].after == After::fails;
    EXPECT_EQ(result_, fails ? LinkResult::invalid : LinkResult::success);
    for (const Query& query : kQueries) {
      EXPECT_EQ(query.field.Get(settings_), query.field.Get(kept)) << "of " << query.keyword;
    }
    EXPECT_STREQ(settings_.identity, kept.identity);
    EXPECT_EQ(std::memcmp(&settings_, &kept, sizeof kept), 0) << "fields that no query tells";
    EXPECT_EQ(globals.firmwareVersion, IsAnswered(test::kFirmware, failing, gone) ? 1.25f : 0.f);
  }

  test::LineScript device_;
  DeviceSettings settings_{};
  LinkResult result_ = LinkResult::success;
};

// The replies when the query `failing` is answered with this, and what the device then receives.
struct Script {
  std::vector<std::string> replies;
  std::string received;
};

Script ScriptOf(size_t failing, const char* answer) {
  Script script;
  for (size_t i = 0; i < kNone; ++i) {
    if (failing == test::kAuto && i == test::kPreset) continue;
    if (failing == test::kSmooth && i == test::kOutputRate) continue;
    const bool fails = i == failing;
    script.received += kQueries[i].keyword + std::string("\r");
    script.replies.push_back(fails ? answer : Reply(kQueries[i]));
    if (fails && kQueries[i].after != After::goesOn) break;
  }
  return script;
}

TEST_F(ReadSettingsTest, AllThatTheDeviceTells) {
  const Script script = ScriptOf(kNone, "");
  Read(script.replies);
  Expect(kNone, false);
  EXPECT_EQ(device_.received, script.received);
  EXPECT_EQ(globals.presetCapable, 1);
  EXPECT_EQ(globals.currentPreset, 3);
  EXPECT_EQ(globals.smoothingSupported, 1);
  EXPECT_EQ(globals.highChannelActive, 1) << "447 kHz in use is the high frequency";
}

TEST_F(ReadSettingsTest, EachQueryFailingInItsTurn) {
  // Silence, no value line, and a refusal, which for the identity is a line like any other.
  for (const char* answer : {"", "#x\r\n\r\n>", "#x\r\nError\r\n\r\n>"}) {
    for (size_t failing = 0; failing < kNone; ++failing) {
      if (failing == test::kIdentity && std::strstr(answer, "Error") != nullptr) continue;
      SCOPED_TRACE(std::string(kQueries[failing].keyword) + " answered with " + answer);
      const Script script = ScriptOf(failing, answer);
      Read(script.replies);
      Expect(failing, false);
      EXPECT_EQ(device_.received, script.received);
      EXPECT_EQ(globals.presetCapable, failing < 2 ? 7 : failing == test::kAuto ? 0 : 1);
      EXPECT_EQ(globals.currentPreset, failing <= test::kPreset ? 7 : 3);
      EXPECT_EQ(globals.smoothingSupported, IsAnswered(test::kSmooth, failing, false) ? 1 : 0);
    }
  }
}

TEST_F(ReadSettingsTest, ARefusedIdentityIsALineLikeAnyOther) {
  std::vector<std::string> replies = ScriptOf(kNone, "").replies;
  replies[test::kIdentity] = "#iden\r\nError\r\n\r\n>";
  Read(replies);
  EXPECT_STREQ(settings_.identity, "Error");
  EXPECT_EQ(settings_.movingAverageFilter, 4);
}

TEST_F(ReadSettingsTest, EachWriteFailing) {
  for (size_t call = 0; call < 2 * kNone; ++call) {
    const size_t failing = call / 2;  // keyword and carriage return
    SCOPED_TRACE(std::string(kQueries[failing].keyword) + (call % 2 == 0 ? ", keyword" : ", return"));
    std::vector<std::string> replies = ScriptOf(failing, "never").replies;
    std::erase(replies, "never");
    InjectFault({.point = FaultPoint::writeLine, .call = call + 1});
    Read(replies);
    Expect(failing, false);
    ClearFaults();
  }
}

TEST_F(ReadSettingsTest, TheLineFailingAtEachByte) {
  const std::vector<std::string> replies = ScriptOf(kNone, "").replies;
  size_t failing = 0;
  size_t ofReply = 0;
  for (uint64_t bytes = 0; failing < kNone; ++bytes) {
    SCOPED_TRACE(std::string(kQueries[failing].keyword) + ", byte " + std::to_string(ofReply));
    HangUpLine(kLine, bytes);
    Read(replies);
    Expect(failing, true);
    ClearFaults();
    if (++ofReply == replies[failing].size()) {
      ++failing;
      ofReply = 0;
    }
  }
}

TEST_F(ReadSettingsTest, TheAutomaticModeIsPresetTenWithoutAsking) {
  std::vector<std::string> replies = ScriptOf(kNone, "").replies;
  replies[test::kAuto] = "#auto\r\n1\r\n\r\n>";
  replies.erase(replies.begin() + test::kPreset);
  Read(replies);
  EXPECT_EQ(result_, LinkResult::success);
  EXPECT_EQ(settings_.preset, 10);
  EXPECT_EQ(globals.currentPreset, 10);
  EXPECT_EQ(settings_.movingAverageFilter, 4);
}

TEST_F(ReadSettingsTest, WhileSmoothingTheFiltersAreAskedInVain) {
  std::vector<std::string> replies = ScriptOf(kNone, "").replies;
  replies[test::kSmooth] = "#smooth\r\n1\r\n\r\n>";
  replies[test::kMedian] = "#medianflt\r\nError\r\n\r\n>";
  replies[test::kMovingAverage] = "#movavgflt\r\nError\r\n\r\n>";
  Read(replies);
  EXPECT_EQ(result_, LinkResult::success);
  EXPECT_EQ(settings_.medianFilter, 0);
  EXPECT_EQ(settings_.movingAverageFilter, 0);
  EXPECT_TRUE(device_.received.ends_with("#medianflt\r#movavgflt\r"));
}

TEST_F(ReadSettingsTest, FiltersThatAreLargeEnoughStay) {
  const struct {
    int32_t before, after;
  } medians[] = {{2, 2}, {3, 3}, {7, 7}, {-1, 2}}, averages[] = {{0, 1}, {1, 1}, {2, 2}, {9, 9}};
  for (const auto& row : medians) {
    DeviceSettings before = Before();
    before.medianFilter = row.before;
    Read(ScriptOf(test::kMedian, "x\r\n\r\n>").replies, before);
    EXPECT_EQ(settings_.medianFilter, row.after) << row.before;
  }
  for (const auto& row : averages) {
    DeviceSettings before = Before();
    before.movingAverageFilter = row.before;
    Read(ScriptOf(test::kMovingAverage, "x\r\n\r\n>").replies, before);
    EXPECT_EQ(settings_.movingAverageFilter, row.after) << row.before;
  }
}

TEST_F(ReadSettingsTest, TheHighChannelIsActiveOnlyAlone) {
  const struct {
    const char* inUse;
    const char* simultaneous;
    int32_t active;
  } rows[] = {{"447000", "0", 1}, {"199000", "0", 0}, {"447000", "1", 0}};
  for (const auto& row : rows) {
    std::vector<std::string> replies = ScriptOf(kNone, "").replies;
    replies[test::kInUse] = std::string("#getfreq\r\n") + row.inUse + "\r\n\r\n>";
    replies[test::kSimultaneous] = std::string("##getsimul\r\n") + row.simultaneous + "\r\n\r\n>";
    Read(replies);
    EXPECT_EQ(globals.highChannelActive, row.active) << row.inUse << " " << row.simultaneous;
  }
}

TEST_F(ReadSettingsTest, AnIntervalBeyondReasonIsNotTaken) {
  const struct {
    const char* interval;
    int32_t kept;
  } rows[] = {{"0", 0}, {"0.0157", 15}, {"3600", 3'600'000}, {"3601", 0x11111111}, {"-0.5", 0x11111111}};
  for (const auto& row : rows) {
    std::vector<std::string> replies = ScriptOf(kNone, "").replies;
    replies[test::kInterval] = std::string("#interval\r\n") + row.interval + "\r\n\r\n>";
    Read(replies);
    EXPECT_EQ(settings_.pingInterval_ms, row.kept) << row.interval;
    EXPECT_EQ(settings_.movingAverageFilter, 4) << "the reading goes on";
  }
}

}  // namespace
}  // namespace tw
