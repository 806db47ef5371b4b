// The water under the virtual boat: how deep the bottom lies, how the boat moves, and what a ping hears of
// all that. Everything follows from a seed and from how long the boat has sailed, so that the same seed
// gives the same samples on every machine. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>

namespace tw::sim {

// One moment of the survey.
struct SeaState {
  double depth_m;
  double sediment_m;  // how much deeper the low frequency finds the bottom
  double temperature_c;
  double pitch_deg;
  double roll_deg;
};

struct SeaBed {
  uint64_t seed;
  double depth_m;   // of the middle of the slopes
  double relief_m;  // how far the bottom rises and falls at most

  [[nodiscard]] SeaState At(double sailed_s) const;
};

// One ping of one channel.
struct EchoScene {
  uint64_t seed;
  uint64_t pingIndex;  // since power-on
  double sailed_s;
  double samplesPerMetre;  // of depth
  int32_t bottomIndex;     // sample of the strongest echo; beyond the samples: no bottom is heard
  bool lowFrequency;       // longer pulse, deeper into the sediment
};

// Paints noise, transmit pulse, fish, the bottom echo and its second multiple. Whatever is drawn, the
// sample at `bottomIndex` alone is the strongest, by a margin that survives the loss of two bits.
void PaintEcho(const EchoScene& scene, std::span<uint16_t> samples);

}  // namespace tw::sim
