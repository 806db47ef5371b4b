#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "app/state/slider_messages.h"
#include "display/slider_geometry.h"
#include "display/slider_state.h"
#include "tests/display/test_canvas.h"

namespace tw {
namespace {

constexpr uint64_t kMaxSize = std::numeric_limits<uint64_t>::max();

ProgressBlock Progress(int32_t sampleCount, uint64_t position, uint64_t fileSize) {
  return {Handle::null, kProgressSpan, sampleCount, 1, position, fileSize};
}

// 1,000 samples are a span of 320,000 bytes.
TEST(Slider, ThumbStandsWhereTheFileIs) {
  const struct {
    const char* what;
    ProgressBlock progress;
    int32_t sliderWidth;
    Numbers edges;
  } rows[] = {
      {"a tenth of the file", Progress(1'000, 0, 3'200'000), 1'000, {0, 4, 100, 18}},
      {"half way", Progress(1'000, 1'600'000, 3'200'000), 1'000, {450, 4, 550, 18}},
      {"at the end", Progress(1'000, 3'200'000, 3'200'000), 1'000, {900, 4, 1'000, 18}},
      {"beyond the end", Progress(1'000, 9'000'000, 3'200'000), 1'000, {900, 4, 1'000, 18}},
      {"a huge file", Progress(1'000, 0, 1'000'000'000'000), 1'000, {0, 4, 20, 18}},
      {"the largest file", Progress(1'000, kMaxSize, kMaxSize), 1'000, {980, 4, 1'000, 18}},
      {"a file shorter than a span", Progress(1'000, 5'000, 10'000), 1'000, {0, 4, 1'000, 18}},
      {"an empty file", Progress(1'000, 0, 0), 1'000, {0, 4, 1'000, 18}},
      {"an empty file read beyond its end", Progress(1'000, 7, 0), 1'000, {0, 4, 1'000, 18}},
      {"a slider as narrow as a thumb", Progress(1'000, 1'600'000, 3'200'000), 20, {0, 4, 20, 18}},
      {"a slider narrower than a thumb", Progress(1'000, 1'600'000, 3'200'000), 7, {0, 4, 7, 18}},
      {"a slider without width", Progress(1'000, 1'600'000, 3'200'000), 0, {0, 0, 0, 0}},
      {"no file", Progress(0, 1'600'000, 3'200'000), 1'000, {0, 0, 0, 0}},
      {"a sample count below 0", Progress(-5, 1'600'000, 3'200'000), 1'000, {0, 0, 0, 0}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(EdgesOf(ThumbOf(row.progress, {row.sliderWidth, 22, 96})), row.edges) << row.what;
  }
  EXPECT_EQ(EdgesOf(ThumbOf(Progress(1, 0, 1'000'000), {1'000, 33, 144})), (Numbers{0, 6, 30, 27}))
      << "grows with the screen's resolution";
}

// The thumb is 100 pixels wide on a track of 900, unless the row says something else.
TEST(Slider, CursorMeansAPosition) {
  const struct {
    const char* what;
    int32_t x, sliderWidth;
    uint64_t fileSize, position;
  } rows[] = {
      {"the thumb's middle at the left end", 50, 1'000, 3'200'000, 0},
      {"left of that", 10, 1'000, 3'200'000, 0},
      {"left of the slider", -2'000'000'000, 1'000, 3'200'000, 0},
      {"one pixel on", 51, 1'000, 3'200'000, 3'555},
      {"half of the track", 500, 1'000, 3'200'000, 1'600'000},
      {"the last place on the track", 896, 1'000, 3'200'000, 3'008'000},
      {"beyond it: half a span before the end", 897, 1'000, 3'200'000, 3'040'000},
      {"right of the slider", 2'000'000'000, 1'000, 3'200'000, 3'040'000},
      {"half a span is more than the file", 999, 1'000, 10'000, 0},
      {"an empty file", 500, 1'000, 0, 0},
      {"no track", 5, 20, 3'200'000, 3'040'000},
      {"no width", 5, 0, 3'200'000, 3'040'000},
      // The thumb has 20 pixels, the track 980: (500 - 10) / 980 of the file is half of it.
      {"the largest file", 500, 1'000, kMaxSize, kMaxSize / 2},
      {"one byte less", 500, 1'000, kMaxSize - 1, kMaxSize / 2},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(SeekPosition(Progress(1'000, 0, row.fileSize), row.x, {row.sliderWidth, 22, 96}), row.position)
        << row.what;
  }
}

TEST(Slider, DraggingMovesTheFileAndShutsOutTheWorker) {
  SliderState slider;
  slider.Resize({1'000, 22, 96});
  EXPECT_TRUE(slider.TakeProgress(Progress(1'000, 1'600'000, 3'200'000)));  // thumb from 450 to 550

  EXPECT_FALSE(slider.Move({300, 10}, true)) << "without a press on the thumb nothing is dragged";
  slider.Press({300, 10});
  EXPECT_FALSE(slider.IsDragging());

  slider.Press({500, 10});
  EXPECT_TRUE(slider.IsDragging());
  EXPECT_EQ(slider.Move({540, 10}, true), 1'742'222u);  // 490 / 900
  EXPECT_EQ(slider.Thumb().left, 489);
  EXPECT_FALSE(slider.TakeProgress(Progress(1'000, 0, 3'200'000)));
  EXPECT_FALSE(slider.TakePosition(0));
  EXPECT_EQ(slider.Thumb().left, 489);

  EXPECT_FALSE(slider.Move({700, 10}, true)) << "the cursor has outrun the thumb";
  EXPECT_FALSE(slider.IsHovered());
  EXPECT_TRUE(slider.IsDragging());
  EXPECT_TRUE(slider.Move({580, 10}, true)) << "back on it the drag goes on";

  EXPECT_FALSE(slider.Move({580, 10}, false)) << "the button came up somewhere else";
  EXPECT_FALSE(slider.IsDragging());
  EXPECT_TRUE(slider.TakePosition(0));
  EXPECT_EQ(slider.Thumb().left, 0);
}

TEST(Slider, AThumbThatFollowsGoesWhereTheMouseGoes) {
  SliderState slider;
  slider.Resize({1'000, 22, 96});
  slider.Follow(true);
  EXPECT_EQ(slider.Press({300, 10}), std::nullopt) << "no file";
  slider.TakeProgress(Progress(1'000, 1'600'000, 3'200'000));  // thumb from 450 to 550
  EXPECT_EQ(slider.Press({300, 10}), 888'888u) << "beside the thumb: 250 / 900";
  EXPECT_EQ(slider.Thumb().left, 249);
  EXPECT_EQ(slider.Move({700, 500}, true), 2'311'111u) << "650 / 900, far off";
  EXPECT_EQ(slider.Move({-400, -3}, true), 0u);
  slider.Release();
  EXPECT_EQ(slider.Press({90, 10}), std::nullopt) << "taken near its end";
  EXPECT_EQ(slider.Move({190, 10}, true), 355'555u) << "100 / 900, it does not jump below the cursor";
}

TEST(Slider, OnlyBlocksOnTheirWayAreTakenOver) {
  ProgressBlock other = Progress(1, 2, 3);
  for (const uintptr_t number :
       {uintptr_t{0}, uintptr_t{1}, uintptr_t{320}, UINTPTR_MAX, reinterpret_cast<uintptr_t>(&other)})
    EXPECT_EQ(ReceiveProgress(number), nullptr) << number;
  std::vector<uintptr_t> sent;
  for (uint64_t i = 0; sent.empty() || sent.back() != 0; ++i) sent.push_back(SendProgress(Progress(1, i, 3)));
  EXPECT_GT(sent.size(), 500u);
  for (size_t i = 0; sent[i] != 0; ++i) {
    const auto received = ReceiveProgress(sent[i]);
    ASSERT_NE(received, nullptr);
    EXPECT_EQ(received->position, i);
    EXPECT_EQ(ReceiveProgress(sent[i]), nullptr) << "once";
  }
}

TEST(Slider, SeekRequestIsTakenOnce) {
  uint64_t request = 0;
  EXPECT_EQ(TakeSeekRequest(request), std::nullopt);
  RequestSeek(request, 0);
  EXPECT_EQ(TakeSeekRequest(request), 0u);
  EXPECT_EQ(TakeSeekRequest(request), std::nullopt);
  RequestSeek(request, 1);
  RequestSeek(request, 0x1'2345'6789);
  EXPECT_EQ(TakeSeekRequest(request), 0x1'2345'6789u);
}

}  // namespace
}  // namespace tw
