#include "simulator/sea_bed.h"

#include <algorithm>

#include "simulator/seeded_noise.h"

namespace tw::sim {
namespace {

constexpr uint16_t kBottomPeak = 3'980;
constexpr int32_t kLoudestElse = 3'700;
constexpr int32_t kTransmitPeak = 2'800;
constexpr double kSchoolPeriod_s = 15.0;

// Each thing that varies has its own random curve.
enum class Curve : uint64_t { slope = 1, hills, ripples, temperature, pitch, roll, fish, noise, sediment };

constexpr uint64_t SeedOf(uint64_t seed, Curve curve) {
  return Mix(seed ^ Mix(static_cast<uint64_t>(curve)));
}

// Water: many weak values, few stronger ones, a little louder with depth, where the gain is higher.
void PaintNoise(Dice& dice, std::span<uint16_t> samples) {
  const size_t count = samples.size();
  const size_t quarter = count / 4 + 1;
  uint64_t bits = 0;
  for (size_t i = 0; i < count; ++i) {
    if (i % 8 == 0) bits = dice.Next();
    const auto value = static_cast<uint32_t>(bits & 0xFF);
    bits >>= 8;
    samples[i] = static_cast<uint16_t>(18 + (value * value >> 10) + 8 * (i / quarter));
  }
}

void PaintTransmitPulse(const EchoScene& scene, std::span<uint16_t> samples) {
  const double length_m = scene.lowFrequency ? 0.45 : 0.25;
  const auto length = std::max(4, static_cast<int32_t>(length_m * scene.samplesPerMetre));
  const auto shown = std::min(static_cast<size_t>(length), samples.size());
  for (size_t i = 0; i < shown; ++i) {
    const int32_t level = kTransmitPeak - kTransmitPeak * static_cast<int32_t>(i) / length;
    samples[i] = std::max(samples[i], static_cast<uint16_t>(level));
  }
}

struct Echo {
  int32_t index;  // of the peak; may lie outside the samples
  int32_t peak;
  int32_t rise;  // samples from nothing to the peak
  double tail;   // samples in which it falls to about a third
};

void PaintOne(const Echo& echo, Dice& dice, std::span<uint16_t> samples) {
  const auto count = static_cast<int32_t>(samples.size());
  const auto speckled = [&](double level) {
    const auto grain = static_cast<double>(dice.Next() >> 56);
    return static_cast<int32_t>(level * (0.6 + grain * (0.4 / 256.0)));
  };
  const auto put = [&](int32_t i, int32_t level) {
    auto& sample = samples[static_cast<size_t>(i)];
    sample = static_cast<uint16_t>(std::clamp<int32_t>(level, sample, kLoudestElse));
  };
  for (int32_t i = std::max(0, echo.index - echo.rise); i < std::min(echo.index, count); ++i) {
    put(i, speckled(static_cast<double>(echo.peak) * (echo.rise - (echo.index - i)) / echo.rise));
  }
  const double fall = 1.0 - 1.0 / std::max(2.0, echo.tail);
  double level = echo.peak;
  for (int32_t i = echo.index; i < count && level > 20.0; ++i) {
    if (i >= 0) put(i, speckled(level));
    level *= fall;
  }
}

// A school in each stretch of time, seen as an arc: nearest when the boat is right above it.
void PaintFish(const EchoScene& scene, Dice& dice, std::span<uint16_t> samples) {
  const uint64_t seed = SeedOf(scene.seed, Curve::fish);
  const auto stretch = static_cast<int64_t>(scene.sailed_s / kSchoolPeriod_s);
  const double away = scene.sailed_s / kSchoolPeriod_s - static_cast<double>(stretch) - 0.5;
  const double halfWidth = 0.05 + 0.2 * UnitAt(seed, 4 * stretch);
  if (away < -halfWidth || away > halfWidth) return;
  const double bottom = std::min<double>(scene.bottomIndex, static_cast<double>(samples.size()));
  const double top = bottom * (0.3 + 0.45 * UnitAt(seed, 4 * stretch + 1));
  const double arc = away / halfWidth * (away / halfWidth) * 0.04 * bottom;
  const auto peak = static_cast<int32_t>(900.0 + 900.0 * UnitAt(seed, 4 * stretch + 2));
  PaintOne({static_cast<int32_t>(top + arc), peak, 3, 0.15 * scene.samplesPerMetre}, dice, samples);
}

}  // namespace

SeaState SeaBed::At(double sailed_s) const {
  const auto curve = [&](Curve which, double period_s) {
    return SmoothNoise(SeedOf(seed, which), sailed_s / period_s);
  };
  const double shape =
      0.65 * curve(Curve::slope, 60.0) + 0.3 * curve(Curve::hills, 11.0) + 0.05 * curve(Curve::ripples, 0.8);
  return {
      .depth_m = depth_m + relief_m * shape,
      .sediment_m = 0.3 + 0.15 * curve(Curve::sediment, 7.0),
      .temperature_c = 14.0 + 1.5 * curve(Curve::temperature, 90.0),
      .pitch_deg = 2.5 * curve(Curve::pitch, 2.1),
      .roll_deg = 4.0 * curve(Curve::roll, 2.9),
  };
}

void PaintEcho(const EchoScene& scene, std::span<uint16_t> samples) {
  Dice dice(SeedOf(scene.seed, Curve::noise) ^ Mix(2 * scene.pingIndex + (scene.lowFrequency ? 1 : 0)));
  PaintNoise(dice, samples);
  PaintTransmitPulse(scene, samples);
  PaintFish(scene, dice, samples);
  const double tail = (scene.lowFrequency ? 0.9 : 0.4) * scene.samplesPerMetre;
  if (scene.bottomIndex < 0 || static_cast<size_t>(scene.bottomIndex) >= samples.size()) return;
  PaintOne({scene.bottomIndex, 3'600, 4, tail}, dice, samples);
  PaintOne({2 * scene.bottomIndex, 1'500, 6, 1.3 * tail}, dice, samples);
  samples[static_cast<size_t>(scene.bottomIndex)] = kBottomPeak;
}

}  // namespace tw::sim
