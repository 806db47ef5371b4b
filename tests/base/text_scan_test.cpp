#include "base/text_scan.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <random>
#include <string>

namespace tw {
namespace {

template <typename Number>
struct Row {
  std::string text;
  std::optional<Number> value;  // none: nothing is read, and the target keeps what it held
  std::string_view rest = "";   // of the text when a value was read
};

template <typename Number>
void ExpectScanned(bool (*scan)(std::string_view&, Number&), std::initializer_list<Row<Number>> rows) {
  for (const Row<Number>& row : rows) {
    std::string_view text = row.text;
    Number value = 99;
    EXPECT_EQ(scan(text, value), row.value.has_value()) << row.text;
    EXPECT_EQ(value, row.value.value_or(Number{99})) << row.text;
    EXPECT_EQ(text, row.value ? row.rest : row.text) << row.text;
  }
}

TEST(TextScan, WholeNumbers) {
  ExpectScanned<int32_t>(ScanInt, {{"12 x", 12, " x"},
                                   {" \r\n-7,", -7, ","},
                                   {"+7", 7},
                                   {"+-7", {}},
                                   {"", {}},
                                   {"x1", {}},
                                   {"-", {}},
                                   {"999999999,", 999999999, ","},
                                   {"0000000012x", 12, "x"},
                                   {"2147483647", 2147483647},
                                   {"2147483648", {}},
                                   {"-2147483648.", -2147483647 - 1, "."}});
  ExpectScanned<uint32_t>(ScanUint, {{"-1", {}}, {"4294967295", 4294967295u}, {"4294967296", {}}});
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
  ExpectScanned<float>(ScanFloat, {{"1.5,2", 1.5f, ",2"},
                                   {" +.25", .25f},
                                   {"-3.", -3.f},
                                   {"1e3x", 1000.f, "x"},
                                   {"1e400", {}},
                                   {"1e39", {}},
                                   {"1e-400", 0.f},
                                   {"nan", {}},
                                   {"-inf", {}},
                                   {".", {}},
                                   {"", {}},
                                   {"0.5.1", 0.5f, ".1"},
                                   {"+-1", {}},
                                   {"5f", 5.f, "f"}});
}

TEST(TextScan, DoublesOutOfRangeAreNoneAndTooSmallOnesZero) {
  const std::string zeros(400, '0');
  ExpectScanned<double>(ScanDouble, {{"12311.123456,", 12311.123456, ","},
                                     {"10.0e999", {}},
                                     {"1" + zeros, {}},
                                     {"-1e400", {}},
                                     {"." + zeros + "1", 0.0},
                                     {"0." + zeros + "7", 0.0},
                                     {"-3E-400", 0.0}});
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

TEST(TextScan, NeverReadsBehindTheEnd) {
  std::string_view text = std::string_view("123.45").substr(0, 2);
  float value = 0;
  EXPECT_TRUE(ScanFloat(text, value));
  EXPECT_EQ(value, 12.f);
  EXPECT_FALSE(ScanLiteral(text, "3"));
}

}  // namespace
}  // namespace tw
