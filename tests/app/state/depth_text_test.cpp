#include "app/state/depth_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace tw {
namespace {

// Feet worked out by hand: metres / 0.3048.
TEST(DepthText, HasTheUnitsFigureAndItsName) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    double metres;
    DepthUnit unit;
    int decimals, width;
    const wchar_t* text;
  };
  const Row rows[] = {
      {12.3456, kMetres, 3, 0, L"12.346m"}, {12.3456, kFeet, 3, 0, L"40.50ft"},
      {12.3456, kFeet, 1, 0, L"40.5ft"},    {0.3048, kFeet, 2, 0, L"1.00ft"},
      {2, kMetres, 0, 3, L"  2m"},          {2, kFeet, 0, 3, L"  7ft"},
      {200, kFeet, 0, 3, L"656ft"},         {-1.5, kFeet, 2, 0, L"-4.92ft"},
      {kNone, kFeet, 2, 0, L"nanft"},
  };
  for (const Row& row : rows) {
    wchar_t text[32];
    EXPECT_EQ(FormatDepth(text, row.metres, row.unit, row.decimals, row.width),
              std::wstring(row.text).size());
    EXPECT_EQ(std::wstring(text), row.text);
  }
}

TEST(DepthText, AHugeNumberIsCutToItsPlace) {
  wchar_t text[8];
  EXPECT_EQ(FormatDepth(text, 1e300, kFeet, 2), 7u);
  EXPECT_EQ(std::wstring(text), L"3280839");
}

TEST(DepthText, AScaleHasADecimalWhereItsDivisionsNeedOne) {
  EXPECT_EQ(ScaleDecimals(9.999, kMetres), 1);
  EXPECT_EQ(ScaleDecimals(10, kMetres), 0);
  EXPECT_EQ(ScaleDecimals(30, kFeet), 1);
  EXPECT_EQ(ScaleDecimals(40, kFeet), 0);
}

}  // namespace
}  // namespace tw
