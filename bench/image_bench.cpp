// The echogram image of 1,770 x 960 pixels: rendered whole and with one new ping on kept columns, against
// memcpy of the same warm image; and whole against the plain loop over rows and columns. Exits with 1 when a
// ratio misses its limit; that of whole images holds for the time scale that the program starts with.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "base/bytes.h"
#include "bench/measure.h"
#include "display/echogram_image.h"
#include "display/kept_echogram.h"
#include "display/palette.h"
#include "display/ring_view.h"

namespace tw {
namespace {

constexpr int32_t kWidth = 1'770;
constexpr int32_t kHeight = 960;
constexpr int32_t kFirstTimeScale_s = 150;

// A ring (600 MB) whose pages are all touched: each slot has `samples` samples of noise below an echo.
void FillRing(PingRing& ring, size_t samples) {
  std::minstd_rand random(7);
  for (auto& slot : ring.slots) {
    std::memset(slot, 0, kSlotSize);
    StoreLe<uint32_t>(slot + frame::kHeaderLength, frame::kWrittenHeaderLength);
    for (size_t i = 0; i < samples; ++i) {
      StoreLe<uint16_t>(slot + kSlotSamples + 2 * i, static_cast<uint16_t>(random() >> 4 & kMaxAmplitude));
    }
  }
}

// What one would write first: the rules as they stand, row by row; only the row's sample is taken out of the
// inner loop.
void RenderRowByRow(const PingRing& ring, const EchogramScale& scale, const DisplayPalette& palette,
                    const Canvas& image) {
  for (int32_t y = 0; y < image.height; ++y) {
    const double sample = SamplePosition(y, scale, image.height);
    for (int32_t x = 0; x < image.width; ++x) {
      const uint8_t* slot = ring.slots[SlotOfColumn(x, image.width, scale.newest, scale.timeScale_s)];
      Pixel pixel = kBlack;
      if (sample < kMaxSlotSamples) {
        const auto amplitude = LoadLe<uint16_t>(slot + kSlotSamples + 2 * static_cast<size_t>(sample));
        if (amplitude >= kFirstVisibleAmplitude) {
          pixel = LoadLe<uint32_t>(palette.entries[amplitude > kMaxAmplitude ? kMaxAmplitude : amplitude]);
        }
      }
      image.Row(y)[x] = pixel;
    }
  }
}

struct Picture {
  std::vector<Pixel> pixels = std::vector<Pixel>(size_t{kWidth} * kHeight);
  Canvas canvas{pixels.data(), kWidth, kHeight, kWidth};
};

bool Report(const char* what, double ratio, double limit, bool atMost) {
  const bool kept = atMost ? ratio <= limit : ratio >= limit;
  std::printf("  %-44s %6.2f  (%s %g)%s\n", what, ratio, atMost ? "at most" : "at least", limit,
              kept ? "" : "  MISSED");
  return kept;
}

bool Measure(const PingRing& ring, const DisplayPalette& palette, size_t samples, int32_t timeScale_s,
             double limit) {
  // The range at which the last row shows the last sample, at 1,500 m/s.
  const auto range_mm = static_cast<int32_t>(static_cast<double>(samples) * 7.5);
  const EchogramScale scale{9'000, timeScale_s, range_mm, 1'500.0f};
  Picture tiled;
  Picture plain;
  Picture copy;
  AmplitudeColours colours;
  BuildAmplitudeColours(palette, colours);
  const auto scratch = std::make_unique<EchogramScratch>();

  const size_t bytes = tiled.pixels.size() * sizeof(Pixel);
  std::memcpy(copy.pixels.data(), tiled.pixels.data(), bytes);
  const double copied =
      MedianMilliseconds([&] { std::memcpy(copy.pixels.data(), tiled.pixels.data(), bytes); });
  const double full =
      MedianMilliseconds([&] { RenderEchogram(ring, scale, colours, *scratch, tiled.canvas); });
  const double naive = MedianMilliseconds([&] { RenderRowByRow(ring, scale, palette, plain.canvas); });
  std::printf("%zu samples a slot, %d s: image %.2f ms, row by row %.2f ms, memcpy %.2f ms\n", samples,
              timeScale_s, full, naive, copied);
  if (std::memcmp(tiled.pixels.data(), plain.pixels.data(), bytes) != 0) {
    std::printf("  the two pictures differ\n");
    return false;
  }
  const bool fast = Report("image / memcpy", full / copied, limit, true);
  const bool worthIt = Report("row by row / image", naive / full, 2.5, false);
  return (fast && worthIt) || timeScale_s != kFirstTimeScale_s;
}

// What a paint costs in the middle of a run: the newest slot is written again, or one more.
bool MeasureNewPing(PingRing& ring, const DisplayPalette& palette, size_t samples, int32_t timeScale_s) {
  const auto range_mm = static_cast<int32_t>(static_cast<double>(samples) * 7.5);
  EchogramScale scale{9'000, timeScale_s, range_mm, 1'500.0f};
  Picture kept;
  Picture full;
  Picture copy;
  AmplitudeColours colours;
  BuildAmplitudeColours(palette, colours);
  const auto scratch = std::make_unique<EchogramScratch>();
  const auto columns = std::make_unique<KeptEchogram>();
  const size_t bytes = kept.pixels.size() * sizeof(Pixel);
  const double copied =
      MedianMilliseconds([&] { std::memcpy(copy.pixels.data(), full.pixels.data(), bytes); });
  const auto paintNext = [&] {
    scale.newest = (scale.newest + 1) % kRingSlots;
    ring.stamps[scale.newest] += 2;
    columns->Render(ring, scale, colours, *scratch, kept.canvas);
  };
  for (int i = 0; i < 20; ++i) paintNext();
  const double next = MedianMilliseconds(paintNext);
  RenderEchogram(ring, scale, colours, *scratch, full.canvas);
  std::printf("%zu samples a slot, %d s: one new ping %.2f ms\n", samples, timeScale_s, next);
  if (std::memcmp(kept.pixels.data(), full.pixels.data(), bytes) != 0) {
    std::printf("  the two pictures differ\n");
    return false;
  }
  return Report("one new ping / memcpy", next / copied, 8, true);
}

}  // namespace
}  // namespace tw

int main() {
  const auto ring = std::make_unique<tw::PingRing>();
  tw::DisplayPalette palette;
  tw::BuildPalette(palette);
  bool kept = true;
  for (const auto& [samples, limit] : {std::pair{size_t{25'000}, 16.0}, std::pair{size_t{1'000}, 6.0}}) {
    tw::FillRing(*ring, samples);
    for (const int32_t timeScale_s : {tw::kFirstTimeScale_s, 300}) {
      kept = tw::Measure(*ring, palette, samples, timeScale_s, limit) && kept;
    }
    for (const int32_t timeScale_s : {10, 60, 150, 300}) {
      kept = tw::MeasureNewPing(*ring, palette, samples, timeScale_s) && kept;
    }
  }
  return kept ? 0 : 1;
}
