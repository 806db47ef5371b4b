// The device's command language: 114 keywords by id. Several keywords share an id (aliases); the first one in
// table order is the one that is sent. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace tw {

// The commands that this program sends. The table knows more: service commands that it never sends.
enum class CommandId : uint32_t {
  range = 0,
  interval = 1,
  threshold = 2,
  offset = 3,
  deadZone = 4,
  txLength = 5,
  output = 6,
  gain = 7,
  tvgMode = 8,
  speed = 10,
  identity = 14,
  sound = 16,
  reset = 18,
  nmeaDbt = 19,
  nmeaDpt = 20,
  nmeaMtw = 21,
  nmeaXdr = 22,
  nmeaEma = 23,
  defaults = 24,
  gainLow = 25,
  gainHigh = 26,
  tvgSpreading = 27,
  tvgAbsorptionLow = 28,
  tvgAbsorptionHigh = 29,
  setFrequencyLow = 30,
  setFrequencyHigh = 31,
  frequencyLow = 33,
  frequencyHigh = 34,
  samplingFrequency = 35,
  medianFilter = 36,
  movingAverageFilter = 37,
  maxRangeLow = 59,
  maxRangeHigh = 60,
  nmeaDpZero = 63,
  firmwareVersion = 64,
  tvgAbsorption = 65,
  pingOnce = 70,
  time = 71,
  nmeaZda = 72,
  frequencyInUse = 73,
  info = 74,
  go = 75,
  rangeLow = 76,
  rangeHigh = 77,
  thresholdLow = 78,
  thresholdHigh = 79,
  offsetLow = 80,
  offsetHigh = 81,
  deadZoneLow = 82,
  deadZoneHigh = 83,
  txLengthLow = 84,
  txLengthHigh = 85,
  txPower = 86,
  tvgSpreadingLow = 88,
  tvgSpreadingHigh = 89,
  attenuationLow = 90,
  attenuationHigh = 91,
  simultaneous = 92,
  virtualFrequencyLow = 93,
  virtualFrequencyHigh = 94,
  setFrequencyDual = 95,
  maxLengthHigh = 101,
  maxLengthLow = 102,
  smoothing = 103,
  outputRate = 104,
  automatic = 105,
  preset = 106,
};

// The keyword that is sent for an id; empty when no entry has it.
[[nodiscard]] std::string_view KeywordOf(CommandId id);

}  // namespace tw
