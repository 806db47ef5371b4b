#include "app/settings/depth_figures.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace tw {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

TEST(DepthFigures, NoStaleDepthLooksAlive) {
  const struct {
    const char* what;
    DepthSource source;
    float altitude_m;
    uint32_t age_ms;
    DepthUnit unit;
    DepthLook look;
    const wchar_t* text;  // depth, note, alarm
  } rows[] = {
      {"live", DepthSource::device, 12.345f, 1'999, kMetres, DepthLook::alive, L"12.35|m|"},
      {"stale", DepthSource::device, 12.345f, 2'000, kMetres, DepthLook::stale, L"12.35|m, 2 s ago|"},
      {"stale and shallow", DepthSource::device, 1.5f, 4'999, kMetres, DepthLook::stale, L"1.50|m, 4 s ago|"},
      {"lost", DepthSource::device, 12.345f, 5'000, kMetres, DepthLook::nothing, L"--.--|m|"},
      {"no bottom", DepthSource::device, 0.0f, 0, kMetres, DepthLook::nothing, L"--.--|m|"},
      {"not a number", DepthSource::device, kNaN, 0, kMetres, DepthLook::nothing, L"--.--|m|"},
      {"shallow", DepthSource::device, 1.99f, 0, kMetres, DepthLook::alarm, L"1.99|m, SHALLOW|SHALLOW 1.99m"},
      {"not quite", DepthSource::device, 2.0f, 0, kMetres, DepthLook::alive, L"2.00|m|"},
      {"deep", DepthSource::device, 50.5f, 0, kFeet, DepthLook::alarm, L"165.68|ft, DEEP|DEEP 165.68ft"},
      {"played, no alarm", DepthSource::recording, 1.5f, 60'000, kMetres, DepthLook::alive,
       L"1.50|m, playback|"},
      {"kilometres", DepthSource::recording, 11'000.0f, 0, kMetres, DepthLook::alive, L"11000|m, playback|"},
      {"nothing goes on", DepthSource::nothing, 12.0f, 0, kMetres, DepthLook::nothing, L"--.--|m|"},
  };
  for (const auto& row : rows) {
    const DepthFigures shown =
        DescribeDepths({row.source, false, {{row.altitude_m, row.age_ms}, {}}, row.unit, 2.0, 50.0});
    EXPECT_EQ(shown.count, 1);
    EXPECT_EQ(shown.figures[0].look, row.look) << row.what;
    EXPECT_EQ(std::wstring(shown.figures[0].depth) + L"|" + shown.figures[0].note + L"|" + shown.alarm,
              row.text)
        << row.what;
  }
}

TEST(DepthFigures, EachChannelHasItsOwnAge) {
  const DepthFigures shown =
      DescribeDepths({DepthSource::device, true, {{10.0f, 0}, {1.0f, 6'000}}, kMetres, 2.0, 0});
  ASSERT_EQ(shown.count, 2);
  EXPECT_STREQ(shown.figures[0].note, L"m, high");
  EXPECT_EQ(shown.figures[1].look, DepthLook::nothing);
  EXPECT_STREQ(shown.figures[1].note, L"m, low");
  EXPECT_STREQ(shown.alarm, L"");
}

}  // namespace
}  // namespace tw
