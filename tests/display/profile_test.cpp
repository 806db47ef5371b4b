#include "display/profile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "display/palette.h"
#include "tests/display/test_canvas.h"
#include "tests/display/test_ring.h"

namespace tw {
namespace {

// A panel 400 x 240: profile from x 285 to 345, image rows 20 to 220. At 1,500 m/s and 1.5 m the 200 rows
// show the samples 0 to 199, one a row.
constexpr EchogramScale kScale{3, 10, 1'500, 1'500.0f};
constexpr Pixel kGrey = 0xAFAFAF;
constexpr Pixel kMarker = 0xFFFA9D;

class Profile : public testing::Test {
 protected:
  Profile() { BuildPalette(palette_); }

  void Draw(const EchogramScale& scale, int32_t threshold_percent) {
    FillRect(canvas_.Whole(), {0, 0, 400, 240}, kBlack);
    DrawProfile(*ring_, scale, layout_, threshold_percent, palette_, *scratch_, canvas_.Whole());
  }

  TestRing ring_ = MakeRing();
  uint8_t* const slot_ = ring_->slots[3];
  std::unique_ptr<ProfileScratch> scratch_ = std::make_unique<ProfileScratch>();
  DisplayPalette palette_;
  PanelLayout layout_ = LayOutPanel(0, 400, 240, 96);
  TestCanvas canvas_{400, 240};
};

TEST_F(Profile, PointsLieBetweenSamples) {
  const struct {
    const char* what;
    int32_t index, amplitude;
    Numbers place;
  } rows[] = {
      {"first sample", 0, 0, {286, 21}},       {"a quarter of the way to the next", 1, 250, {289, 21}},
      {"three quarters", 3, 750, {296, 21}},   {"the next sample", 4, 1'000, {300, 22}},
      {"capped", 8, 4'095, {346, 23}},         {"a quarter of the way down from 5,000", 9, 3'750, {340, 23}},
      {"half way down", 10, 2'500, {322, 23}},
  };
  scratch_->amplitudes[1] = 1'000;
  scratch_->amplitudes[2] = 5'000;
  for (const auto& row : rows) {
    const ProfilePoint point = FindProfilePoint(row.index, *scratch_, kScale, layout_);
    EXPECT_EQ(point.amplitude, row.amplitude) << row.what;
    EXPECT_EQ(PlaceOf(point.at), row.place) << row.what;
  }
}

TEST_F(Profile, StrongEchoesAreColouredWeakOnesGrey) {
  const struct {
    const char* what;
    int32_t threshold_percent, x, y;
    Pixel colour;
  } rows[] = {
      {"below the threshold", 50, 286, 40, kGrey},
      {"the threshold over an echo", 50, 285 + 30, 120, kMarker},
      {"above it: the palette's entry 3,000", 50, 285 + 44, 140, 0xABD700},
      {"no echo there", 50, 285 + 44, 200, kBlack},
      {"on the way to an echo just as strong as the threshold", 50, 310, 70, kGrey},
      {"the threshold begins", 50, 285 + 30, 20, kMarker},
      {"and ends", 50, 285 + 30, 220, kMarker},
      {"not above", 50, 285 + 30, 19, kBlack},
      {"not below", 50, 285 + 30, 221, kBlack},
      {"the same echo below a higher threshold", 90, 285 + 44, 140, kGrey},
      {"the weakest right of the threshold: entry 0", 0, 286, 200, 0x140028},
  };
  for (size_t i = 50; i < 100; ++i) StoreSample(slot_, 88, i, 2'047);   // x 285 + 30
  for (size_t i = 100; i < 150; ++i) StoreSample(slot_, 88, i, 3'000);  // x 285 + 44
  for (const auto& row : rows) {
    Draw(kScale, row.threshold_percent);
    EXPECT_EQ(canvas_.At(row.x, row.y), row.colour) << row.what;
  }
}

TEST_F(Profile, BehindTheLastSampleItIsZero) {
  StoreLe<uint32_t>(slot_ + 4, 4'096);  // leaves room for 27,632 samples
  for (size_t i = 0; i < 27'632; ++i) StoreSample(slot_, 4'096, i, 4'095);
  std::fill(std::begin(scratch_->amplitudes), std::end(scratch_->amplitudes), uint16_t{4'095});
  Draw({3, 10, 444'540, 1'500.0f}, 0);  // 200 rows show the samples 0 to 59,271
  EXPECT_EQ(canvas_.At(286 + 60, 20 + 90), 0xFF0000u);
  EXPECT_EQ(canvas_.At(286 + 60, 20 + 97), kBlack);   // within a slot with a short header
  EXPECT_EQ(canvas_.At(286 + 60, 20 + 110), kBlack);  // beyond any slot
}

TEST_F(Profile, OnlyTheThresholdWhenTheScaleCannotBeDrawn) {
  for (size_t i = 0; i < 300; ++i) StoreSample(slot_, 88, i, 4'095);
  Draw({3, 10, 1'500, 0.0f}, 50);
  const auto& pixels = canvas_.Pixels();
  EXPECT_EQ(pixels.size() - static_cast<size_t>(std::count(pixels.begin(), pixels.end(), kBlack)), 201u);
}

TEST_F(Profile, ThresholdIsBounded) {
  EXPECT_EQ(ThresholdX(layout_, 20), 297);
  EXPECT_EQ(ThresholdX(layout_, -5), 285);
  EXPECT_EQ(ThresholdX(layout_, 2'000'000'000), 345);
}

}  // namespace
}  // namespace tw
