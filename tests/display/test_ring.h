// What the view shows, for tests: rings, zero-filled, and filled with seeded pings slot by slot where a test
// wants them; and a state record with such rings.
#pragma once

#include <cstdlib>
#include <memory>
#include <random>

#include "acquisition/ping_ring.h"
#include "app/state/app_state.h"
#include "base/bytes.h"
#include "display/palette.h"

namespace tw {

struct FreeRing {
  void operator()(PingRing* ring) const { std::free(ring); }
};
using TestRing = std::unique_ptr<PingRing, FreeRing>;

// Untouched pages cost nothing, so a test touches only the slots that it fills.
inline TestRing MakeRing() {
  return TestRing(static_cast<PingRing*>(std::calloc(1, sizeof(PingRing))));
}

inline void StoreSample(uint8_t* slot, size_t headerLength, size_t index, uint16_t amplitude) {
  StoreLe<uint16_t>(slot + headerLength + 640 + 2 * index, amplitude);
}

// Where a slot's samples stand: 640 bytes behind its header, whose length counts as 88 unless it is 36 to
// 4,096.
inline size_t SamplesBegin(uint32_t headerLength) {
  return (headerLength >= 36 && headerLength <= 4'096 ? headerLength : 88) + 640;
}

// Amplitudes over the whole 16 bits now and then, mostly 12.
inline void FillSlot(PingRing& ring, int32_t index, uint32_t headerLength, size_t samples) {
  std::minstd_rand random(static_cast<uint32_t>(index) + 1);
  uint8_t* slot = ring.slots[index];
  StoreLe<uint32_t>(slot + 4, headerLength);
  const size_t start = SamplesBegin(headerLength);
  for (size_t i = 0; i < samples && start + 2 * i + 2 <= kSlotSize; ++i) {
    const auto value = static_cast<uint32_t>(random());
    StoreLe<uint16_t>(slot + start + 2 * i,
                      static_cast<uint16_t>(value % 50 == 0 ? value >> 8 : value >> 8 & 4'095));
  }
}

// A device of 200 and 447 kHz that uses the high one, nothing played.
inline void FillViewState(AppState& state, PingRing& ringA, PingRing& ringB) {
  MakeLock(state.ringLockA);
  MakeLock(state.ringLockB);
  state.ringA = &ringA;
  state.ringB = &ringB;
  BuildPalette(state.palette);
  state.inputFileA = state.inputFileB = Handle::invalid;
  state.displayRangeUpper = state.displayRangeLower = 10'000;
  state.timeScaleUpper = state.timeScaleLower = 150;
  state.echogramEnabled = state.initialised = 1;
  state.settings.soundSpeed_mps = 1'500.0f;
  state.settings.frequencyInUse_hz = state.settings.highFrequency_hz = 447'000;
  state.settings.lowFrequency_hz = 200'000;
  state.settings.rangeHigh_mm = 200'000;
  state.settings.rangeLow_mm = 50'000;
}

}  // namespace tw
