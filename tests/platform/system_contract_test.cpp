#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/file.h"
#include "platform/memory.h"
#include "platform/system_error.h"

namespace tw {
namespace {

TEST(SystemErrorContract, EveryCodeHasATextThatFits) {
  ASSERT_EQ(OpenFileForReading(L"no such file", WriteSharing::allowed), Handle::invalid);
  for (const uint32_t code : {LastSystemError(), 0u, 5u, 123'456'789u, 0xFFFFFFFFu}) {
    wchar_t text[256];
    const size_t units = SystemErrorText(code, text);
    EXPECT_GT(units, 0u) << code;
    EXPECT_EQ(std::wstring_view(text).size(), units) << code;
    wchar_t small[4] = {L'x', L'x', L'x', L'x'};
    EXPECT_EQ(SystemErrorText(code, small), 3u) << code;
    EXPECT_EQ(std::wstring_view(small), std::wstring_view(text).substr(0, 3)) << code;
  }
}

TEST(MemoryContract, BigBlocksAreZeroAndCostPagesOnlyWhereTheyAreTouched) {
  constexpr size_t kSize = 600'000'000;
  const size_t before = ResidentBytes();
  auto* const bytes = static_cast<unsigned char*>(AllocateZeroed(kSize));
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(reinterpret_cast<uintptr_t>(bytes) % 4096, 0u);
  for (size_t at = 0; at < kSize; at += kSize / 10) EXPECT_EQ(bytes[at], 0);
  EXPECT_EQ(bytes[kSize - 1], 0);
  bytes[kSize - 1] = 1;
  EXPECT_GT(before, 0u);
  EXPECT_LT(ResidentBytes(), before + 50'000'000);
  FreeZeroed(bytes, kSize);
  FreeZeroed(nullptr, kSize);
}

TEST(MemoryContract, WhatNobodyHasIsRefused) {
  EXPECT_EQ(AllocateZeroed(size_t{1} << 60), nullptr);
  EXPECT_NE(LastSystemError(), 0u);
}

}  // namespace
}  // namespace tw
