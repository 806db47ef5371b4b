#include "gps/nmea_scan.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tw {
namespace {

TEST(NmeaScan, CountsWhatItConverts) {
  using Values = std::tuple<std::string_view, double, char, int32_t>;
  const struct {
    std::string_view text;
    int converted;
    Values values;  // "-", -1, '?' and -1 where nothing was converted
  } rows[] = {
      {"$X,ab,1.5,N,7*", 4, {"ab", 1.5, 'N', 7}},
      {"$X,,,,*", 4, {"", 0, '\0', 0}},                // empty fields count
      {"$X,ab,1.5,N,7,8,9*", 4, {"ab", 1.5, 'N', 7}},  // surplus ones do not
      {"$X,ab,1.5,N*", 3, {"ab", 1.5, 'N', -1}},       // the sentence ended
      {"$X,ab,1.5,N,", 3, {"ab", 1.5, 'N', -1}},
      {"$X,ab,1.5,N", 3, {"ab", 1.5, 'N', -1}},
      {"$X,ab,x,N,7*", 1, {"ab", -1, '?', -1}},  // no number
      {"$X,ab,1.5x,N,7*", 2, {"ab", 1.5, '?', -1}},
      {"$X,ab,1.5,NE,7*", 3, {"ab", 1.5, 'N', -1}},
      {"$X,ab,1e999,N,7*", 1, {"ab", -1, '?', -1}},
      {"$X,ab,1.5,N,99999999999*", 3, {"ab", 1.5, 'N', -1}},
      {"$X*", 0, {"-", -1, '?', -1}},
      {"$Y,ab,1.5,N,7*", 0, {"-", -1, '?', -1}},
      {"", 0, {"-", -1, '?', -1}},
  };
  for (const auto& row : rows) {
    Values values{"-", -1, '?', -1};
    auto& [text, real, letter, whole] = values;
    const ScanTarget targets[] = {&text, &real, &letter, &whole};
    EXPECT_EQ(ScanSentence(row.text, "$X,%s,%f,%C,%d*", targets), row.converted) << row.text;
    EXPECT_EQ(values, row.values) << row.text;
  }
}

TEST(NmeaScan, NumbersThatShareAField) {
  const struct {
    std::string_view text;
    int converted;
    std::tuple<int32_t, int32_t, int32_t> date;
  } rows[] = {{",230394,", 3, {23, 3, 94}}, {",,", 3, {0, 0, 0}},        {",*", 3, {0, 0, 0}},
              {",2303,", 2, {23, 3, -1}},   {",23039x,", 3, {23, 3, 9}}, {",2x0394,", 1, {2, -1, -1}},
              {",", 0, {-1, -1, -1}}};
  for (const auto& row : rows) {
    std::tuple<int32_t, int32_t, int32_t> date{-1, -1, -1};
    const ScanTarget targets[] = {&std::get<0>(date), &std::get<1>(date), &std::get<2>(date)};
    EXPECT_EQ(ScanSentence(row.text, ",%2d%2d%2d", targets), row.converted) << row.text;
    EXPECT_EQ(date, row.date) << row.text;
  }
}

TEST(NmeaScan, ABlankInTheFormatIsAnyNumberOfBlanks) {
  for (const std::string_view text : {"1,A*", "1, A*", "1,   A*"}) {
    int32_t number = 0;
    char letter = '?';
    const ScanTarget targets[] = {&number, &letter};
    EXPECT_EQ(ScanSentence(text, "%d, %C*", targets), 2) << text;
    EXPECT_EQ(letter, 'A') << text;
  }
}

}  // namespace
}  // namespace tw
