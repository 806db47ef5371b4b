// The 43 queries with which a device of the first family tells its settings, in their order: what a device
// may answer, what the program then keeps, what a failure does to the reading, and the virtual
// echosounder's own name of the value.
#pragma once

#include <cstdint>

#include "device/device_settings.h"
#include "simulator/sounder_settings.h"

namespace tw::test {

enum class After : uint8_t { fails, ends, goesOn };

// A field of the record of either type; none for what stands elsewhere.
struct SettingsField {
  constexpr SettingsField() = default;
  constexpr SettingsField(int32_t DeviceSettings::*field) : whole(field) {}
  constexpr SettingsField(float DeviceSettings::*field) : real(field) {}

  void Set(DeviceSettings& settings, double value) const {
    if (whole != nullptr) settings.*whole = static_cast<int32_t>(value);
    if (real != nullptr) settings.*real = static_cast<float>(value);
  }
  [[nodiscard]] double Get(const DeviceSettings& settings) const {
    if (whole != nullptr) return settings.*whole;
    return real != nullptr ? static_cast<double>(settings.*real) : 0.0;
  }

  int32_t DeviceSettings::*whole = nullptr;
  float DeviceSettings::*real = nullptr;
};

struct Query {
  const char* keyword;
  const char* answer;
  double kept;
  After after;
  SettingsField field;
  sim::Setting setting;
};

using S = DeviceSettings;
using V = sim::Setting;

inline constexpr size_t kAuto = 2;
inline constexpr size_t kPreset = 3;
inline constexpr size_t kFirmware = 7;
inline constexpr size_t kInUse = 8;
inline constexpr size_t kInterval = 11;
inline constexpr size_t kIdentity = 30;
inline constexpr size_t kSimultaneous = 38;
inline constexpr size_t kSmooth = 39;
inline constexpr size_t kOutputRate = 40;
inline constexpr size_t kMedian = 41;
inline constexpr size_t kMovingAverage = 42;

inline constexpr Query kQueries[] = {
    {"##maxrangel", "201000", 201'000, After::fails, &S::maxRangeLow_mm, V::maxRangeLow},
    {"#rangeh", "31000", 31'000, After::fails, &S::rangeHigh_mm, V::rangeHigh},
    {"#auto", "0", 0, After::goesOn, &S::automaticMode, V::automatic},
    {"#preset", "3", 3, After::ends, &S::preset, V::preset},
    {"##maxrangeh", "101000", 101'000, After::ends, &S::maxRangeHigh_mm, V::maxRangeHigh},
    {"##maxlengthh", "205", 205, After::ends, &S::maxLengthHigh, V::maxLengthHigh},
    {"##maxlengthl", "410", 410, After::ends, &S::maxLengthLow, V::maxLengthLow},
    {"#swversion", "1.25", 1.25, After::fails, {}, V::firmware},
    {"#getfreq", "447000", 447'000, After::fails, &S::frequencyInUse_hz, V::frequencyInUse},
    {"#rangel", "61000", 61'000, After::fails, &S::rangeLow_mm, V::rangeLow},
    {"#rangeh", "32000", 32'000, After::fails, &S::rangeHigh_mm, V::rangeHigh},
    {"#interval", "0.25", 250, After::ends, &S::pingInterval_ms, V::interval},
    {"#output", "5", 6, After::ends, &S::outputMode, V::output},
    {"#thresholdl", "21", 21, After::ends, &S::thresholdLow_percent, V::thresholdLow},
    {"#thresholdh", "22", 22, After::ends, &S::thresholdHigh_percent, V::thresholdHigh},
    {"#offsetl", "-11", -11, After::ends, &S::offsetLow_mm, V::offsetLow},
    {"#offseth", "+12", 12, After::ends, &S::offsetHigh_mm, V::offsetHigh},
    {"#deadzonel", "151", 151, After::ends, &S::deadZoneLow_mm, V::deadZoneLow},
    {"#deadzoneh", "152", 152, After::ends, &S::deadZoneHigh_mm, V::deadZoneHigh},
    {"#txlengthl", "41", 41, After::ends, &S::txLengthLow, V::txLengthLow},
    {"#txlengthh", "42", 42, After::ends, &S::txLengthHigh, V::txLengthHigh},
    {"#gainlow", "-1.5", -1.5, After::ends, &S::gainLow, V::gainLow},
    {"#gainhigh", "2.5", 2.5, After::ends, &S::gainHigh, V::gainHigh},
    {"#tvgsprdl", "15.5", 15.5, After::ends, &S::tvgSpreadingLow, V::tvgSpreadingLow},
    {"#tvgsprdh", "20.5", 20.5, After::ends, &S::tvgSpreadingHigh, V::tvgSpreadingHigh},
    {"#tvgabslow", "0.0625", 0.0625, After::ends, &S::tvgAbsorptionLow, V::tvgAbsorptionLow},
    {"#tvgabshigh", ".125", 0.125, After::ends, &S::tvgAbsorptionHigh, V::tvgAbsorptionHigh},
    {"##freql", "199000", 199'000, After::ends, &S::lowFrequency_hz, V::frequencyLow},
    {"##freqh", "447000", 447'000, After::ends, &S::highFrequency_hz, V::frequencyHigh},
    {"#tvgmode", "2", 2, After::ends, &S::tvgMode, V::tvgMode},
    {"#iden", "KT-1042", 0, After::ends, {}, V::count},
    {"#sound", "1487.5", 1487.5, After::ends, &S::soundSpeed_mps, V::sound},
    {"#txpower", "87.5", 87.5, After::ends, &S::txPower, V::txPower},
    {"#samplfreq", "25000", 25'000, After::ends, &S::samplingFrequency_hz, V::samplingFrequency},
    {"#attnl", "1", 1, After::ends, &S::attenuationLow, V::attenuationLow},
    {"#attnh", "2", 2, After::ends, &S::attenuationHigh, V::attenuationHigh},
    {"##vfreql", "200000", 200'000, After::ends, &S::virtualLowFrequency_hz, V::virtualFrequencyLow},
    {"##vfreqh", "450000", 450'000, After::ends, &S::virtualHighFrequency_hz, V::virtualFrequencyHigh},
    {"##getsimul", "0", 0, After::ends, &S::simultaneous, V::simultaneous},
    {"#smooth", "0", 0, After::goesOn, &S::smoothing, V::smooth},
    {"#outrate", "7.5", 7.5, After::ends, &S::outputRate, V::outputRate},
    {"#medianflt", "5", 5, After::ends, &S::medianFilter, V::medianFilter},
    {"#movavgflt", "4", 4, After::ends, &S::movingAverageFilter, V::movingAverageFilter},
};
static_assert(sizeof kQueries / sizeof kQueries[0] == 43);

}  // namespace tw::test
