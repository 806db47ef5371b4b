#include "display/kept_echogram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "tests/display/test_ring.h"

namespace tw {
namespace {

// Each paint is compared with a whole rendering of the same ring.
class KeptImage : public testing::Test {
 protected:
  KeptImage() {
    DisplayPalette palette;
    BuildPalette(palette);
    BuildAmplitudeColours(palette, *colours_);
  }

  // What a worker does: the slot's bytes change between two steps of its stamp.
  void WritePing(int32_t index) {
    FillSlot(*ring_, index, 88, 3'000);
    StoreSample(ring_->slots[index], 88, random_() % 1'500, 4'000);
    ring_->stamps[index] += 2;
  }

  void ExpectSamePicture(const EchogramScale& scale, int32_t width, int32_t height) {
    const auto pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    std::vector<Pixel> kept(pixels, 0xDEAD);
    std::vector<Pixel> full(pixels, 0xBEEF);
    kept_->Render(*ring_, scale, *colours_, *scratch_, {kept.data(), width, height, width});
    RenderEchogram(*ring_, scale, *colours_, *scratch_, {full.data(), width, height, width});
    const auto wrong = std::mismatch(kept.begin(), kept.end(), full.begin()).first - kept.begin();
    EXPECT_EQ(wrong, static_cast<ptrdiff_t>(pixels)) << "the first wrong pixel; newest " << scale.newest;
  }

  TestRing ring_ = MakeRing();
  std::minstd_rand random_{5};
  std::unique_ptr<AmplitudeColours> colours_ = std::make_unique<AmplitudeColours>();
  std::unique_ptr<EchogramScratch> scratch_ = std::make_unique<EchogramScratch>();
  std::unique_ptr<KeptEchogram> kept_ = std::make_unique<KeptEchogram>();
};

TEST_F(KeptImage, FollowsPingsAcrossTheRingsEndAndBack) {
  int32_t newest = 9'950;
  for (int paint = 0; paint < 60; ++paint) {
    const auto ticks = static_cast<int32_t>(random_() % 4);  // 0: the newest slot is written again
    for (int32_t tick = 0; tick <= ticks; ++tick) WritePing((newest + tick) % kRingSlots);
    newest = (newest + ticks) % kRingSlots;
    ExpectSamePicture({newest, 10, 12'000, 1'500.0f}, 77, 41);
  }
  for (const int32_t steps : {20, 100}) {  // back in a played file, and on with other pings
    newest = (newest + kRingSlots - steps) % kRingSlots;
    ExpectSamePicture({newest, 10, 12'000, 1'500.0f}, 77, 41);
    for (int32_t tick = 0; tick < 30; ++tick) WritePing(newest = (newest + 1) % kRingSlots);
    ExpectSamePicture({newest, 10, 12'000, 1'500.0f}, 77, 41);
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
    ExpectSamePicture(scale, 100, 50);
    ExpectSamePicture(scale, 130, 50);
    ExpectSamePicture(scale, 130, 51);
  }
  const TestRing first = std::exchange(ring_, MakeRing());
  WritePing(380);
  ExpectSamePicture(kScales[0], 100, 50);
}

TEST_F(KeptImage, PaintsASlotAgainThatWasBeingWritten) {
  for (int32_t i = 0; i < 120; ++i) WritePing(i);
  const EchogramScale scale{110, 10, 12'000, 1'500.0f};
  ring_->stamps[60] += 1;
  ExpectSamePicture(scale, 100, 40);
  FillSlot(*ring_, 60, 36, 2'000);
  ExpectSamePicture(scale, 100, 40);
  ring_->stamps[60] += 1;
  ExpectSamePicture(scale, 100, 40);
}

TEST_F(KeptImage, RendersAllWhenItCannotKeep) {
  for (int32_t i = 0; i < 120; ++i) WritePing(i);
  ExpectSamePicture({110, 10, 12'000, 1'500.0f}, 5, kMaxKeptRows + 1);
  ExpectSamePicture({110, 10, 12'000, 1'500.0f}, kMaxJobs + 1, 3);
  ExpectSamePicture({110, 10, 12'000, 1'500.0f}, 0, 3);
  ExpectSamePicture({110, 10, 12'000, 1'500.0f}, 3, 0);
}

}  // namespace
}  // namespace tw
