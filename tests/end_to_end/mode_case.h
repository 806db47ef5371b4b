// What is run of every output mode that the program accepts: single, and dual where the device has that.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "acquisition/altimeter_lines.h"
#include "acquisition/nmea_depth.h"
#include "acquisition/output_mode.h"
#include "simulator/sounder_options.h"

namespace tw::test {

struct ModeCase {
  sim::DeviceFamily family;
  const OutputModeRow* row;
  bool dual = false;
  bool silent = false;             // does not tell the transmit frequency, as a device without smoothing
  int32_t frequency_hz = 450'000;  // of a device of one channel
  int32_t range_mm = 30'000;

  [[nodiscard]] bool IsFirstFamily() const { return family == sim::DeviceFamily::first; }
  [[nodiscard]] bool IsBinary() const { return row->code >= 100; }
  [[nodiscard]] bool IsPulse() const { return !row->sent.HasSamples(); }
  [[nodiscard]] bool IsEpoch() const { return row->code == kAltimeterNmea; }
  [[nodiscard]] bool TellsAttitude() const { return !IsPulse() || IsEpoch(); }
  [[nodiscard]] bool TellsTemperature() const {
    return TellsAttitude() || &row->sent == &kDualStream || &row->sent == &kAltiTempStream;
  }
  // A message holds both altitudes.
  [[nodiscard]] bool IsJoint() const { return IsFirstFamily() && row->code >= 7 && row->code <= 9; }
  [[nodiscard]] bool IsPair() const { return dual && !IsJoint(); }
  [[nodiscard]] size_t Files() const { return IsPair() && row->code != 6 ? 2 : 1; }
  // Not a variant of another case.
  [[nodiscard]] bool IsPlain() const { return !silent && frequency_hz == 450'000; }

  void Configure(sim::SounderOptions& options) const {
    options.family = family;
    options.outputMode = row->code;
    options.dual = dual;
    options.reportsFrequency = !silent;
    if (silent) options.smoothing = sim::Smoothing::absent;
    options.frequency_hz = frequency_hz;
    options.range_mm = range_mm;
    if (!IsFirstFamily()) options.identity = "1042";
  }
  [[nodiscard]] std::string Name(const char* joint = "") const {
    constexpr const char* kFamilies[] = {"third", "first", "second"};
    return std::string(kFamilies[static_cast<size_t>(family)]) + joint + std::to_string(row->code) +
           (dual ? *joint != '\0' ? " dual" : "Dual" : "") + (silent ? "Silent" : "") +
           (frequency_hz == 200'000 ? "Of200kHz" : "");
  }
  friend void PrintTo(const ModeCase& each, std::ostream* out) { *out << each.Name(); }
};

inline std::vector<ModeCase> AllModeCases() {
  using Family = sim::DeviceFamily;
  std::vector<ModeCase> cases;
  for (const Family family : {Family::first, Family::second, Family::third}) {
    const bool first = family == Family::first;
    for (const OutputModeRow& row : AcceptedModes(DeviceFamily{static_cast<int32_t>(family)})) {
      cases.push_back({family, &row});
      if (first && row.code != 9) cases.push_back({family, &row, true});
      if (first && (row.code == 1 || row.code == 3)) cases.push_back({family, &row, false, true});
      // The low frequency of the first family, in devices of one channel.
      if (!first && (row.code == 2 || row.code == 100)) {
        cases.push_back({family, &row, false, false, 200'000, 50'000});
      }
    }
  }
  return cases;
}

}  // namespace tw::test
