#include "display/kept_echogram.h"

#include <algorithm>

#include "base/shared_value.h"
#include "platform/memory.h"

namespace tw {

namespace {

constexpr uint32_t kNothing = 1;  // odd: no slot at rest has such a stamp

size_t BytesOf(const Canvas& columns) {
  return static_cast<size_t>(columns.stride) * static_cast<size_t>(columns.height) * sizeof(Pixel);
}

bool IsBeingWritten(uint32_t stamp) {
  return stamp % 2 != 0;
}

}  // namespace

KeptEchogram::~KeptEchogram() {
  Free();
}

void KeptEchogram::Free() {
  if (columns_.pixels != nullptr) FreeZeroed(columns_.pixels, BytesOf(columns_));
  columns_ = {};
}

// Forgets all columns when they would look different now. False when nothing can be kept.
bool KeptEchogram::Fit(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
                       int32_t height) {
  const bool isSame = columns_.height == height && ring_ == &ring && scale_.range_mm == scale.range_mm &&
                      scale_.soundSpeed_mps == scale.soundSpeed_mps && colours_ == colours.stamp;
  if (isSame) return true;
  if (columns_.height != height) {
    Free();
    Canvas columns{nullptr, kRingSlots, height, kRingSlots};
    columns.pixels = static_cast<Pixel*>(AllocateZeroed(BytesOf(columns)));
    if (columns.pixels == nullptr) return false;
    columns_ = columns;
  }
  ring_ = &ring;
  scale_ = scale;
  colours_ = colours.stamp;
  background_ = colours.background;
  reached_ = 0;
  std::fill(std::begin(keptStamps_), std::end(keptStamps_), kNothing);
  return true;
}

// A slot counts as kept with the stamp that it had before it is painted: if a worker writes it meanwhile, its
// stamp is another one at the next paint.
size_t KeptEchogram::FindMissing(const PingRing& ring, const EchogramScale& scale, int32_t width,
                                 ColumnJob* jobs) {
  size_t count = 0;
  int32_t previous = -1;
  for (int32_t x = 0; x < width; ++x) {
    const int32_t slot = SlotOfColumn(x, width, scale.newest, scale.timeScale_s);
    shown_[x] = slot;
    if (slot == previous) continue;
    previous = slot;
    const uint32_t stamp = LoadShared(ring.stamps[slot]);
    if (stamp == keptStamps_[slot] && !IsBeingWritten(stamp)) continue;
    keptStamps_[slot] = stamp;
    jobs[count++] = {slot, slot};
  }
  return count;
}

// Four rows at a time: finding a column costs as much as copying its pixel.
void KeptEchogram::Compose(const Canvas& image) const {
  int32_t y = 0;
  for (; y + 4 <= reached_; y += 4) {
    const Pixel* const from = columns_.Row(y);
    Pixel* const to = image.Row(y);
    for (int32_t x = 0; x < image.width; ++x) {
      const Pixel* const pixel = from + shown_[x];
      to[x] = pixel[0];
      to[x + image.stride] = pixel[kRingSlots];
      to[x + 2 * image.stride] = pixel[ptrdiff_t{2} * kRingSlots];
      to[x + 3 * image.stride] = pixel[ptrdiff_t{3} * kRingSlots];
    }
  }
  for (; y < reached_; ++y) {
    for (int32_t x = 0; x < image.width; ++x) image.Row(y)[x] = columns_.Row(y)[shown_[x]];
  }
  FillRect(image, {0, reached_, image.width, image.height}, background_);
}

void KeptEchogram::Render(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
                          EchogramScratch& scratch, const Canvas& image) {
  const bool isInReach = image.width <= kMaxJobs && image.height <= kMaxKeptRows;
  if (!isInReach || !IsDrawable(scale, image.height) || !Fit(ring, scale, colours, image.height)) {
    RenderEchogram(ring, scale, colours, scratch, image);
    return;
  }
  const size_t count = FindMissing(ring, scale, image.width, scratch.jobs);
  if (count > 0) {
    reached_ = RenderColumns(ring, {scratch.jobs, count}, scale, colours, scratch, columns_);
  }
  Compose(image);
}

}  // namespace tw
