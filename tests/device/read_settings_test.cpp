// Reading the whole parameter set from the virtual echosounder, with each query failing in turn.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "device/serial_ports.h"
#include "device/settings_readers.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "simulator/virtual_echosounder.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

constexpr wchar_t kLine[] = L"\\\\.\\COM5";

enum class After : uint8_t { fails, ends, goesOn };

// What a query fills, in the order of the sequence. A field is named by a reader, so that fields of both
// types and of the process-wide values can stand in one table.
using Field = double (*)(const DeviceSettings&);
struct Query {
  const char* keyword;
  After after;
  Field field;
};

#define FIELD(name) [](const DeviceSettings& s) { return static_cast<double>(s.name); }
const Query kQueries[] = {
    {"##maxrangel", After::fails, FIELD(maxRangeLow_mm)},
    {"#rangeh", After::fails, FIELD(rangeHigh_mm)},
    {"#auto", After::goesOn, FIELD(automaticMode)},
    {"#preset", After::ends, FIELD(preset)},
    {"##maxrangeh", After::ends, FIELD(maxRangeHigh_mm)},
    {"##maxlengthh", After::ends, FIELD(maxLengthHigh)},
    {"##maxlengthl", After::ends, FIELD(maxLengthLow)},
    {"#swversion", After::fails,
     [](const DeviceSettings&) { return static_cast<double>(globals.firmwareVersion); }},
    {"#getfreq", After::fails, FIELD(frequencyInUse_hz)},
    {"#rangel", After::fails, FIELD(rangeLow_mm)},
    {"#interval", After::ends, FIELD(pingInterval_ms)},
    {"#output", After::ends, FIELD(outputMode)},
    {"#thresholdl", After::ends, FIELD(thresholdLow_percent)},
    {"#thresholdh", After::ends, FIELD(thresholdHigh_percent)},
    {"#offsetl", After::ends, FIELD(offsetLow_mm)},
    {"#offseth", After::ends, FIELD(offsetHigh_mm)},
    {"#deadzonel", After::ends, FIELD(deadZoneLow_mm)},
    {"#deadzoneh", After::ends, FIELD(deadZoneHigh_mm)},
    {"#txlengthl", After::ends, FIELD(txLengthLow)},
    {"#txlengthh", After::ends, FIELD(txLengthHigh)},
    {"#gainlow", After::ends, FIELD(gainLow)},
    {"#gainhigh", After::ends, FIELD(gainHigh)},
    {"#tvgsprdl", After::ends, FIELD(tvgSpreadingLow)},
    {"#tvgsprdh", After::ends, FIELD(tvgSpreadingHigh)},
    {"#tvgabslow", After::ends, FIELD(tvgAbsorptionLow)},
    {"#tvgabshigh", After::ends, FIELD(tvgAbsorptionHigh)},
    {"##freql", After::ends, FIELD(lowFrequency_hz)},
    {"##freqh", After::ends, FIELD(highFrequency_hz)},
    {"#tvgmode", After::ends, FIELD(tvgMode)},
    {"#iden", After::goesOn,
     [](const DeviceSettings& s) { return static_cast<double>(std::strlen(s.identity)); }},
    {"#sound", After::ends, FIELD(soundSpeed_mps)},
    {"#txpower", After::ends, FIELD(txPower)},
    {"#samplfreq", After::ends, FIELD(samplingFrequency_hz)},
    {"#attnl", After::ends, FIELD(attenuationLow)},
    {"#attnh", After::ends, FIELD(attenuationHigh)},
    {"##vfreql", After::ends, FIELD(virtualLowFrequency_hz)},
    {"##vfreqh", After::ends, FIELD(virtualHighFrequency_hz)},
    {"##getsimul", After::ends, FIELD(simultaneous)},
    {"#smooth", After::goesOn, FIELD(smoothing)},
    {"#outrate", After::ends, FIELD(outputRate)},
    {"#medianflt", After::ends, FIELD(medianFilter)},
    {"#movavgflt", After::goesOn, FIELD(movingAverageFilter)},
};
#undef FIELD

constexpr double kUntouched = -77.0;

DeviceSettings Untouched() {
  DeviceSettings settings{};
  uint32_t word;
  const auto whole = static_cast<int32_t>(kUntouched);
  const auto real = static_cast<float>(kUntouched);
  auto* bytes = reinterpret_cast<char*>(&settings);
  // Whole numbers everywhere, then the floats of the record.
  std::memcpy(&word, &whole, sizeof word);
  for (size_t i = 0; i + sizeof word <= sizeof settings; i += sizeof word)
    std::memcpy(bytes + i, &word, sizeof word);
  for (float DeviceSettings::*field :
       {&DeviceSettings::txPower, &DeviceSettings::tvgSpreadingLow, &DeviceSettings::tvgSpreadingHigh,
        &DeviceSettings::tvgAbsorptionLow, &DeviceSettings::tvgAbsorptionHigh, &DeviceSettings::gainLow,
        &DeviceSettings::gainHigh, &DeviceSettings::soundSpeed_mps, &DeviceSettings::outputRate}) {
    settings.*field = real;
  }
  settings.identity[0] = '\0';
  return settings;
}

