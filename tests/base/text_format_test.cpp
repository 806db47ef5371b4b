#include "base/text_format.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace tw {
namespace {

TEST(TextFormat, CutsAndTerminates) {
  char out[5] = "zzzz";
  EXPECT_EQ(FormatText(out, "%d", 12345), 4u);
  EXPECT_STREQ(out, "1234");
  EXPECT_EQ(FormatText(std::span<char>(), "%d", 1), 0u);
}

TEST(TextFormat, TiesGoToTheEvenDigit) {
  char out[32];
  FormatText(out, "%.1f %.1f %.0f", 1.25, 1.75, 2.5);
  EXPECT_STREQ(out, "1.2 1.8 2");
}

TEST(TextFormat, WideTextCarriesEveryCharacter) {
  wchar_t out[32];
  EXPECT_EQ(FormatWide(out, "%.1f°C", 12.5), 6u);
  EXPECT_EQ(std::wstring(out), L"12.5°C");
  char back[32];
  NarrowText(back, L"궁서 ′ \U0001F6A2");
  EXPECT_STREQ(back, "궁서 ′ \U0001F6A2");
  WidenText(out, back);
  EXPECT_EQ(std::wstring(out), L"궁서 ′ \U0001F6A2");
}

TEST(TextFormat, InvalidUtf8BecomesReplacementCharacters) {
  wchar_t out[8];
  for (const char* bad : {"\xFF", "\xC0", "\xED\xA0\x80", "\xE2\x82", "\xF5\x80\x80\x80"}) {
    ASSERT_GE(WidenText(out, bad), 1u);
    EXPECT_EQ(out[0], L'\xFFFD') << bad;
  }
}

TEST(TextFormat, NeverSplitsACharacterAtTheEnd) {
  char narrow[4];
  EXPECT_EQ(NarrowText(narrow, L"a궁"), 1u);
  EXPECT_STREQ(narrow, "a");
}

// The C library is asked for the same, over all magnitudes and with ties.
TEST(FormatFixed, GivesWhatPrintfGives) {
  const double values[] = {0.0,      -0.0,    0.5,        -0.5,    1.5,      2.5,  0.125, 0.375,
                           1e-9,     -1e-12,  0.00005,    0.00015, 1e15,     1e22, -3.75, 450.0,
                           99.99995, 0.99995, 3.40282e38, 1.4e-45, 65'535.5, 0.1f, 0.3f,  123'456.789f};
  for (const double value : values) {
    for (const int decimals : {0, 1, 2, 4, 6, 9}) {
      char wanted[400];
      const int length = std::snprintf(wanted, sizeof wanted, "%.*f", decimals, value);
      char text[400];
      const size_t size = FormatFixed(text, value, decimals);
      EXPECT_EQ(std::string_view(text, size), std::string_view(wanted, static_cast<size_t>(length)));
    }
  }
  char small[3];
  EXPECT_EQ(FormatFixed(small, 1.25, 2), 0u) << "it does not fit";
}

}  // namespace
}  // namespace tw
