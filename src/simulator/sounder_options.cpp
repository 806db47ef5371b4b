#include "simulator/sounder_options.h"

#include <algorithm>
#include <utility>

#include "simulator/echo_stream.h"

namespace tw::sim {
namespace {

constexpr int32_t kLeastSamples = 100;
constexpr int32_t kMostSamples = 12'000;
constexpr size_t kLongestIdentity = 95;

double Within(double value, double least, double most) {
  return value >= least ? std::min(value, most) : least;  // what is not a number is the least
}

SounderFaults WithinBounds(SounderFaults faults) {
  faults.replyDelay_ms = std::clamp(faults.replyDelay_ms, 0, 60'000);
  faults.splitPause_ms = std::clamp(faults.splitPause_ms, 0, 60'000);
  faults.blockEvery = std::clamp(faults.blockEvery, 1, 1'000'000);
  faults.streamRate = Within(faults.streamRate, 0.0, 1.0);
  faults.garbageBytes = std::clamp(faults.garbageBytes, 0, 65'536);
  return faults;
}

}  // namespace

SounderOptions WithinBounds(SounderOptions options) {
  options.identity.resize(std::min(options.identity.size(), kLongestIdentity));
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
  options.logSize = std::min<size_t>(options.logSize, 1 << 20);
  options.faults = WithinBounds(std::move(options.faults));
  return options;
}

}  // namespace tw::sim