struct Reading {
  LinkResult result;
  DeviceSettings settings;
};

Reading ReadFrom(const sim::SounderOptions& options) {
  VirtualClock clock(1'700'000'000'000);
  sim::VirtualEchosounder sounder(options);
  test::SimulatorPeer peer(sounder);
  AttachPeer(kLine, &peer);
  const Handle port = OpenDevicePort(5, 115'200);
  globals = Globals{};
  globals.firmwareVersion = static_cast<float>(kUntouched);
  Reading reading{LinkResult::success, Untouched()};
  reading.result = ReadAllSettings(port, reading.settings);
  CloseSerialLine(port);
  DetachSerialLines();
  return reading;
}

bool IsUntouched(const Query& query, const DeviceSettings& settings) {
  if (std::string_view(query.keyword) == "#iden") return settings.identity[0] == '\0';
  return query.field(settings) == kUntouched;
}

TEST(ReadSettings, AllThatTheDeviceTells) {
  sim::SounderOptions options;
  options.identity = "KT-1042";
  options.range_mm = 40'000;
  options.outputMode = 4;
  const Reading reading = ReadFrom(options);
  ASSERT_EQ(reading.result, LinkResult::success);
  for (const Query& query : kQueries) EXPECT_FALSE(IsUntouched(query, reading.settings)) << query.keyword;
  const DeviceSettings& s = reading.settings;
  EXPECT_STREQ(s.identity, "KT-1042");
  EXPECT_EQ(s.rangeLow_mm, 40'000);
  EXPECT_EQ(s.rangeHigh_mm, 40'000);
  EXPECT_EQ(s.outputMode, 4);
  EXPECT_EQ(s.samplingFrequency_hz, 25'000);
  EXPECT_EQ(globals.presetCapable, 1);
  EXPECT_EQ(globals.smoothingSupported, 1);
  EXPECT_EQ(globals.highChannelActive, s.frequencyInUse_hz == s.highFrequency_hz ? 1 : 0);
}

TEST(ReadSettings, EachQueryFailingInItsTurn) {
  for (const char* kind : {"refused", "mute"}) {
    size_t asked = 0;
    for (const Query& query : kQueries) {
      SCOPED_TRACE(std::string(kind) + " " + query.keyword);
      sim::SounderOptions options;
      (kind[0] == 'r' ? options.faults.refused : options.faults.mute) = {query.keyword};
      const Reading reading = ReadFrom(options);
      EXPECT_EQ(reading.result, query.after == After::fails ? LinkResult::invalid : LinkResult::success);
      // "Error" is a line like any other for the identity.
      const bool identityLine = kind[0] == 'r' && std::string_view(query.keyword) == "#iden";
      const bool ends =
          query.after != After::goesOn || (std::string_view(query.keyword) == "#iden" && !identityLine);
      for (size_t i = 0; i < std::size(kQueries); ++i) {
        const bool untouched = IsUntouched(kQueries[i], reading.settings);
        if (i < asked) {
          EXPECT_FALSE(untouched) << kQueries[i].keyword;
        } else if (i > asked && ends) {
          EXPECT_TRUE(untouched) << kQueries[i].keyword;
        }
      }
      ++asked;
    }
  }
}

TEST(ReadSettings, WhatIsKeptWithoutTheLaterCommands) {
  sim::SounderOptions options;
  options.faults.refused = {"#smooth"};
  Reading reading = ReadFrom(options);
  EXPECT_EQ(reading.settings.smoothing, 0);
  EXPECT_EQ(reading.settings.outputRate, 0.f);
  EXPECT_EQ(globals.smoothingSupported, 0);
  EXPECT_NE(reading.settings.medianFilter, static_cast<int32_t>(kUntouched));

  options.faults.refused = {"#medianflt"};
  reading = ReadFrom(options);
  EXPECT_EQ(reading.settings.medianFilter, 2);
  options.faults.refused = {"#movavgflt"};
  reading = ReadFrom(options);
  EXPECT_EQ(reading.settings.movingAverageFilter, 1);

  options.faults.refused = {"#auto"};
  reading = ReadFrom(options);
  EXPECT_EQ(globals.presetCapable, 0);
  EXPECT_EQ(reading.settings.preset, static_cast<int32_t>(kUntouched));
  EXPECT_STREQ(reading.settings.identity, options.identity.c_str());
}

}  // namespace
}  // namespace tw
