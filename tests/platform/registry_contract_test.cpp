#include <gtest/gtest.h>

#include <string>

#include "platform/registry.h"

namespace tw {
namespace {

constexpr wchar_t kKey[] = L"Software\\Tidewriter platform contract\\Settings";

TEST(RegistryContract, NumbersOfAllSizes) {
  for (const uint32_t number : {0u, 115200u, 0xFFFFFFFFu}) {
    uint32_t stored = 1;
    ASSERT_TRUE(WriteRegistryNumber(kKey, L"Number", number));
    EXPECT_TRUE(ReadRegistryNumber(kKey, L"Number", stored));
    EXPECT_EQ(stored, number);
  }
}

TEST(RegistryContract, TextFitsByTheBytesOfItsUtf16AndInItsBuffer) {
  // 261 bytes hold 130 whole units, one of them the terminating zero.
  const struct {
    size_t characters;
    wchar_t character;
    uint32_t size_bytes;
    bool fits;
  } rows[] = {{0, L'a', 261, true},   {129, L'a', 261, true},      {130, L'a', 261, false},
              {130, L'a', 262, true}, {129, L'\u00E9', 261, true}, {3, L'a', 8, true},
              {3, L'a', 7, false},    {0, L'a', 2, true},          {0, L'a', 1, false}};
  for (const auto& row : rows) {
    const std::wstring text(row.characters, row.character);
    wchar_t stored[261] = L"kept";
    ASSERT_TRUE(WriteRegistryText(kKey, L"Text", text.c_str()));
    EXPECT_EQ(ReadRegistryText(kKey, L"Text", stored, row.size_bytes), row.fits) << row.characters;
    EXPECT_EQ(std::wstring(stored), row.fits ? text : L"kept") << row.characters;
  }
  wchar_t small[5] = L"kept";
  ASSERT_TRUE(WriteRegistryText(kKey, L"Text", L"12345"));
  EXPECT_FALSE(ReadRegistryText(kKey, L"Text", small, 261));
  EXPECT_STREQ(small, L"kept");
}

TEST(RegistryContract, AMissingValueOrOneOfAnotherKindIsNone) {
  constexpr uint8_t kBytes[] = {1, 2, 3, 4};
  uint32_t number = 7;
  wchar_t text[16] = L"kept";
  ASSERT_TRUE(WriteRegistryText(kKey, L"Text", L"abc"));
  ASSERT_TRUE(WriteRegistryBytes(kKey, L"Bytes", kBytes));
  ASSERT_TRUE(WriteRegistryNumber(kKey, L"Number", 5));
  EXPECT_FALSE(ReadRegistryNumber(kKey, L"Missing", number));
  EXPECT_FALSE(ReadRegistryNumber(kKey, L"Text", number));
  EXPECT_FALSE(ReadRegistryNumber(kKey, L"Bytes", number));
  EXPECT_FALSE(ReadRegistryNumber(L"Software\\Tidewriter platform contract\\Other", L"Number", number));
  EXPECT_FALSE(ReadRegistryText(kKey, L"Missing", text, sizeof(text)));
  EXPECT_FALSE(ReadRegistryText(kKey, L"Number", text, sizeof(text)));
  EXPECT_FALSE(ReadRegistryText(kKey, L"Bytes", text, sizeof(text)));
  EXPECT_EQ(number, 7u);
  EXPECT_STREQ(text, L"kept");
}

}  // namespace
}  // namespace tw
