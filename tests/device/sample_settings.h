// Settings of a device with both channels, every value another one.
#pragma once

#include "device/device_settings.h"

namespace tw::test {

inline DeviceSettings SampleSettings() {
  DeviceSettings s{};
  s.frequencyInUse_hz = s.lowFrequency_hz = 199'000;
  s.highFrequency_hz = 447'000;
  s.virtualLowFrequency_hz = 200'000;
  s.virtualHighFrequency_hz = 450'000;
  s.preset = 3;
  s.outputMode = 4;
  s.pingInterval_ms = 250;
  s.rangeLow_mm = 60'000;
  s.rangeHigh_mm = 30'000;
  s.thresholdLow_percent = 21;
  s.thresholdHigh_percent = 22;
  s.offsetLow_mm = -11;
  s.offsetHigh_mm = 12;
  s.deadZoneLow_mm = 151;
  s.deadZoneHigh_mm = 152;
  s.txLengthLow = 41;
  s.txLengthHigh = 42;
  s.gainLow = 2.5f;
  s.gainHigh = -3.5f;
  s.tvgSpreadingLow = 15.f;
  s.tvgSpreadingHigh = 20.f;
  s.tvgAbsorptionLow = 0.08f;
  s.tvgAbsorptionHigh = 0.14f;
  s.txPower = 87.25f;
  s.soundSpeed_mps = 1487.65f;
  s.attenuationLow = 1;
  s.attenuationHigh = 2;
  s.tvgMode = 3;
  s.medianFilter = 5;
  s.movingAverageFilter = 4;
  s.outputRate = 7.5f;
  return s;
}

}  // namespace tw::test
