#include "base/text_scan.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>

namespace tw {
namespace {

TEST(TextScan, WholeNumbers) {
  const struct {
    std::string_view text;
    bool valid;
    int32_t value;
    std::string_view rest;
  } rows[] = {
      {"12 x", true, 12, " x"},
      {" \r\n-7,", true, -7, ","},
      {"+7", true, 7, ""},
      {"+-7", false, 99, "+-7"},
      {"", false, 99, ""},
      {"x1", false, 99, "x1"},
      {"-", false, 99, "-"},
      {"999999999,", true, 999999999, ","},
      {"0000000012x", true, 12, "x"},
      {"2147483647", true, 2147483647, ""},
      {"2147483648", false, 99, "2147483648"},
      {"-2147483648.", true, -2147483647 - 1, "."},
  };
  for (const auto& row : rows) {
    std::string_view text = row.text;
    int32_t value = 99;
    EXPECT_EQ(ScanInt(text, value), row.valid) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
    EXPECT_EQ(text, row.rest) << row.text;
  }
  std::string_view text = "-1";
  uint32_t unsignedValue = 5;
  EXPECT_FALSE(ScanUint(text, unsignedValue));
  text = "4294967295";
  EXPECT_TRUE(ScanUint(text, unsignedValue));
  EXPECT_EQ(unsignedValue, 4294967295u);
}

TEST(TextScan, WidthsBoundTheDigits) {
  std::string_view text = "123456";
  int32_t a = 0;
  int32_t b = 0;
  EXPECT_TRUE(ScanIntWidth(text, 2, a));
  EXPECT_TRUE(ScanIntWidth(text, 2, b));
  EXPECT_EQ(a, 12);
  EXPECT_EQ(b, 34);
  EXPECT_EQ(text, "56");
  uint32_t sum = 0;
  text = "4Fz";
  EXPECT_TRUE(ScanHex(text, 2, sum));
  EXPECT_EQ(sum, 0x4Fu);
  EXPECT_FALSE(ScanHex(text, 2, sum));
}

TEST(TextScan, Floats) {
  const struct {
    std::string_view text;
    bool valid;
    float value;
    std::string_view rest;
  } rows[] = {
      {"1.5,2", true, 1.5f, ",2"}, {" +.25", true, .25f, ""},      {"-3.", true, -3.f, ""},
      {"1e3x", true, 1000.f, "x"}, {"1e400", false, 9.f, "1e400"}, {"1e39", false, 9.f, "1e39"},
      {"1e-400", true, 0.f, ""},   {"nan", false, 9.f, "nan"},     {"-inf", false, 9.f, "-inf"},
      {".", false, 9.f, "."},      {"", false, 9.f, ""},           {"0.5.1", true, 0.5f, ".1"},
      {"+-1", false, 9.f, "+-1"},  {"5f", true, 5.f, "f"},
  };
  for (const auto& row : rows) {
    std::string_view text = row.text;
    float value = 9.f;
    EXPECT_EQ(ScanFloat(text, value), row.valid) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
    EXPECT_EQ(text, row.rest) << row.text;
  }
}

TEST(TextScan, DoublesKeepSixDecimalsOfAPosition) {
  std::string_view text = "12311.123456,";
  double value = 0;
  EXPECT_TRUE(ScanDouble(text, value));
  EXPECT_EQ(value, 12311.123456);
  EXPECT_EQ(text, ",");
}

// Of every length, with the point at every place, as the C library reads them.
TEST(TextScan, DecimalsAreTheNearestDouble) {
  std::minstd_rand random(5);
  for (int run = 0; run < 20'000; ++run) {
    std::string text = run % 2 == 0 ? "-" : "";
    for (size_t digits = 1 + random() % 20; digits > 0; --digits)
      text += static_cast<char>('0' + random() % 10);
    text.insert(text.size() - random() % text.size(), ".");
    if (text.starts_with(".-")) continue;
    std::string_view rest = text;
    double value = 0;
    ASSERT_TRUE(ScanDouble(rest, value)) << text;
    ASSERT_EQ(value, std::strtod(text.c_str(), nullptr)) << text;
    ASSERT_EQ(rest, "") << text;
  }
}

TEST(TextScan, OutOfRangeIsNoValueAndTooSmallIsZero) {
  const std::string zeros(400, '0');
  const struct {
    std::string text;
    bool valid;
  } rows[] = {
      {"10.0e999", false},       {"1" + zeros, false},       {"-1e400", false},
      {"." + zeros + "1", true}, {"0." + zeros + "7", true}, {"-3E-400", true},
  };
  for (const auto& row : rows) {
    std::string_view text = row.text;
    double value = 9;
    EXPECT_EQ(ScanDouble(text, value), row.valid) << row.text;
    EXPECT_EQ(value, row.valid ? 0.0 : 9.0) << row.text;
  }
}

TEST(TextScan, NeverReadsBehindTheEnd) {
  const std::string_view whole = "123.45";
  std::string_view text = whole.substr(0, 2);
  float value = 0;
  EXPECT_TRUE(ScanFloat(text, value));
  EXPECT_EQ(value, 12.f);
  EXPECT_FALSE(ScanLiteral(text, "3"));
}

}  // namespace
}  // namespace tw
