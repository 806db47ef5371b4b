// The older command set: what is kept when a device answers all, and when it fails at each query.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "app/app_state.h"
#include "device/serial_ports.h"
#include "device/settings_readers.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

using S = DeviceSettings;

struct Query {
  const char* keyword;
  const char* answer;
  void (*keep)(S&);  // what the answer leaves in the record
};

constexpr Query kQueries[] = {
    {"#iden", "1042", [](S& s) { s.identifierWord = 1042; }},
    {"#range", "50", [](S& s) { s.rangeHigh_mm = 50; }},
    {"#auto", "0", [](S& s) { s.automaticMode = 0; }},
    {"#preset", "255", [](S& s) { s.preset = 255; }},
    {"#interval", "0.1", [](S& s) { s.pingInterval_ms = 100; }},
    {"#output", "5", [](S& s) { s.outputMode = 5; }},
    {"#threshold", "20", [](S& s) { s.thresholdHigh_percent = 20; }},
    {"#offset", "-30", [](S& s) { s.offsetHigh_mm = -30; }},
    {"#deadzone", "150", [](S& s) { s.deadZoneHigh_mm = 150; }},
    {"#txlength", "50", [](S& s) { s.txLengthHigh = 50; }},
    {"#gain", "-2.5", [](S& s) { s.gainHigh = -2.5f; }},
    {"#tvgmode", "1", [](S& s) { s.tvgMode = 1; }},
    {"#tvgsprd", "15.5", [](S& s) { s.tvgSpreadingHigh = 15.5f; }},
    {"#tvgabs", "0.125", [](S& s) { s.tvgAbsorptionHigh = 0.125f; }},
    {"#sound", "1500", [](S& s) { s.soundSpeed_mps = 1500.f; }},
    {"#getfreq", "450000",
     [](S& s) { s.frequencyInUse_hz = s.highFrequency_hz = s.virtualHighFrequency_hz = 450'000; }},
    {"#samplfreq", "100000", [](S& s) { s.samplingFrequency_hz = 100'000; }},
    {"#medianflt", "3", [](S& s) { s.medianFilter = 3; }},
    {"#movavgflt", "4", [](S& s) { s.movingAverageFilter = 4; }},
    {"#swversion", "2.25", [](S&) {}},
};
constexpr size_t kAuto = 2;
constexpr size_t kNone = std::size(kQueries);

TEST(SecondFamily, EachQueryFailingInItsTurn) {
  for (size_t failing = 0; failing <= kNone; ++failing) {
    for (const bool mute : {false, true}) {
      SCOPED_TRACE((mute ? "mute " : "refused ") + std::to_string(failing));
      test::LineScript device;
      std::string asked;
      S kept;
      std::memset(&kept, 0x11, sizeof kept);
      S settings = kept;
      for (size_t i = 0; i < kNone; ++i) {
        if (failing == kAuto && i == kAuto + 1) continue;  // a device without the one is not asked the other
        const bool fails = i == failing;
        asked += kQueries[i].keyword + std::string("\r");
        const std::string echo = kQueries[i].keyword + std::string("\r\n");
        device.replies.push_back(
            {fails ? (mute ? "" : echo + "Error\r\n\r\n>") : echo + kQueries[i].answer + "\r\n\r\n>"});
        if (!fails) kQueries[i].keep(kept);
        if (fails && i != kAuto) break;
      }
      globals = Globals{};
      const VirtualClock clock(0);
      AttachPeer(L"\\\\.\\COM5", &device);
      const Handle port = OpenDevicePort(5, 115'200);
      EXPECT_EQ(ReadSecondFamilySettings(port, settings),
                failing < 2 ? LinkResult::invalid : LinkResult::success);
      EXPECT_EQ(device.received, asked);
      EXPECT_EQ(std::memcmp(&settings, &kept, sizeof kept), 0);
      EXPECT_EQ(globals.presetCapable, failing > kAuto ? 1 : 0);
      EXPECT_EQ(globals.firmwareVersion, failing == kNone || failing == kAuto ? 2.25f : 0.f);
      CloseSerialLine(port);
      DetachSerialLines();
    }
  }
}

}  // namespace
}  // namespace tw
