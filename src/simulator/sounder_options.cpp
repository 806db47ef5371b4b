#include "simulator/sounder_options.h"

#include <algorithm>
#include <utility>

#include "simulator/echo_stream.h"

namespace tw::sim {
namespace {

constexpr int32_t kLeastSamples = 100;
constexpr int32_t kMostSamples = 12'000;
constexpr size_t kLongestIdentity = 95;
constexpr int32_t kHighFrequency_hz = 450'000;  // of the first family
constexpr size_t kMostDigits = 9;

double Within(double value, double least, double most) {
  return value >= least ? std::min(value, most) : least;  // what is not a number is the least
}

// The first family's identity is any text, the others' a number.
std::string IdentityOf(const SounderOptions& options) {
  const std::string& text = options.identity;
  if (options.family == DeviceFamily::first) {
    return text.empty() ? "VIRTUAL-0001" : text.substr(0, kLongestIdentity);
  }
  const bool number = !text.empty() && text.size() <= kMostDigits &&
                      text.find_first_not_of("0123456789") == std::string::npos;
  return number ? text : "42";
}

SounderFaults WithinBounds(SounderFaults faults) {
  faults.replyDelay_ms = std::clamp(faults.replyDelay_ms, 0, 60'000);
  faults.late_ms = std::clamp(faults.late_ms, 0, 60'000);
  faults.splitPause_ms = std::clamp(faults.splitPause_ms, 0, 60'000);
  faults.blockEvery = std::clamp(faults.blockEvery, 1, 1'000'000);
  faults.streamRate = Within(faults.streamRate, 0.0, 1.0);
  faults.informationBytes = std::clamp(faults.informationBytes, 0, 1'000);
  faults.garbageBytes = std::clamp(faults.garbageBytes, 0, 65'536);
  return faults;
}

}  // namespace

SounderOptions WithinBounds(SounderOptions options) {
  options.identity = IdentityOf(options);
  options.firmware_hundredths = std::clamp(options.firmware_hundredths, 1, 9'999);
  options.baud = std::clamp(options.baud, 300, 12'000'000);
  options.delivery_us = std::clamp<int64_t>(options.delivery_us, 0, 1'000'000);
  if (FindStreamMode(options.family, options.outputMode) == nullptr) options.outputMode = 2;
  const bool automatic = !(options.pingsPerSecond > 0.0);
  options.pingsPerSecond = automatic ? 0.0 : Within(options.pingsPerSecond, 1.0, 50.0);
  if (options.sampleCount != 0) {
    options.sampleCount = std::clamp(options.sampleCount, kLeastSamples, kMostSamples);
  }
  options.samplingFrequency_hz = std::clamp(options.samplingFrequency_hz, 1'000, 100'000);
  options.range_mm = std::clamp(options.range_mm, 1'000, 200'000);
  options.depth_m = Within(options.depth_m, 0.5, 200.0);
  options.relief_m = Within(options.relief_m, 0.0, options.depth_m / 2);
  options.lowFrequency = options.lowFrequency && options.family == DeviceFamily::first;
  options.dual = options.dual && options.family == DeviceFamily::first;
  const bool twoChannels = options.family == DeviceFamily::first;
  options.frequency_hz =
      twoChannels ? kHighFrequency_hz : std::clamp(options.frequency_hz, 10'000, 1'000'000);
  options.preset = std::clamp(options.preset, 0, 255);
  options.logSize = std::min<size_t>(options.logSize, 1 << 20);
  options.faults = WithinBounds(std::move(options.faults));
  return options;
}

}  // namespace tw::sim
