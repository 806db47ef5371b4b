// What a device remembers: every value that its commands set or tell, with factory value, bounds and
// decimals. Values are whole thousandths, so that what was set reads back to the digit. Pure; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/sounder_options.h"

namespace tw::sim {

// Values that exist for both transducers come as pairs, the low one first.
enum class Setting : uint8_t {
  rangeLow,  // mm
  rangeHigh,
  thresholdLow,  // percent
  thresholdHigh,
  offsetLow,  // mm
  offsetHigh,
  deadZoneLow,  // mm
  deadZoneHigh,
  txLengthLow,  // µs
  txLengthHigh,
  gainLow,  // dB
  gainHigh,
  tvgSpreadingLow,
  tvgSpreadingHigh,
  tvgAbsorptionLow,  // dB/m
  tvgAbsorptionHigh,
  attenuationLow,
  attenuationHigh,
  interval,  // s, 0 = automatic
  output,
  tvgMode,
  sound,    // m/s
  txPower,  // percent
  medianFilter,
  movingAverageFilter,
  smooth,
  outputRate,
  automatic,
  preset,
  pingOnce,
  nmeaDbt,
  nmeaDpt,
  nmeaMtw,
  nmeaXdr,
  nmeaEma,
  nmeaZda,
  nmeaDepthZero,
  speed,           // the line's; no default touches it
  frequencyInUse,  // Hz
  simultaneous,
  // Facts, told and never set.
  frequencyLow,
  frequencyHigh,
  virtualFrequencyLow,
  virtualFrequencyHigh,
  samplingFrequency,
  firmware,
  maxRangeLow,
  maxRangeHigh,
  maxLengthLow,
  maxLengthHigh,
  count,
};

inline constexpr int64_t kThousand = 1'000;
inline constexpr int64_t kAutomaticPreset = 10;  // in force exactly while the automatic mode is on
inline constexpr int64_t kNoPreset = 255;

class SounderSettings {
 public:
  // Factory values with the options' own put in; the options are within their bounds.
  explicit SounderSettings(const SounderOptions& options);

  [[nodiscard]] int64_t Thousandths(Setting setting) const { return values_[static_cast<size_t>(setting)]; }
  [[nodiscard]] int64_t Whole(Setting setting) const { return Thousandths(setting) / kThousand; }

  // False, and nothing changed, when the value is outside the setting's bounds, or a fraction where
  // only whole numbers make sense.
  [[nodiscard]] bool Set(Setting setting, int64_t thousandths);

  // The automatic mode and the preset, which belong together. False as above.
  [[nodiscard]] bool SetAutomatic(int64_t thousandths);
  [[nodiscard]] bool SetPreset(int64_t thousandths);

  // The low channel alone is in use. A device of one channel has none: its values are the high ones.
  [[nodiscard]] bool LowInUse() const;

  // Back to what they were when the device was made, the line's speed excepted: an operator who restores
  // the values must not lose the line.
  void Restore();

  // The value as the device prints it.
  [[nodiscard]] std::string Text(Setting setting) const;

 private:
  using Values = std::array<int64_t, static_cast<size_t>(Setting::count)>;
  const bool toldIn16Bits_;  // the third family's dead zone
  const bool twoChannels_;
  Values values_{};
  Values initial_{};
};

// Reads the decimal number that is the whole of `text`: optional sign, at most ten digits, optional point
// and at most six more digits, of which three count. False, and `thousandths` untouched, for anything else.
[[nodiscard]] bool ReadThousandths(std::string_view text, int64_t& thousandths);

}  // namespace tw::sim
