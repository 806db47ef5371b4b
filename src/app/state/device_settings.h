// The program's copy of the device's parameter set. A plain record: copying it is a whole-record copy, and
// all zeroes is a valid "nothing known". Most values exist twice, for the low and the high transducer
// frequency. Written by the GUI thread while no acquisition worker runs; workers only read it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/state/device_family.h"

namespace tw {

inline constexpr size_t kIdentitySize = 96;
inline constexpr int32_t kNoPreset = 255;
inline constexpr int32_t kAutomaticPreset = 10;

// Ranges and maximum ranges are millimetres, as the device sends them; see RangeInMillimetres for firmware
// that reports metres.
struct DeviceSettings {
  int32_t identifierWord;  // families with a numeric identity
  int32_t unused1;
  char identity[kIdentitySize];  // zero-terminated, "#iden"
  int32_t frequencyInUse_hz;
  int32_t lowFrequency_hz;
  int32_t highFrequency_hz;
  int32_t rangeLow_mm;
  int32_t rangeHigh_mm;
  int32_t txLengthLow;
  int32_t txLengthHigh;
  float txPower;
  float reservedPower;      // the binary information block sets it to 100.0; given, unread
  int32_t pingInterval_ms;  // 0 = automatic
  int32_t tvgMode;
  float tvgSpreadingLow;
  float tvgSpreadingHigh;
  float tvgAbsorptionLow;
  float tvgAbsorptionHigh;
  float gainLow;
  float gainHigh;
  int32_t attenuationLow;
  int32_t attenuationHigh;
  int32_t deadZoneLow_mm;
  int32_t deadZoneHigh_mm;
  int32_t offsetLow_mm;
  int32_t offsetHigh_mm;
  int32_t thresholdLow_percent;
  int32_t thresholdHigh_percent;
  float soundSpeed_mps;
  int32_t outputMode;  // its meaning depends on the device family
  int32_t unused2;
  int32_t samplingFrequency_hz;
  int32_t simultaneous;  // 0 = one frequency at a time, else both
  int32_t virtualLowFrequency_hz;
  int32_t virtualHighFrequency_hz;
  int32_t medianFilter;
  int32_t movingAverageFilter;
  int32_t unused3;
  int32_t maxRangeHigh_mm;
  int32_t maxRangeLow_mm;
  int32_t maxLengthHigh;
  int32_t maxLengthLow;
  int32_t smoothing;
  float outputRate;
  int32_t automaticMode;
  int32_t preset;
};

enum class FieldChannel : uint8_t { common, low, high };

// Where a value of the low and of the high channel stands: settings.*kRangeOf[FieldChannel::low]. Of a common
// value both places are the same.
template <typename T>
struct FieldPair {
  T DeviceSettings::*low = nullptr;
  T DeviceSettings::*high = low;

  constexpr T DeviceSettings::*operator[](FieldChannel channel) const {
    return channel == FieldChannel::low ? low : high;
  }
};
using WholeFields = FieldPair<int32_t>;
using RealFields = FieldPair<float>;

// clang-format off
inline constexpr WholeFields kFrequencyOf{&DeviceSettings::lowFrequency_hz, &DeviceSettings::highFrequency_hz};
inline constexpr WholeFields kRangeOf{&DeviceSettings::rangeLow_mm, &DeviceSettings::rangeHigh_mm};
inline constexpr WholeFields kMaxRangeOf{&DeviceSettings::maxRangeLow_mm, &DeviceSettings::maxRangeHigh_mm};
inline constexpr WholeFields kTxLengthOf{&DeviceSettings::txLengthLow, &DeviceSettings::txLengthHigh};
inline constexpr WholeFields kMaxLengthOf{&DeviceSettings::maxLengthLow, &DeviceSettings::maxLengthHigh};
inline constexpr WholeFields kAttenuationOf{&DeviceSettings::attenuationLow, &DeviceSettings::attenuationHigh};
inline constexpr WholeFields kDeadZoneOf{&DeviceSettings::deadZoneLow_mm, &DeviceSettings::deadZoneHigh_mm};
inline constexpr WholeFields kOffsetOf{&DeviceSettings::offsetLow_mm, &DeviceSettings::offsetHigh_mm};
inline constexpr WholeFields kThresholdOf{&DeviceSettings::thresholdLow_percent, &DeviceSettings::thresholdHigh_percent};
inline constexpr RealFields kGainOf{&DeviceSettings::gainLow, &DeviceSettings::gainHigh};
inline constexpr RealFields kTvgSpreadingOf{&DeviceSettings::tvgSpreadingLow, &DeviceSettings::tvgSpreadingHigh};
inline constexpr RealFields kTvgAbsorptionOf{&DeviceSettings::tvgAbsorptionLow, &DeviceSettings::tvgAbsorptionHigh};
// clang-format on

// What the settings hold until a device has answered, and where its identification begins: what it does not
// tell is never what another one or a played file has told.
[[nodiscard]] constexpr DeviceSettings StartUpSettings() {
  DeviceSettings settings{};
  settings.frequencyInUse_hz = 447'000;
  settings.lowFrequency_hz = 200'000;
  settings.highFrequency_hz = 447'000;
  settings.rangeLow_mm = settings.rangeHigh_mm = 10'000;
  settings.txLengthLow = settings.txLengthHigh = 20;
  settings.pingInterval_ms = 100;
  settings.tvgMode = 1;
  settings.tvgSpreadingLow = settings.tvgSpreadingHigh = 15.0f;
  settings.tvgAbsorptionLow = 0.08f;
  settings.tvgAbsorptionHigh = 0.14f;
  settings.deadZoneLow_mm = settings.deadZoneHigh_mm = 150;
  settings.thresholdLow_percent = settings.thresholdHigh_percent = 20;
  settings.soundSpeed_mps = 1500.0f;
  settings.outputMode = 4;
  settings.unused2 = 4;  // kept: the word behind the output mode starts with the same value
  settings.samplingFrequency_hz = 25'000;
  settings.medianFilter = 3;
  settings.movingAverageFilter = 3;
  return settings;
}

// Whether a run of one frequency uses the low channel. The families 2 and 0 have one channel, whatever its
// frequency is; its values are the high ones.
[[nodiscard]] constexpr bool UsesLowChannel(const DeviceSettings& settings, DeviceFamily family) {
  return family == DeviceFamily::first && settings.frequencyInUse_hz == settings.lowFrequency_hz;
}

// The one guard for firmware that reports ranges in metres: 1 to 999 are metres (valid ranges are 1 to
// 200 m or 1,000 to 200,000 mm, so the two cannot collide); other values stand as they are.
[[nodiscard]] constexpr int32_t RangeInMillimetres(int32_t reported) {
  return reported >= 1 && reported <= 999 ? reported * 1000 : reported;
}

}  // namespace tw
