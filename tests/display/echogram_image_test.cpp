#include "display/echogram_image.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "display/kept_echogram.h"
#include "display/palette.h"
#include "display/zoom.h"
#include "tests/display/test_ring.h"

namespace tw {
namespace {

constexpr Pixel kGuard = 0x00DEAD00;

// The rules of the image, one pixel at a time.
Pixel ExpectedPixel(const PingRing& ring, const DisplayPalette& palette, int32_t x, int32_t y, int32_t width,
                    int32_t height, int32_t newest, int32_t timeScale_s, double range_m, double soundSpeed) {
  const double pingsPerColumn = timeScale_s * 10.0 / width;
  const double difference = std::trunc(newest - (width - x) * pingsPerColumn);
  // As an unsigned 32-bit number: a negative difference counts down from 2^32.
  const double asUnsigned = difference < 0 ? difference + 4'294'967'296.0 : difference;
  const auto index = static_cast<size_t>(std::fmod(asUnsigned, 10'000.0));
  const double sample = std::floor(2.0 * y * range_m * 100'000.0 / (height * soundSpeed));
  const uint8_t* slot = ring.slots[index];
  const size_t start = SamplesBegin(LoadLe<uint32_t>(slot + 4));
  if (sample >= 29'636 || static_cast<double>(start) + 2 * sample + 2 > 60'000) return 0;
  uint32_t amplitude = LoadLe<uint16_t>(slot + start + 2 * static_cast<size_t>(sample));
  if (amplitude > 4'095) amplitude = 4'095;
  const uint8_t(&entry)[4] = palette.entries[amplitude];
  return amplitude < 64 ? 0 : static_cast<Pixel>(entry[2] << 16 | entry[1] << 8 | entry[0]);
}

class EchogramImage : public testing::Test {
 protected:
  EchogramImage() {
    BuildPalette(palette_);
    BuildAmplitudeColours(palette_, colours_);
  }

  // Renders into a canvas with a guard column and row, which must stay as they are; whole, and out of kept
  // columns.
  Canvas Render(const EchogramScale& scale, int32_t width, int32_t height) {
    const Canvas kept =
        RenderWith([&](const Canvas& image) { kept_->Render(*ring_, scale, colours_, *scratch_, image); },
                   width, height);
    const std::vector<Pixel> keptPixels(kept.pixels, kept.pixels + pixels_.size());
    const Canvas whole =
        RenderWith([&](const Canvas& image) { RenderEchogram(*ring_, scale, colours_, *scratch_, image); },
                   width, height);
    EXPECT_TRUE(keptPixels == pixels_) << "kept columns; newest " << scale.newest;
    return whole;
  }

  template <typename Work>
  Canvas RenderWith(Work work, int32_t width, int32_t height) {
    const ptrdiff_t stride = width + 1;
    pixels_.assign(static_cast<size_t>(stride * (height + 1)), kGuard);
    const Canvas image{pixels_.data(), width, height, stride};
    work(image);
    for (int32_t y = 0; y < height; ++y) EXPECT_EQ(image.Row(y)[width], kGuard) << y;
    for (int32_t x = 0; x < width; ++x) EXPECT_EQ(image.Row(height)[x], kGuard) << x;
    return image;
  }

  void ExpectRules(const EchogramScale& scale, int32_t width, int32_t height) {
    const Canvas image = Render(scale, width, height);
    int32_t wrong = 0;
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        const Pixel expected =
            ExpectedPixel(*ring_, palette_, x, y, width, height, scale.newest, scale.timeScale_s,
                          scale.range_mm / 1000.0, scale.soundSpeed_mps);
        if (image.Row(y)[x] != expected && ++wrong == 1) {
          ADD_FAILURE() << "first wrong pixel at " << x << ", " << y;
        }
      }
    }
    EXPECT_EQ(wrong, 0);
  }

  TestRing ring_ = MakeRing();
  DisplayPalette palette_;
  AmplitudeColours colours_;
  std::unique_ptr<EchogramScratch> scratch_ = std::make_unique<EchogramScratch>();
  std::unique_ptr<KeptEchogram> kept_ = std::make_unique<KeptEchogram>();
  std::vector<Pixel> pixels_;
};

TEST_F(EchogramImage, FollowsTheRulesPixelByPixel) {
  const struct {
    const char* what;
    int32_t width, height;
    EchogramScale scale;
  } rows[] = {
      {"one pixel", 1, 1, {500, 10, 10'000, 1'500.0f}},
      {"three columns", 3, 7, {500, 10, 10'000, 1'500.0f}},
      {"one column more than a tile", 17, 33, {500, 10, 10'000, 1'500.0f}},
      {"each slot in many columns", 640, 200, {400, 10, 10'000, 1'500.0f}},
      {"more pings than columns", 90, 200, {700, 60, 50'000, 1'500.0f}},
      {"shallow range, slow sound", 100, 300, {300, 20, 1'000, 1'400.5f}},
      {"rows beyond the slot are black", 50, 500, {300, 20, 250'000, 1'480.0f}},
      {"more rows than a band", 20, 2'100, {300, 20, 200'000, 1'500.0f}},
      {"the newest ping is at index 0", 120, 50, {0, 20, 10'000, 1'500.0f}},
      {"old columns go below index 0", 333, 50, {40, 30, 10'000, 1'500.0f}},
      {"the last slot of the ring", 100, 50, {9'999, 10, 10'000, 1'500.0f}},
      {"one pixel at index 0", 1, 1, {0, 300, 200'000, 1'500.0f}},
      {"a column", 1, 960, {3, 150, 30'000, 1'500.0f}},
      {"a row", 1'770, 1, {3, 150, 30'000, 1'500.0f}},
      {"a screen of the largest kind", 3'840, 2'160, {500, 60, 120'000, 1'480.0f}},
  };
  for (int32_t i = 0; i < 800; ++i) FillSlot(*ring_, i, 88, 29'636);
  for (int32_t i = 9'800; i < kRingSlots; ++i) FillSlot(*ring_, i, 88, 29'636);
  // 2^32 modulo 10,000 is 7,296: where columns below index 0 are found.
  for (int32_t i = 6'996; i < 7'296; ++i) FillSlot(*ring_, i, 88, 2'000);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    ExpectRules(row.scale, row.width, row.height);
  }
}

TEST_F(EchogramImage, ShowsSlotsWithOtherHeaderLengthsAndZeroedOnes) {
  constexpr uint32_t kLengths[] = {88, 36, 35, 4'096, 89, 1'000, 0, 4'097, 0xFFFFFFFF, 88, 88, 88, 88};
  for (int32_t i = 0; i < 300; ++i) {
    FillSlot(*ring_, i, kLengths[static_cast<size_t>(i) % std::size(kLengths)], 29'636);
  }
  ExpectRules({250, 20, 222'000, 1'500.0f}, 203, 300);
  ExpectRules({250, 20, 5'000, 1'500.0f}, 150, 100);
}

TEST_F(EchogramImage, IsBlackWhenTheScaleCannotBeDrawn) {
  for (int32_t i = 0; i < 200; ++i) FillSlot(*ring_, i, 88, 1'000);
  using Speed = std::numeric_limits<float>;
  constexpr EchogramScale kScales[] = {
      {150, 10, 0, 1'500.0f},
      {150, 10, -1, 1'500.0f},
      {150, 10, 10'000, 0.0f},
      {150, 10, 10'000, -1'500.0f},
      {150, 10, 10'000, Speed::quiet_NaN()},
      {150, 10, 10'000, Speed::infinity()},
  };
  for (const EchogramScale& scale : kScales) {
    SCOPED_TRACE(testing::Message() << scale.range_mm << " mm, " << scale.soundSpeed_mps << " m/s");
    const Canvas image = Render(scale, 40, 30);
    for (int32_t y = 0; y < 30; ++y) {
      for (int32_t x = 0; x < 40; ++x) ASSERT_EQ(image.Row(y)[x], kBlack);
    }
  }
  Render({150, 10, 10'000, 1'500.0f}, 0, 10);
  Render({150, 10, 10'000, 1'500.0f}, 10, 0);
}

TEST_F(EchogramImage, SurvivesExtremeScales) {
  for (int32_t i = 0; i < 200; ++i) FillSlot(*ring_, i, 88, 1'000);
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
  constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
  for (const int32_t timeScale_s : {kMin, -1, 0, 1, kMax}) {
    for (const float soundSpeed : {std::numeric_limits<float>::denorm_min(), 1e-30f, 1'500.0f, 3e38f}) {
      Render({9'999, timeScale_s, kMax, soundSpeed}, 37, 21);
    }
  }
}

// Paint after paint, each compared with a whole rendering of the same ring.
class KeptImage : public EchogramImage {
 protected:
  // What a worker does: the slot's bytes change between two steps of its stamp.
  void WritePing(int32_t index) {
    FillSlot(*ring_, index, 88, 3'000);
    StoreSample(ring_->slots[index], 88, random_() % 1'500, 4'000);
    ring_->stamps[index] += 2;
  }

  std::minstd_rand random_{5};
};

TEST_F(KeptImage, FollowsPingsAcrossTheRingsEndAndBack) {
  int32_t newest = 9'950;
  for (int paint = 0; paint < 60; ++paint) {
    const auto ticks = static_cast<int32_t>(random_() % 4);  // 0: the newest slot is written again
    for (int32_t tick = 0; tick <= ticks; ++tick) WritePing((newest + tick) % kRingSlots);
    newest = (newest + ticks) % kRingSlots;
    Render({newest, 10, 12'000, 1'500.0f}, 77, 41);
  }
  for (const int32_t steps : {20, 100}) {  // back in a played file, and on with other pings
    newest = (newest + kRingSlots - steps) % kRingSlots;
    Render({newest, 10, 12'000, 1'500.0f}, 77, 41);
    for (int32_t tick = 0; tick < 30; ++tick) WritePing(newest = (newest + 1) % kRingSlots);
    Render({newest, 10, 12'000, 1'500.0f}, 77, 41);
  }
}

TEST_F(KeptImage, ForgetsWhatWouldLookDifferent) {
  for (int32_t i = 0; i < 400; ++i) WritePing(i);
  constexpr EchogramScale kScales[] = {
      {390, 10, 12'000, 1'500.0f}, {390, 30, 12'000, 1'500.0f}, {390, 30, 20'000, 1'500.0f},
      {390, 30, 20'000, 1'480.5f}, {390, 30, 1'000, 1'480.5f},  {390, 30, 0, 1'480.5f},
      {390, 30, 1'000, 0.0f},      {390, 10, 12'000, 1'500.0f}, {390, 10, 200'000, 1'500.0f},
  };
  for (const EchogramScale& scale : kScales) {
    Render(scale, 100, 50);
    Render(scale, 130, 50);
    Render(scale, 130, 51);
  }
  Render(kScales[0], 100, 50);
  for (const PaletteChoice& choice : {PaletteChoice{kBlackOnWhite}, PaletteChoice{kBlackOnWhite, 30, 60}}) {
    BuildPalette(palette_, choice);
    BuildAmplitudeColours(palette_, colours_);
    Render(kScales[0], 100, 50);
  }
  const TestRing first = std::exchange(ring_, MakeRing());
  for (int32_t i = 0; i < 400; ++i) WritePing(i);  // as often written as the first ring's
  Render(kScales[0], 100, 50);
}

TEST_F(KeptImage, PaintsASlotAgainThatWasBeingWritten) {
  for (int32_t i = 0; i < 120; ++i) WritePing(i);
  const EchogramScale scale{110, 10, 12'000, 1'500.0f};
  ring_->stamps[60] += 1;
  Render(scale, 100, 40);
  FillSlot(*ring_, 60, 36, 2'000);
  Render(scale, 100, 40);
  ring_->stamps[60] += 1;
  Render(scale, 100, 40);
}

TEST_F(KeptImage, RendersAllWhenItCannotKeep) {
  for (int32_t i = 0; i < 120; ++i) WritePing(i);
  Render({110, 10, 12'000, 1'500.0f}, 5, kMaxKeptRows + 1);
  Render({110, 10, 12'000, 1'500.0f}, kMaxJobs + 1, 3);
  Render({110, 10, 12'000, 1'500.0f}, 0, 3);
  Render({110, 10, 12'000, 1'500.0f}, 3, 0);
}

}  // namespace
}  // namespace tw
