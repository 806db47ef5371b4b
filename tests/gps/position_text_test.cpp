#include "gps/position_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <string>

namespace tw {
namespace {

TEST(PositionText, DegreesAndMinutesToRadians) {
  EXPECT_NEAR(RadiansFromDegreesMinutes(5230.5), 0.916443, 5e-7);
  EXPECT_NEAR(RadiansFromDegreesMinutes(-5230.5), -0.916443, 5e-7);
  EXPECT_NEAR(RadiansFromDegreesMinutes(18000), std::numbers::pi, 1e-12);
  EXPECT_NEAR(RadiansFromDegreesMinutes(0.6), 0.01 * std::numbers::pi / 180, 1e-12);
  EXPECT_EQ(RadiansFromDegreesMinutes(0), 0);
  EXPECT_TRUE(std::isfinite(RadiansFromDegreesMinutes(1e38))) << "degrees beyond any integer";
}

TEST(PositionText, WholeTexts) {
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinite = std::numeric_limits<float>::infinity();
  constexpr float kHuge = std::numeric_limits<float>::max();
  const wchar_t kZero[] =
      L"Position(3D):   0\u00b0 00.0000\u2032 S,   0\u00b0 00.0000\u2032 W, PDOP:  0.0 (N/A)";
  const wchar_t kNorthEast[] =
      L"Position(3D):   0\u00b0 00.0000\u2032 N,   0\u00b0 00.0000\u2032 E, PDOP:  0.0 (N/A)";
  const struct {
    PositionValues values;
    std::wstring text;
  } rows[] = {
      {{3, 0.5f, -2.25f, 1.9f},
       L"Position(3D):  28\u00b0 38.8734\u2032 N, 128\u00b0 54.9302\u2032 W, PDOP:  1.9 (Excellent)"},
      {{2, -0.5f, 2.25f, 0.99f},
       L"Position(2D):  28\u00b0 38.8734\u2032 S, 128\u00b0 54.9302\u2032 E, PDOP:  1.0 (Ideal)"},
      {{1, 0, 0, 0},
       L"Position(N/A):   0\u00b0 00.0000\u2032 S,   0\u00b0 00.0000\u2032 W, PDOP:  0.0 (N/A)"},
      {{0, 0, 0, 0}, kZero},
      {{7, 0, 0, 0}, kZero},
      // What is no number, or no angle, is shown as 0, with the letters of its sign.
      {{3, kNone, kNone, kNone}, kZero},
      {{3, -kInfinite, -kInfinite, 0}, kZero},
      {{3, kInfinite, kInfinite, 0}, kNorthEast},
      {{3, kHuge, kHuge, 0}, kNorthEast},
      {{3, 7, 7, 0}, kNorthEast},
  };
  for (const auto& row : rows) {
    wchar_t text[256];
    FormatPosition(text, row.values);
    EXPECT_EQ(text, row.text);
  }
}

TEST(PositionText, QualityWordsAtTheirBounds) {
  const std::pair<float, const char*> rows[] = {
      {0.0f, "N/A"},    {0.01f, "Ideal"}, {0.99f, "Ideal"},   {1.0f, "Excellent"}, {1.99f, "Excellent"},
      {2.0f, "Good"},   {4.99f, "Good"},  {5.0f, "Moderate"}, {9.99f, "Moderate"}, {10.0f, "Fair"},
      {19.99f, "Fair"}, {20.0f, "Poor"},  {141.0f, "Poor"}};
  for (const auto& [pdop, word] : rows) EXPECT_STREQ(PdopWord(pdop), word) << pdop;
}

}  // namespace
}  // namespace tw
