#include "base/text_format.h"

#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace tw
