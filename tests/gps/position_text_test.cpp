#include "gps/position_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <string>

namespace tw {
namespace {

std::wstring Text(const PositionValues& values) {
  wchar_t text[256];
  FormatPosition(text, values);
  return text;
}

float Radians(double degrees) {
  return static_cast<float>(degrees * std::numbers::pi / 180);
}

TEST(PositionText, DegreesAndMinutesToRadians) {
  EXPECT_NEAR(RadiansFromDegreesMinutes(5230.5), 0.916443, 5e-7);
  EXPECT_NEAR(RadiansFromDegreesMinutes(-5230.5), -0.916443, 5e-7);
  EXPECT_NEAR(RadiansFromDegreesMinutes(18000), std::numbers::pi, 1e-12);
  EXPECT_NEAR(RadiansFromDegreesMinutes(0.6), 0.01 * std::numbers::pi / 180, 1e-12);
  EXPECT_EQ(RadiansFromDegreesMinutes(0), 0);
  EXPECT_TRUE(std::isfinite(RadiansFromDegreesMinutes(1e38))) << "degrees beyond any integer";
}

TEST(PositionText, WholeTexts) {
  EXPECT_EQ(Text({.fixType = 3, .latitude_rad = 0.5f, .longitude_rad = -2.25f, .pdop = 1.9f}),
            L"Position(3D):  28\u00b0 38.8734\u2032 N, 128\u00b0 54.9302\u2032 W, PDOP:  1.9 (Excellent)");
  EXPECT_EQ(Text({.fixType = 1, .latitude_rad = 0, .longitude_rad = 0, .pdop = 0}),
            L"Position(N/A):   0\u00b0 00.0000\u2032 S,   0\u00b0 00.0000\u2032 W, PDOP:  0.0 (N/A)");
  EXPECT_TRUE(Text({3, 0, 0, 0.99f}).ends_with(L"PDOP:  1.0 (Ideal)"));
}

TEST(PositionText, FixTypeWords) {
  for (const auto& [type, word] :
       {std::pair{0, L"(3D)"}, {1, L"(N/A)"}, {2, L"(2D)"}, {3, L"(3D)"}, {7, L"(3D)"}}) {
    EXPECT_NE(Text({type, 0, 0, 1}).find(word), std::wstring::npos) << type;
  }
}

TEST(PositionText, Quadrants) {
  for (const auto& [latitude, longitude, letters] :
       {std::tuple{0.1f, 0.1f, L"NE"}, {0.1f, -0.1f, L"NW"}, {-0.1f, 0.1f, L"SE"}, {-0.1f, -0.1f, L"SW"}}) {
    const std::wstring text = Text({3, latitude, longitude, 1});
    EXPECT_EQ(text.find(L'-'), text.npos);
    EXPECT_NE(text.find(std::wstring(L"\u2032 ") + letters[0] + L","), text.npos) << text.c_str();
    EXPECT_NE(text.find(std::wstring(L"\u2032 ") + letters[1] + L","), text.npos) << text.c_str();
  }
}

TEST(PositionText, QualityWordsAtTheirBounds) {
  const struct {
    float pdop;
    const char* word;
  } rows[] = {{0.0f, "N/A"},        {0.01f, "Ideal"}, {0.99f, "Ideal"}, {1.0f, "Excellent"},
              {1.99f, "Excellent"}, {2.0f, "Good"},   {4.99f, "Good"},  {5.0f, "Moderate"},
              {9.99f, "Moderate"},  {10.0f, "Fair"},  {19.99f, "Fair"}, {20.0f, "Poor"},
              {141.0f, "Poor"}};
  for (const auto& row : rows) EXPECT_STREQ(PdopWord(row.pdop), row.word) << row.pdop;
}

TEST(PositionText, WhatIsNoNumberOrNoAngleIsShownAsZero) {
  const float huge = std::numeric_limits<float>::max();
  const float none = std::numeric_limits<float>::quiet_NaN();
  for (const float bad : {none, std::numeric_limits<float>::infinity(), huge, -huge, Radians(400)}) {
    const std::wstring text = Text({3, bad, bad, bad});
    EXPECT_NE(text.find(L"  0\u00b0 00.0000\u2032"), text.npos) << bad;
    EXPECT_LT(text.size(), 120u) << bad;
  }
  EXPECT_NE(Text({3, 0, 0, none}).find(L"PDOP:  0.0 (N/A)"), std::wstring::npos);
}

}  // namespace
}  // namespace tw
