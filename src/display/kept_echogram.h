// The echogram image out of columns that are kept from paint to paint, so that a new ping costs one column.
// Columns map to slots by a fraction, so the picture of the next ping is not this one shifted: what is kept
// is each slot's own column, and a paint picks from them. The result is the same, to the bit, as that of
// RenderEchogram. GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "display/echogram_image.h"

namespace tw {

class KeptEchogram {
 public:
  KeptEchogram() = default;
  ~KeptEchogram();
  KeptEchogram(const KeptEchogram&) = delete;
  KeptEchogram& operator=(const KeptEchogram&) = delete;

  // As RenderEchogram; colours of another stamp cost all columns once. Memory (40,000 bytes a row of the
  // image, touched as slots come to be shown) is allocated when the image's height changes. Without memory,
  // and for images beyond kMaxKeptRows rows or kMaxJobs columns, all is rendered each time.
  void Render(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
              EchogramScratch& scratch, const Canvas& image);

 private:
  bool Fit(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours, int32_t height);
  [[nodiscard]] size_t FindMissing(const PingRing& ring, const EchogramScale& scale, int32_t width,
                                   ColumnJob* jobs);
  void Compose(const Canvas& image) const;
  void Free();

  Canvas columns_{};  // column i is slot i
  const PingRing* ring_ = nullptr;
  EchogramScale scale_{};
  uint32_t colours_ = 0;  // their stamp
  Pixel background_ = kBlack;
  int32_t reached_ = 0;              // rows that have samples
  int32_t shown_[kMaxJobs];          // slot of each image column
  uint32_t keptStamps_[kRingSlots];  // of each slot when its column was painted; odd: not to be relied on
};

inline constexpr int32_t kMaxKeptRows = 2'200;

}  // namespace tw
